// An answer of the camera as bytes.
#pragma once

#include "simulator/CameraAnswers.h"
#include "simulator/FaultTable.h"
#include "simulator/Outbox.h"

#include <cstdint>

namespace simulator {

/// How the connection ends after the answer.
enum class AnswerEnd { Close, Reset };

/// An answer as it goes over the wire.
struct AnswerBytes
{
    Message head;
    Message body;
    Message held; ///< the rest of the body, held back by the fault "stall"
    AnswerEnd end = AnswerEnd::Close;
};

/// Returns the answer's head and body as bytes, with the effects of the faults. exchange: the
/// number of the request, counted from 1 since the start.
AnswerBytes answerBytes(Answer answer, const FaultScope& faults, std::uint64_t exchange);

} // namespace simulator
