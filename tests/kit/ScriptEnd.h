// How long a script waits, and the exceptions that end it early.
#pragma once

#include <chrono>

#include <QString>

namespace support {

constexpr std::chrono::seconds scriptPatience{5};
constexpr int scriptStep = 5; // milliseconds between checks of the stop flag

/// Thrown if a wait times out, the client closes too early or sending fails.
struct ScriptFailed
{
    QString reason;
};

/// Thrown if the server is stopping.
struct ScriptStopped
{
};

} // namespace support
