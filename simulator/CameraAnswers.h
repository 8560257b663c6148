// What the camera answers to each request.
#pragma once

#include "simulator/CameraRequest.h"
#include "simulator/Card.h"
#include "simulator/FaultTable.h"
#include "simulator/Outbox.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// What the camera answers, before it becomes bytes.
struct Answer
{
    int status = 200;
    std::string reason = "OK";
    std::string contentType = "text/plain";
    Message body;
    std::optional<std::uint64_t> announced{}; ///< Content-Length, where it is not the body's
    bool withoutAnswer = false;               ///< the connection is reset instead
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

    /// faults: those that act on this request. exchange: its number, counted from 1 since the
    /// start.
    Answer answer(RequestKind kind, std::string_view target, const FaultScope& faults,
                  std::uint64_t exchange);

private:
    /// The card in the camera that answers.
    Card& card();
    /// A card of other recordings, as many as on the first one. It is made once for each time that
    /// the fault is switched on.
    Card& otherCard(Fault fault);
    /// What the faults "name-..." call the first recordings.
    std::vector<std::string> otherNames() const;
    std::optional<std::size_t> find(std::string_view name);
    Answer countAnswer(const FaultScope& faults);
    Answer listAnswer(const FaultScope& faults, std::string_view end);
    Answer infoAnswer(const FaultScope& faults, std::string_view name);
    Answer changeAnswer(const FaultScope& faults, RequestKind kind, std::string_view name);
    Answer recordingAnswer(const FaultScope& faults, std::string_view name);

    /// A made-up card, and when the fault that asks for it was switched on.
    struct MadeUp
    {
        Card card;
        TimePoint since = never;
    };

    Card* m_card;
    const FaultTable* m_faults;
    std::uint64_t m_seed;
    std::map<Fault, MadeUp> m_madeUp;
    Card m_noCard;
    std::uint64_t m_exchange = 0;     ///< the one being answered
    TimePoint m_swappedSince = never; ///< when "swapped-card" was switched on, once it has acted
};

} // namespace simulator
