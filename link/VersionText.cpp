#include "link/VersionText.h"

namespace vehicle {

namespace {

QString withPrefix(double number)
{
    return QStringLiteral("%1%2").arg(QStringLiteral("v")).arg(number);
}

} // namespace

QString hardwareTypeText(char hardType)
{
    return withPrefix(static_cast<signed char>(hardType));
}

QString versionText(int hundredths)
{
    // Computed in single precision. The six significant digits hide the rounding error of every
    // version that a report can contain.
    return withPrefix(static_cast<double>(static_cast<float>(hundredths) / 100.0F));
}

} // namespace vehicle
