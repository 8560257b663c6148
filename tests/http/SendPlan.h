// Sends that take less than they are offered, nothing at all, or fail: what a kernel may do and no
// test can make it do. The test program's own `send` stands in for the system's.
#pragma once

#include <deque>

/// While it lives, each send of this thread goes by the next result of the plan: a positive number
/// sends that many bytes at most, 0 sends none, -1 fails. Behind its last result sends go as usual.
class SendPlan
{
public:
    explicit SendPlan(std::deque<int> results);
    ~SendPlan();
    SendPlan(const SendPlan&) = delete;
    SendPlan& operator=(const SendPlan&) = delete;

    bool used() const; ///< Every result was given.
};
