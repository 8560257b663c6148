// Exceptions that end a script early.
#pragma once

#include <QString>

namespace support {

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
