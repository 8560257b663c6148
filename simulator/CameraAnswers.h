// The answers of the camera to its requests.
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

/// An answer of the camera, before serialisation.
struct Answer
{
    int status = 200;
    std::string reason = "OK";
    std::string contentType = "text/plain";
    Message body;
    std::optional<std::uint64_t>
        announced{};            ///< Content-Length if it differs from the body's length
    bool withoutAnswer = false; ///< send nothing, reset the connection
};

/// Returns a short page with status and reason.
Answer errorAnswer(int status);

/// The part of the camera that executes requests: returns their answers, and changes the card for
/// delete, delete all and format.
class CameraAnswers
{
public:
    /// The card, which commands modify, and the faults must outlive this object. seed: for the
    /// recordings that faults generate.
    CameraAnswers(Card& card, const FaultTable& faults, std::uint64_t seed);

    /// Executes a request and returns its answer. faults: those that act on the request. exchange:
    /// the number of the request, counted from 1 since the start.
    Answer answer(RequestKind kind, std::string_view target, const FaultScope& faults,
                  std::uint64_t exchange);

private:
    /// Returns the card on which the current request acts.
    Card& card();
    /// Returns the generated card of a fault. The first call after the fault was switched on
    /// generates the card. The value of the fault "entries" is the number of recordings on its
    /// card; for other faults, the card gets as many recordings as m_card has.
    Card& otherCard(Fault fault);
    /// Returns the names that the faults "name-..." give to the first recordings.
    std::vector<std::string> otherNames() const;
    std::optional<std::size_t> find(std::string_view name);
    Answer countAnswer(const FaultScope& faults);
    Answer listAnswer(const FaultScope& faults, std::string_view end);
    Answer infoAnswer(const FaultScope& faults, std::string_view name);
    Answer changeAnswer(const FaultScope& faults, RequestKind kind, std::string_view name);
    Answer recordingAnswer(const FaultScope& faults, std::string_view name);

    /// A generated card, and the time at which the fault that requests it was switched on.
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
    std::uint64_t m_exchange = 0;     ///< number of the current request
    TimePoint m_swappedSince = never; ///< since() of "swapped-card" at the last recording request
};

} // namespace simulator
