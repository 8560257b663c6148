#include "simulator/CameraAnswers.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::string_view hostPrefix = "http://192.168.1.120";
constexpr std::string_view countTarget = "/cgi-bin/hi3510/getfilecount.cgi?";
constexpr std::string_view listTarget = "/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end=";
constexpr std::string_view infoTarget = "/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr std::string_view deleteTarget = "/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/";
constexpr std::string_view deleteAllTarget = "/cgi-bin/hi3510/deleteallfiles.cgi?";
constexpr std::string_view formatTarget = "/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1";
constexpr std::string_view recordingTarget = "/sd/DCIM/100ZEPNA/";

constexpr std::uint64_t unendingSize = 2'147'483'647;
constexpr std::size_t listAllDigits = 14;

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

Answer textAnswer(std::string text)
{
    Answer answer;
    append(answer.body, Part::literal(std::move(text)));
    return answer;
}

/// The number of entries that a list command asks for; anything but digits asks for none.
std::size_t wantedEntries(std::string_view end, std::size_t all)
{
    const std::size_t digits = std::min(end.find_first_not_of("0123456789"), end.size());
    if (digits >= listAllDigits) {
        return all;
    }
    std::size_t number = 0;
    for (const char digit : end.substr(0, digits)) {
        number = number * 10 + static_cast<std::size_t>(digit - '0');
    }
    return std::min(number, all);
}

/// The first of the other names is that of the card's first recording, the second the second's, ...
const std::string& shownName(const Recording& recording, const std::vector<std::string>& otherNames)
{
    return recording.ordinal < otherNames.size() ? otherNames[recording.ordinal] : recording.name;
}

