// How much slower this build is than an ordinary one.
#pragma once

#include <QtGlobal>

namespace support {

/// Returns 1, or the factor set by an instrumented build. Tests multiply every time limit by it.
inline int timeFactor()
{
    bool given = false;
    const int factor = qEnvironmentVariableIntValue("BELUN_TIME_FACTOR", &given);
    return given ? factor : 1;
}

} // namespace support
