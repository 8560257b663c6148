#include "simulator/CameraAnswers.h"

#include <algorithm>

namespace simulator {

namespace {

using namespace std::string_literals;

constexpr std::uint64_t otherCardSeed = 1'000'000;
constexpr std::uint64_t unendingSize = 2'147'483'647;
constexpr std::size_t listAllDigits = 14;

Answer textAnswer(std::string text)
{
    Answer answer;
    append(answer.body, Part::literal(std::move(text)));
    return answer;
}

/// Returns the number of entries to list, at most `all`: the decimal digits at the start of `end`,
/// which mean 0 if there are none and `all` if there are 14 or more.
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

/// Returns the name under which a recording is listed: the other name at the recording's ordinal,
/// or the recording's own name if there is none.
const std::string& shownName(const Recording& recording, const std::vector<std::string>& otherNames)
{
    return recording.ordinal < otherNames.size() ? otherNames[recording.ordinal] : recording.name;
}

std::string field(const char* name, const std::string& value)
{
    return "var "s + name + "=\"" + value + "\";\r\n";
}

} // namespace

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

Card& CameraAnswers::otherCard(Fault fault)
{
    MadeUp& madeUp = m_madeUp[fault];
    if (madeUp.since != m_faults->since(fault)) {
        const bool counted = fault == Fault::Entries;
        madeUp.card = uniformCard(counted ? static_cast<std::size_t>(*m_faults->number(fault))
                                          : m_card->recordings().size(),
                                  m_seed + (counted ? 0 : otherCardSeed));
        madeUp.since = m_faults->since(fault);
    }
    return madeUp.card;
}

Card& CameraAnswers::card()
{
    if (m_faults->active(Fault::NoCard)) {
        m_noCard.removeAll();
        return m_noCard;
    }
    if (m_faults->active(Fault::SwappedCameras) && m_exchange % 2 == 0) {
        return otherCard(Fault::SwappedCameras);
    }
    if (m_faults->active(Fault::SwappedCard) &&
        m_swappedSince == m_faults->since(Fault::SwappedCard)) {
        return otherCard(Fault::SwappedCard);
    }
    return m_faults->active(Fault::Entries) ? otherCard(Fault::Entries) : *m_card;
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

Answer CameraAnswers::answer(RequestKind kind, std::string_view target, const FaultScope& faults,
                             std::uint64_t exchange)
{
    m_exchange = exchange;
    const std::string_view argument = requestArgument(kind, target);
    switch (kind) {
#define REQUEST(enumerator, name, target, argument, answer)                                        \
    case RequestKind::enumerator:                                                                  \
        return answer;
#include "simulator/CameraRequests.inc"
#undef REQUEST
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
    if (m_faults->active(Fault::NoCard) || faults.active(Fault::WriteProtected)) {
        return textAnswer("Error\r\n");
    }
    // A device that answers with an error status has not executed the command.
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

Answer CameraAnswers::recordingAnswer(const FaultScope& faults, std::string_view name)
{
    m_swappedSince = m_faults->since(Fault::SwappedCard);
    const auto index = find(name);
    if (!index) {
        return errorAnswer(404);
    }
    Answer answer;
    answer.contentType = "video/mp4";
    if (const auto growth = faults.number(Fault::GrowingRecording)) {
        answer.announced = card().recordings()[*index].size;
        card().grow(*index, static_cast<std::uint64_t>(*growth));
    }
    const Recording& recording = card().recordings()[*index];
    append(answer.body, Part{{}, recording.content, 0, recording.size});
    return answer;
}

} // namespace simulator
