// The factor by which slow builds and busy machines extend time limits.
#pragma once

#include <QtGlobal>

namespace support {

/// Returns the factor in BELUN_TIME_FACTOR, or 1 if that variable is not set. The presets of slow
/// builds set it, and so does ./check on a busy machine. Tests multiply limits for the program's
/// speed by this factor.
inline int timeFactor()
{
    bool given = false;
    const int factor = qEnvironmentVariableIntValue("BELUN_TIME_FACTOR", &given);
    return given ? factor : 1;
}

} // namespace support
