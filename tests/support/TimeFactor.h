// How much longer things may take here than in an ordinary build.
#pragma once

#include <QtGlobal>

namespace support {

/// 1, or what the build says where its instrumentation makes programs slower. Every limit that a
/// test holds the program to is multiplied by it.
inline int timeFactor()
{
    bool given = false;
    const int factor = qEnvironmentVariableIntValue("BELUN_TIME_FACTOR", &given);
    return given ? factor : 1;
}

} // namespace support
