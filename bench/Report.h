// Reports the time and memory that this process uses.
#pragma once

#include <initializer_list>
#include <utility>

namespace bench {

/// Returns the seconds since an arbitrary moment, the same for all processes.
double now();

/// Returns the CPU time of this process in seconds, in user and kernel mode.
double cpuSeconds();

/// Returns the peak resident memory of this process in kilobytes.
double peakKilobytes();

/// Returns the resident memory of this process in kilobytes.
double residentKilobytes();

/// Prints named figures as one line of JSON on standard output.
void report(std::initializer_list<std::pair<const char*, double>> figures);

} // namespace bench
