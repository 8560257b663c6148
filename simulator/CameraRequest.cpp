#include "simulator/CameraRequest.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

constexpr std::string_view hostPrefix = "http://192.168.1.120";

enum class Argument { None, Appended };

/// A row of CameraRequests.inc without the answer; its index is the value of the enumerator.
struct Row
{
    std::string_view name;
    std::string_view target;
    Argument argument;
};

constexpr std::array rows{
#define REQUEST(enumerator, name, target, argument, answer) Row{name, target, Argument::argument},
#include "simulator/CameraRequests.inc"
#undef REQUEST
};

const Row& row(RequestKind kind)
{
    return rows[static_cast<std::size_t>(kind)];
}

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

} // namespace

std::string_view kindName(RequestKind kind)
{
    return row(kind).name;
}

std::optional<std::string> requestTarget(std::string_view requestLine)
{
    constexpr std::string_view method = "GET ";
    const std::size_t end = requestLine.rfind(" HTTP/1.1");
    if (!startsWith(requestLine, method) || end == std::string::npos || end < method.size()) {
        return std::nullopt;
    }
    std::string_view target = requestLine.substr(method.size(), end - method.size());
    if (startsWith(target, hostPrefix)) {
        target.remove_prefix(hostPrefix.size());
    }
    return std::string(target);
}

RequestKind requestKind(std::string_view target)
{
    // The last row matches every target, so a row is always found.
    const auto found = std::find_if(rows.begin(), rows.end(), [target](const Row& each) {
        return each.argument == Argument::None ? target == each.target
                                               : startsWith(target, each.target);
    });
    return static_cast<RequestKind>(found - rows.begin());
}

std::string_view requestArgument(RequestKind kind, std::string_view target)
{
    return target.substr(row(kind).target.size());
}

} // namespace simulator
