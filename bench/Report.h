// What a measured process tells about itself.
#pragma once

#include <initializer_list>
#include <utility>

namespace bench {

/// Seconds since an arbitrary moment that all processes share.
double now();

/// Seconds of processor time that this process has taken so far, the kernel's on its behalf
/// included.
double cpuSeconds();

/// Most memory that this process ever had, in kilobytes.
double peakKilobytes();

/// Memory that this process has now, in kilobytes.
double residentKilobytes();

/// Prints named figures as one JSON object on a line of standard output.
void report(std::initializer_list<std::pair<const char*, double>> figures);

} // namespace bench
