// Fuzzes splitting an address. No name is ever resolved.
//
// Input: the address.
#include "http/HTTPClient.h"
#include "tests/fuzz/Decimal.h"
#include "tests/fuzz/Require.h"

#include <string_view>

namespace {

constexpr std::string_view prefix = "http://";
constexpr int portBefore = 1234;
constexpr char hostBefore[] = "before";
constexpr char pathBefore[] = "/before";

void requireWellSplit(std::string_view rest, const HTTPRequest& request)
{
    fuzz::require(request.host.find_first_of("/:") == std::string::npos,
                  "the host holds neither slash nor colon");
    fuzz::require(rest.substr(0, request.host.size()) == request.host,
                  "the host directly follows the scheme");
    const std::string_view behind = rest.substr(request.host.size());
    fuzz::require(behind.empty() || behind[0] == '/' || behind[0] == ':',
                  "the host goes up to a slash, a colon or the end");

    const std::size_t slash = behind.find('/');
    const bool hasPath = slash != std::string_view::npos;
    fuzz::require(request.path == (hasPath ? behind.substr(slash) : pathBefore),
                  "the path is everything from the slash on, or unchanged");
    if (behind.empty() || behind[0] == '/') {
        fuzz::require(request.port == portBefore, "a missing port keeps its value");
        fuzz::require(behind.find(':') == std::string_view::npos, "no colon after the slash");
    } else if (const auto port = fuzz::shortDecimal(behind.substr(1, slash - 1))) {
        fuzz::require(request.port == *port, "the port is the number after the colon");
    }
}

void requireRefusable(std::string_view url, const HTTPRequest& request)
{
    fuzz::require(request.host == hostBefore && request.port == portBefore &&
                      request.path == pathBefore,
                  "a rejected address changes nothing");
    if (url.substr(0, prefix.size()) == prefix && url.size() > prefix.size()) {
        const std::string_view rest = url.substr(prefix.size());
        const std::size_t slash = rest.find('/');
        fuzz::require(slash != std::string_view::npos && rest.find(':') > slash &&
                          rest.find(':') != std::string_view::npos,
                      "an address is rejected only for its scheme or a colon after the slash");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string url = fuzz::textOf(data, size);
    HTTPRequest request;
    request.url = url;
    request.host = hostBefore;
    request.port = portBefore;
    request.path = pathBefore;
    const bool taken = HTTPClient().parseUrl(request);
    fuzz::require(request.url == url, "the address itself is unchanged");
    if (taken) {
        fuzz::require(url.substr(0, prefix.size()) == prefix, "only plain http is accepted");
        fuzz::require(url.size() > prefix.size(), "the prefix alone is rejected");
        requireWellSplit(std::string_view(url).substr(prefix.size()), request);
    } else {
        requireRefusable(url, request);
    }
    return 0;
}
