// Simulates calls of send() that send only some of the bytes or none, or that fail. The test
// program's own `send` replaces the system's.
#pragma once

#include <deque>

/// While this object exists, each call of send() in this thread follows the next result of the
/// plan: a positive number sends at most that many bytes, 0 sends none, -1 fails. After the last
/// result send() works normally.
class SendPlan
{
public:
    explicit SendPlan(std::deque<int> results);
    ~SendPlan();
    SendPlan(const SendPlan&) = delete;
    SendPlan& operator=(const SendPlan&) = delete;

    bool used() const; ///< Returns whether every result was used.
};
