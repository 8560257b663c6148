// The request head: building and sending it.
#include "http/HTTPClient.h"

#include <algorithm>
#include <climits>
#include <cstddef>

#include <arpa/inet.h>

namespace {

const char* methodWord(HTTP_REQ_TYPE type)
{
    switch (type) {
    case HTTP_REQ_GET:
        return "GET";
    case HTTP_REQ_POST:
        return "POST";
    case HTTP_REQ_PUT:
        return "PUT";
    case HTTP_REQ_DELETE:
        return "DELETE";
    }
    return "";
}

} // namespace

void HTTPClient::makeHeader(HTTP_REQ_TYPE& type, HTTPRequest& request, std::string& out)
{
    // Built separately: `out` may be one of the request's texts.
    std::string head = methodWord(type);
    head.append(" ").append(request.path).append(" ").append(request.version).append("\r\n");
    head.append("Host: ").append(request.host);
    if (request.port != 80) {
        head.append(":").append(std::to_string(request.port));
    }
    head.append("\r\n");
    for (const auto& [name, value] : request.headers) {
        head.append(name).append(": ").append(value).append("\r\n");
    }
    out += head.append("\r\n");
}

bool HTTPClient::sendHeader(HTTP_REQ_TYPE& type, HTTPSession& session, HTTPRequest& request)
{
    std::string head;
    makeHeader(type, request, head);
    const unsigned int address = hostToLong(request.host);
    return session.connect(address, htons(static_cast<unsigned short>(request.port))) &&
           sendBody(session, head);
}

bool HTTPClient::sendBody(HTTPSession& session, const std::string& data)
{
    std::size_t sent = 0;
    while (sent < data.size()) {
        const std::size_t remaining = std::min<std::size_t>(data.size() - sent, INT_MAX);
        const int count = session.send(data.data() + sent, static_cast<int>(remaining));
        if (count < 0) {
            return false;
        }
        sent += static_cast<std::size_t>(count);
    }
    return true;
}