std::string field(const char* name, const std::string& value)
{
    return "var "s + name + "=\"" + value + "\";\r\n";
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

Answer errorAnswer(int status)
{
    Answer answer;
    answer.status = status;
    switch (status) {
    case 400:
        answer.reason = "Bad Request";
        break;
    case 404:
        answer.reason = "Not Found";
        break;
    case 405:
        answer.reason = "Method Not Allowed";
        break;
    case 431:
        answer.reason = "Request Header Fields Too Large";
        break;
    case 500:
        answer.reason = "Internal Server Error";
        break;
    default:
        answer.reason = "Other";
        break;
    }
    answer.contentType = "text/html";
    append(answer.body, Part::literal("<html><body>" + std::to_string(status) + " " +
                                      answer.reason + "</body></html>\r\n"));
    return answer;
}

CameraAnswers::CameraAnswers(Card& card, const FaultTable& faults, std::uint64_t seed)
    : m_card(&card), m_faults(&faults), m_seed(seed)
{
}

Card& CameraAnswers::card()
{
    const auto entries = m_faults->number(Fault::Entries);
    if (!entries) {
        return *m_card;
    }
    if (m_madeUpSince != m_faults->since(Fault::Entries)) {
        m_madeUp = uniformCard(static_cast<std::size_t>(*entries), m_seed);
        m_madeUpSince = m_faults->since(Fault::Entries);
    }
    return m_madeUp;
}

std::vector<std::string> CameraAnswers::otherNames() const
{
    return m_faults->values(FaultGroup::Names);
}

std::optional<std::size_t> CameraAnswers::find(std::string_view name)
{
    const std::vector<std::string> names = otherNames();
    const auto& recordings = card().recordings();
    const auto found =
        std::find_if(recordings.begin(), recordings.end(), [&names, name](const Recording& each) {
            return name == shownName(each, names);
        });
    if (found == recordings.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - recordings.begin());
}

Answer CameraAnswers::answer(RequestKind kind, std::string_view target)
{
    const FaultScope faults(*m_faults, kindName(kind));
    switch (kind) {
    case RequestKind::Count:
        return countAnswer(faults);
    case RequestKind::List:
        return listAnswer(faults, target.substr(listTarget.size()));
    case RequestKind::Info:
        return infoAnswer(faults, target.substr(infoTarget.size()));
    case RequestKind::Delete:
        return changeAnswer(faults, kind, target.substr(deleteTarget.size()));
    case RequestKind::DeleteAll:
    case RequestKind::Format:
        return changeAnswer(faults, kind, {});
    case RequestKind::Recording:
        return recordingAnswer(target.substr(recordingTarget.size()));
    case RequestKind::Other:
        break;
    }
    return errorAnswer(404);
}

Answer CameraAnswers::countAnswer(const FaultScope& faults)
{
    auto count = static_cast<long long>(card().recordings().size());
    count += faults.number(Fault::CountOffset).value_or(0);
    const std::string text = faults.value(Fault::Count).value_or(std::to_string(count));
    return textAnswer(faults.active(Fault::NoCountMarkers) ? text + "\r\n" : field("count", text));
}

Answer CameraAnswers::listAnswer(const FaultScope& faults, std::string_view end)
{
    const std::string directory = faults.active(Fault::NoListMarkers) ? "" : "sd/DCIM/100ZEPNA/";
    const std::string separator = faults.active(Fault::NoSemicolon) ? " " : ";";
    const auto& recordings = card().recordings();
    const std::size_t wanted = wantedEntries(end, recordings.size());
    std::string text;
    if (const auto padding = faults.number(Fault::ListPadding)) {
        text.assign(static_cast<std::size_t>(*padding), 'x');
    }
    const std::vector<std::string> names = otherNames();
    for (std::size_t i = 0; i < wanted; ++i) {
        text += directory + shownName(recordings[i], names) + separator;
    }
    if (faults.active(Fault::InfiniteList)) {
        Answer answer;
        const auto entries = std::make_shared<RepeatedContent>(
            text.empty() ? directory + "REC.MP4" + separator : text, unendingSize);
        append(answer.body, Part{{}, entries, 0, unendingSize});
        return answer;
    }
    return textAnswer(faults.active(Fault::NoListEnd) ? text : text + "\r\n");
}

Answer CameraAnswers::infoAnswer(const FaultScope& faults, std::string_view name)
{
    const auto index = find(name);
    if (!index) {
        return errorAnswer(404);
    }
    if (faults.number(Fault::InfoFails) == static_cast<long long>(*index) + 1) {
        Answer none;
        none.withoutAnswer = true;
        return none;
    }
    const Recording& recording = card().recordings()[*index];
    const auto value = [&faults](Fault fault, std::string text) {
        const auto length = faults.number(Fault::InfoLong);
        return length ? std::string(static_cast<std::size_t>(*length), '1')
                      : faults.value(fault).value_or(std::move(text));
    };
    const auto line = [&faults](const char* key, const std::string& text) {
        return faults.names(Fault::InfoMissing, key) ? std::string() : field(key, text);
    };
    const std::string create = line("create", value(Fault::InfoCreate, recording.created));
    const std::string size = line("size", value(Fault::InfoSize, std::to_string(recording.size)));
    const std::string time =
        line("time", value(Fault::InfoTime, std::to_string(recording.duration)));
    return textAnswer(faults.active(Fault::InfoReordered) ? time + size + create
                                                          : create + size + time);
}

Answer CameraAnswers::changeAnswer(const FaultScope& faults, RequestKind kind,
                                   std::string_view name)
{
    if (const auto word = faults.value(Fault::ErrorWord)) {
        return textAnswer(*word + "\r\n");
    }
    // A device that answers with an error status has not done it either.
    if (faults.number(Fault::Status).value_or(200) >= 400) {
        return errorAnswer(500);
    }
    if (kind == RequestKind::Delete) {
        const auto index = find(name);
        if (!index) {
            return errorAnswer(404);
        }
        card().remove(*index);
    } else {
        card().removeAll();
    }
    if (faults.active(Fault::SuccessBare)) {
        return textAnswer("Success");
    }
    return textAnswer(faults.active(Fault::SuccessAndMore) ? "Success\r\nDone\r\n" : "Success\r\n");
}

Answer CameraAnswers::recordingAnswer(std::string_view name)
{
    const auto index = find(name);
    if (!index) {
        return errorAnswer(404);
    }
    const Recording& recording = card().recordings()[*index];
    Answer answer;
    answer.contentType = "video/mp4";
    append(answer.body, Part{{}, recording.content, 0, recording.size});
    return answer;
}

} // namespace simulator
