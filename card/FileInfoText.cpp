#include "card/FileInfoText.h"

#include "card/CardAnswers.h"
#include "card/CardCommands.h"
#include "card/NumberText.h"
#include "posix/LeadingNumber.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace card {

namespace {

QString dateText(std::string_view field)
{
    const auto digits = [field](std::size_t offset, std::size_t count) {
        return std::string(field.substr(std::min(offset, field.size()), count));
    };
    return QString::fromStdString(digits(0, 4) + '-' + digits(4, 2) + '-' + digits(6, 2) + "  " +
                                  digits(8, 2) + ':' + digits(10, 2) + ':' + digits(12, 2));
}

QString withUnit(const char* field, const char* unit)
{
    return QStringLiteral("%1%2").arg(QString::fromUtf8(field)).arg(QLatin1String(unit));
}

/// Returns the size text. Replaces the size in `field` with the number that is shown.
QString sizeText(char* field)
{
    constexpr int megabyte = 1048576;
    constexpr int kilobyte = 1024;
    const int bytes = sys::leadingNumber(field);
    const bool large = bytes >= megabyte;
    writeNumber(bytes / (large ? megabyte : kilobyte), field, 10);
    return withUnit(field, large ? "MB" : "KB");
}

} // namespace

FileInfoText readFileInfo(const char* answer)
{
    FileInfoText texts;
    std::vector<char> scratch = scratchFor(answer);
    char* field = scratch.data();
    copyTextBetween(answer, field, createStart, valueEnd);
    texts.date = dateText(field);
    copyTextBetween(answer, field, sizeStart, valueEnd);
    texts.size = sizeText(field);
    copyTextBetween(answer, field, timeStart, valueEnd);
    texts.duration = withUnit(field, "s");
    return texts;
}

ExactSize exactSize(const char* answer)
{
    const auto field = textBetween(answer, sizeStart, valueEnd);
    if (!field) {
        return {ExactSize::Reading::Missing, 0};
    }
    std::uint64_t bytes = 0; // unsigned, so that a minus sign is rejected
    const char* end = field->data() + field->size();
    const auto [next, error] = std::from_chars(field->data(), end, bytes);
    if (error == std::errc::invalid_argument || next != end) {
        return {ExactSize::Reading::NotANumber, 0};
    }
    if (error == std::errc::result_out_of_range ||
        bytes > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
        return {ExactSize::Reading::OutOfRange, 0};
    }
    return {ExactSize::Reading::Known, static_cast<std::int64_t>(bytes)};
}

} // namespace card
