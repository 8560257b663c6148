#include "download/ResponseHead.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace download {

namespace {

constexpr int endingRun = 4;

} // namespace

bool ResponseHead::add(char byte)
{
    if (byte == '\0') {
        return false;
    }
    m_text.push_back(byte);
    m_lineEndRun = byte == '\r' || byte == '\n' ? m_lineEndRun + 1 : 0;
    return m_lineEndRun == endingRun;
}

resp_header parseHead(const char* text)
{
    resp_header header;
    if (const char* status = std::strstr(text, "HTTP/")) {
        std::sscanf(status, "%*s %d", &header.status_code);
    }
    if (const char* type = std::strstr(text, "Content-Type:")) {
        std::sscanf(type, "%*s %127s", header.content_type);
    }
    if (const char* length = std::strstr(text, "Content-Length:")) {
        std::int64_t value = 0;
        if (std::sscanf(length, "%*s %" SCNd64, &value) == 1) {
            header.content_length = value;
        }
    }
    return header;
}

} // namespace download
