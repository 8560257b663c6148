// Multipart bodies.
#include "http/HTTPClient.h"

void HTTPClient::makeMultipartBody(HTTPMultipart& multipart, std::string& out)
{
    const char* lineEndBefore = "";
    for (const auto& [key, part] : multipart.parts) {
        out.append(lineEndBefore).append("--").append(multipart.boundary).append("\r\n");
        for (const auto& [name, value] : part.headers) {
            out.append(name).append(": ").append(value).append("\r\n");
        }
        out.append("\r\n").append(part.content);
        lineEndBefore = "\r\n";
    }
    out.append("\r\n--").append(multipart.boundary).append("--\r\n");
}
