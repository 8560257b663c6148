#include "card/FileInfoText.h"

#include <array>
#include <cstdio>

namespace card {

QString dateText(const char* field)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.4s-%.2s-%.2s  %.2s:%.2s:%.2s", field, field + 4,
                  field + 6, field + 8, field + 10, field + 12);
    return QString::fromUtf8(text.data());
}

ShownSize shownSize(int bytes)
{
    constexpr int megabyte = 1048576;
    constexpr int kilobyte = 1024;
    if (bytes >= megabyte) {
        return {bytes / megabyte, "MB"};
    }
    return {bytes / kilobyte, "KB"};
}

QString withUnit(const char* field, const char* unit)
{
    return QStringLiteral("%1%2").arg(QString::fromUtf8(field)).arg(QLatin1String(unit));
}

} // namespace card
