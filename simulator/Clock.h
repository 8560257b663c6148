// The clock for all timing.
#pragma once

#include <chrono>

namespace simulator {

/// The clock for all timing; it never jumps.
using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;
using Milliseconds = std::chrono::milliseconds;

/// A point in time that is never reached, used if there is nothing to wake up for.
constexpr TimePoint never = TimePoint::max();

} // namespace simulator
