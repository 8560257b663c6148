// Exceptions that end a script early. Used only by the scripted server.
#pragma once

#include <QString>

namespace support {

/// The script timed out waiting.
struct ScriptFailed
{
    QString reason;
};

/// The server is stopping.
struct ScriptStopped
{
};

} // namespace support
