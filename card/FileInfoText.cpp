#include "card/FileInfoText.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace card {

QString dateText(std::string_view field)
{
    const auto digits = [field](std::size_t offset, std::size_t count) {
        return std::string(field.substr(std::min(offset, field.size()), count));
    };
    return QString::fromStdString(digits(0, 4) + '-' + digits(4, 2) + '-' + digits(6, 2) + "  " +
                                  digits(8, 2) + ':' + digits(10, 2) + ':' + digits(12, 2));
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
