// The texts of the version fields.
#pragma once

#include <QString>

namespace vehicle {

/// Returns "v" and the hardware type, a signed number that is not scaled: 7 gives "v7", -1 gives
/// "v-1".
QString hardwareTypeText(char hardType);

/// Returns "v" and a version given in hundredths, with at most six significant digits: 300 gives
/// "v3", 1234 gives "v12.34".
QString versionText(int hundredths);

} // namespace vehicle
