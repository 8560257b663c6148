#include "bench/Camera.h"

#include <cstdlib>
#include <string>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace bench {

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

long long sendRequest(int camera, const char* path)
{
    const std::string request =
        std::string("GET ") + path + " HTTP/1.1\r\nHost:192.168.1.120\r\nConnection:close\r\n\r\n";
    if (::write(camera, request.data(), request.size()) < 0) {
        return -1;
    }
    std::string head;
    char byte = 0;
    while (head.size() < 4 || head.compare(head.size() - 4, 4, "\r\n\r\n") != 0) {
        if (::read(camera, &byte, 1) != 1) {
            return -1;
        }
        head.push_back(byte);
    }
    const std::string name = "Content-Length:";
    const auto found = head.find(name);
    return found == std::string::npos ? 0 : std::atoll(head.c_str() + found + name.size());
}

} // namespace bench
