#pragma once

#include "simulator/Card.h"
#include "simulator/FaultTable.h"
#include "simulator/Outbox.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// What a request asks for.
enum class RequestKind { Count, List, Info, Delete, DeleteAll, Format, Recording, Other };

/// The kind's word in the journal and in the fault "only".
std::string_view kindName(RequestKind kind);

/// The request line's target: what stands between "GET " and the last " HTTP/1.1", as sent, without
/// the scheme and host of the absolute form. Nothing if the line has another form.
std::optional<std::string> requestTarget(std::string_view requestLine);

RequestKind requestKind(std::string_view target);

/// What the camera answers, before it becomes bytes.
struct Answer
{
    int status = 200;
    std::string reason = "OK";
    std::string contentType = "text/plain";
    Message body;
    bool withoutAnswer = false; ///< the connection is reset instead
};

/// A short page with status and reason.
Answer errorAnswer(int status);

/// The camera's commands, worked on the card: answers, and the changes of delete and format.
class CameraAnswers
{
public:
    /// The card is changed; the faults and the card outlive this object. seed: for the recordings
    /// that the fault "entries" makes up.
    CameraAnswers(Card& card, const FaultTable& faults, std::uint64_t seed);

    Answer answer(RequestKind kind, std::string_view target);

private:
    Card& card();
    /// What the faults "name-..." call the first recordings.
    std::vector<std::string> otherNames() const;
    std::optional<std::size_t> find(std::string_view name);
    Answer countAnswer(const FaultScope& faults);
    Answer listAnswer(const FaultScope& faults, std::string_view end);
    Answer infoAnswer(const FaultScope& faults, std::string_view name);
    Answer changeAnswer(const FaultScope& faults, RequestKind kind, std::string_view name);
    Answer recordingAnswer(std::string_view name);

    Card* m_card;
    const FaultTable* m_faults;
    std::uint64_t m_seed;
    Card m_madeUp; ///< the card while the fault "entries" is on
    TimePoint m_madeUpSince = never;
};

} // namespace simulator
