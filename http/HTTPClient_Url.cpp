// Addresses: splitting a URL, resolving a host.
#include "http/HTTPClient.h"

#include "posix/LeadingNumber.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include <arpa/inet.h>
#include <netdb.h>

namespace {

constexpr std::string_view scheme = "http://";
constexpr std::size_t shortestUrl = scheme.size() + 1;

/// Returns whether this byte is a letter or one of the six characters between "Z" and "a". A host
/// that contains such a byte is a name.
bool isNameByte(char byte)
{
    return byte >= 0x41 && byte <= 0x7A;
}

} // namespace

bool HTTPClient::parseUrl(HTTPRequest& request)
{
    if (request.url.size() < shortestUrl || request.url.compare(0, scheme.size(), scheme) != 0) {
        return false;
    }
    const std::string rest = request.url.substr(scheme.size());
    const std::size_t slash = rest.find('/');
    const std::size_t colon = rest.find(':');
    const bool hasPath = slash != std::string::npos;
    const bool hasPort = colon != std::string::npos;

    if (hasPath && hasPort && colon > slash) {
        return false;
    }
    request.host = rest.substr(0, std::min(slash, colon));
    if (hasPort) {
        // leadingNumber() stops at the slash.
        request.port = sys::leadingNumber(rest.c_str() + colon + 1);
    }
    if (hasPath) {
        request.path = rest.substr(slash);
    }
    return true;
}

unsigned int HTTPClient::hostToLong(std::string host)
{
    if (std::none_of(host.begin(), host.end(), isNameByte)) {
        return inet_addr(host.c_str());
    }
    const hostent* entry = gethostbyname(host.c_str());
    if (entry == nullptr || entry->h_addrtype != AF_INET || entry->h_addr_list[0] == nullptr) {
        return 0;
    }
    in_addr_t address = 0;
    std::memcpy(&address, entry->h_addr_list[0], sizeof address);
    return address;
}
