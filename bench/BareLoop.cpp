// The bare loop: sends one request, reads the head, then only reads at most 4,096 bytes at a time
// and writes them.
#include "bench/Camera.h"
#include "bench/Report.h"

#include <array>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::fputs("Usage: bench_bare_loop PATH FILE\nGets PATH from the camera.\n", stderr);
        return 2;
    }
    const double begin = bench::now();
    const int camera = bench::connectToCamera();
    if (bench::sendRequest(camera, argv[1]) < 0) {
        std::perror("bench_bare_loop");
        return 1;
    }
    const int file = ::open(argv[2], O_WRONLY | O_CREAT, 0777);
    std::array<char, 4096> buffer;
    double bytes = 0;
    for (;;) {
        const ssize_t count = ::read(camera, buffer.data(), buffer.size());
        if (count <= 0) {
            break;
        }
        if (::write(file, buffer.data(), static_cast<std::size_t>(count)) != count) {
            std::perror("bench_bare_loop");
            return 1;
        }
        bytes += static_cast<double>(count);
    }
    bench::report({{"seconds", bench::now() - begin},
                   {"cpu", bench::cpuSeconds()},
                   {"peakKilobytes", bench::peakKilobytes()},
                   {"bytes", bytes}});
    return 0;
}
