// A program that links only the HTTP library. It uses every operation of HTTPClient and fails if
// one does not work or if a Qt library is loaded.
#include "http/HTTPClient.h"

#include <cstdio>
#include <fstream>
#include <string>

#include <sys/socket.h>
#include <unistd.h>

namespace {

int failures = 0;

void expect(bool condition, const char* what)
{
    if (!condition) {
        std::printf("not so: %s\n", what);
        ++failures;
    }
}

void deliver(HTTPSession& session, const std::string& bytes)
{
    int ends[2] = {-1, -1};
    expect(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0, "there is a pair of sockets");
    expect(::send(ends[1], bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
           "the answer is sent");
    ::shutdown(ends[1], SHUT_WR);
    session.closeSession();
    session.socketDescriptor = ends[0];
    // The other end stays open until the process ends, so that sending succeeds.
}

bool programHoldsQt()
{
    std::ifstream maps("/proc/self/maps");
    std::string line;
    bool readable = false;
    while (std::getline(maps, line)) {
        readable = true;
        const std::string file = line.substr(line.rfind('/') + 1);
        if (file.find("libQt") != std::string::npos) {
            std::printf("mapped: %s\n", line.c_str());
            return true;
        }
    }
    expect(readable, "/proc/self/maps can be read");
    return false;
}

} // namespace

int main()
{
    HTTPClient client;
    HTTPRequest request;
    HTTPResponse response;
    HTTPSession session;
    std::string body;

    request.url = "https://host/";
    expect(!client.get(request, response, body), "get refuses another scheme");
    expect(!client.post(request, response, "data", body), "post refuses another scheme");
    expect(!client.startGet(session, response, request), "startGet refuses another scheme");
    expect(!client.startPost(session, request), "startPost refuses another scheme");

    request.url = "http://10.0.0.1:81/p";
    expect(client.parseUrl(request) && request.port == 81, "an address is split");
    expect(client.hostToLong("not an address 1.2") == 0, "an unknown name is 0");
    HTTP_REQ_TYPE type = HTTP_REQ_PUT;
    std::string head;
    client.makeHeader(type, request, head);
    expect(head.rfind("PUT /p HTTP/1.1\r\nHost: 10.0.0.1:81\r\n", 0) == 0, "a head is made");

    deliver(session, "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    expect(client.sendBody(session, "data") && client.postData(session, "data"), "data is sent");
    expect(client.readHeader(session, response), "a head is read");
    expect(client.getData(session, response, body) && body == "ok", "a body is read");
    expect(!client.sendHeader(type, session, request), "a connected session does not connect");
    client.stopGet(session);

    response = HTTPResponse();
    deliver(session, "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nend");
    client.stopPost(session, response, body);
    expect(body == "okend" && session.socketDescriptor == -1, "a post is completed");

    HTTPMultipart multipart{"b", {}};
    std::string form;
    client.makeMultipartBody(multipart, form);
    expect(form == "\r\n--b--\r\n", "a multipart body is made");

    expect(!programHoldsQt(), "the library needs no Qt");
    return failures == 0 ? 0 : 1;
}
