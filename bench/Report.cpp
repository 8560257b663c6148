#include "bench/Report.h"

#include <array>
#include <cstdio>

#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

namespace bench {

namespace {

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

double now()
{
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double cpuSeconds()
{
    rusage taken{};
    ::getrusage(RUSAGE_SELF, &taken);
    return seconds(taken.ru_utime) + seconds(taken.ru_stime);
}

// Does not use getrusage(), whose peak includes the memory that the process used before it executed
// this program.
double peakKilobytes()
{
    double peak = 0;
    if (std::FILE* file = std::fopen("/proc/self/status", "r")) {
        std::array<char, 256> line;
        while (std::fgets(line.data(), line.size(), file) != nullptr &&
               std::sscanf(line.data(), "VmHWM: %lf", &peak) != 1) {
        }
        std::fclose(file);
    }
    return peak;
}

double residentKilobytes()
{
    long pages = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*s %ld", &pages) != 1) {
            pages = 0;
        }
        std::fclose(file);
    }
    return static_cast<double>(pages) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1024;
}

void report(std::initializer_list<std::pair<const char*, double>> figures)
{
    const char* separator = "{";
    for (const auto& [name, value] : figures) {
        std::printf("%s\"%s\": %.15g", separator, name, value);
        separator = ", ";
    }
    std::puts("}");
    std::fflush(stdout);
}

} // namespace bench
