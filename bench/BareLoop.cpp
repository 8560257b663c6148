// The least that a download in pieces of 4,096 bytes can be: one request, then read and write.
#include "bench/Report.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int connectToCamera()
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in camera{};
    camera.sin_family = AF_INET;
    camera.sin_addr.s_addr = inet_addr("192.168.1.120");
    camera.sin_port = htons(80);
    const auto* address = reinterpret_cast<const sockaddr*>(&camera);
    return ::connect(descriptor, address, sizeof camera) == 0 ? descriptor : -1;
}

bool skipHead(int descriptor)
{
    std::string head;
    char byte = 0;
    while (::read(descriptor, &byte, 1) == 1) {
        head.push_back(byte);
        if (head.size() >= 4 && head.compare(head.size() - 4, 4, "\r\n\r\n") == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::fputs("Usage: bench_bare_loop PATH FILE\nGets PATH from the camera.\n", stderr);
        return 2;
    }
    const double begin = bench::now();
    const int camera = connectToCamera();
    const std::string request = std::string("GET ") + argv[1] +
                                " HTTP/1.1\r\nHost:192.168.1.120\r\nConnection:close\r\n\r\n";
    if (::write(camera, request.data(), request.size()) < 0 || !skipHead(camera)) {
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
