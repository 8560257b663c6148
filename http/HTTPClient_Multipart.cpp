// Multipart bodies.
#include "http/HTTPClient.h"

void HTTPClient::makeMultipartBody(HTTPMultipart& multipart, std::string& out)
{
    std::string body; // built separately: `out` may be one of the record's texts
    const char* lineEndBefore = "";
    for (const auto& [key, part] : multipart.parts) {
        body.append(lineEndBefore).append("--").append(multipart.boundary).append("\r\n");
        for (const auto& [name, value] : part.headers) {
            body.append(name).append(": ").append(value).append("\r\n");
        }
        body.append("\r\n").append(part.content);
        lineEndBefore = "\r\n";
    }
    out += body.append("\r\n--").append(multipart.boundary).append("--\r\n");
}
