#include "simulator/CameraRequest.h"

#include <array>

namespace simulator {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view hostPrefix = "http://192.168.1.120";
constexpr std::string_view countTarget = "/cgi-bin/hi3510/getfilecount.cgi?";
constexpr std::string_view listTarget = "/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=";
constexpr std::string_view infoTarget = "/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr std::string_view deleteTarget = "/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr std::string_view deleteAllTarget = "/cgi-bin/hi3510/deleteallfiles.cgi?";
constexpr std::string_view formatTarget = "/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1";
constexpr std::string_view recordingTarget = "/sd/DCIM/100ZEPNA/";

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

} // namespace

std::string_view kindName(RequestKind kind)
{
    constexpr std::array names{"count"sv,     "list"sv,   "info"sv,      "delete"sv,
                               "deleteall"sv, "format"sv, "recording"sv, "other"sv};
    return names[static_cast<std::size_t>(kind)];
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
    if (target == countTarget) {
        return RequestKind::Count;
    }
    if (startsWith(target, listTarget)) {
        return RequestKind::List;
    }
    if (startsWith(target, infoTarget)) {
        return RequestKind::Info;
    }
    if (startsWith(target, deleteTarget)) {
        return RequestKind::Delete;
    }
    if (target == deleteAllTarget) {
        return RequestKind::DeleteAll;
    }
    if (target == formatTarget) {
        return RequestKind::Format;
    }
    return startsWith(target, recordingTarget) ? RequestKind::Recording : RequestKind::Other;
}

std::string_view requestArgument(RequestKind kind, std::string_view target)
{
    switch (kind) {
    case RequestKind::List:
        return target.substr(listTarget.size());
    case RequestKind::Info:
        return target.substr(infoTarget.size());
    case RequestKind::Delete:
        return target.substr(deleteTarget.size());
    case RequestKind::Recording:
        return target.substr(recordingTarget.size());
    default:
        return {};
    }
}

} // namespace simulator
