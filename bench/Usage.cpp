// Runs another program and reports the time and memory that it used. This program must be small:
// the peak memory of a child process includes the memory that it shares with its parent before it
// executes the other program.
#include "bench/Report.h"

#include <cstdio>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2) {
        std::fputs("Usage: bench_usage PROGRAM [ARGUMENT...]\nIts output is dropped.\n", stderr);
        return 2;
    }
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const double begin = bench::now();
    if (::posix_spawnp(&process, argv[1], &actions, nullptr, argv + 1, environ) != 0) {
        std::perror(argv[1]);
        return 1;
    }
    int status = 0;
    rusage usage{};
    ::wait4(process, &status, 0, &usage);
    bench::report({{"seconds", bench::now() - begin},
                   {"cpu", seconds(usage.ru_utime) + seconds(usage.ru_stime)},
                   {"peakKilobytes", static_cast<double>(usage.ru_maxrss)}});
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : 1;
}
