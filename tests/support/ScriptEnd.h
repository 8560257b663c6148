// How a script ends early. Used by the scripted server itself only.
#pragma once

#include <QString>

namespace support {

/// What the script waited for did not come.
struct ScriptFailed
{
    QString reason;
};

/// The server ends.
struct ScriptStopped
{
};

} // namespace support
