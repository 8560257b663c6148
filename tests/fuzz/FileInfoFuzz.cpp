// Fuzzes converting the camera's answer to a recording's details for the table.
//
// Input: the answer.
#include "card/FileInfoText.h"
#include "tests/fuzz/Decimal.h"
#include "tests/fuzz/Require.h"

#include <string_view>

namespace {

/// Stores the value of a key. Returns false and leaves the previous value if the key or the end of
/// its value is missing.
bool take(std::string_view answer, std::string_view key, std::string& value)
{
    const std::size_t start = answer.find(key);
    if (start == std::string_view::npos) {
        return false;
    }
    const std::size_t end = answer.find("\";", start + key.size());
    if (end == std::string_view::npos) {
        return false;
    }
    value = answer.substr(start + key.size(), end - start - key.size());
    return true;
}

std::string dateOf(const std::string& digits)
{
    std::string padded = digits;
    padded.resize(14, '\0');
    std::string date = padded.substr(0, 4) + '-' + padded.substr(4, 2) + '-' + padded.substr(6, 2) +
                       "  " + padded.substr(8, 2) + ':' + padded.substr(10, 2) + ':' +
                       padded.substr(12, 2);
    std::string shown;
    for (const char byte : date) {
        if (byte != '\0') {
            shown += byte;
        }
    }
    return shown;
}

void judgeExactSize(const char* answer, std::string_view text)
{
    using Reading = card::ExactSize::Reading;
    const card::ExactSize exact = card::exactSize(answer);
    std::string value;
    fuzz::require((exact.reading != Reading::Missing) == take(text, "size=\"", value),
                  "a size is reported missing exactly if it is missing");
    const bool digits = !value.empty() && value.find_first_not_of("0123456789") == value.npos;
    fuzz::require(exact.reading != Reading::Known || digits,
                  "an exact size consists of digits only");
    if (digits && value.size() < 19) {
        fuzz::require(exact.reading == Reading::Known && exact.bytes == std::stoll(value),
                      "up to eighteen digits are an exact size");
    }
    fuzz::require(exact.bytes == 0 || exact.reading == Reading::Known,
                  "only an exact size has bytes");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = fuzz::textOf(data, size);
    const fuzz::ExactCString answer(input);
    const std::string_view text = input.c_str();
    const card::FileInfoText shown = card::readFileInfo(answer.get());

    std::string value;
    take(text, "create=\"", value);
    fuzz::require(shown.date == QString::fromStdString(dateOf(value)),
                  "the date is the creation time with separators");
    judgeExactSize(answer.get(), text);

    // Texts with a percent sign are not checked further: QString::arg() may insert the unit into
    // them.
    if (text.find('%') != std::string_view::npos) {
        return 0;
    }
    take(text, "size=\"", value);
    fuzz::require(shown.size.endsWith(QLatin1String("KB")) ||
                      shown.size.endsWith(QLatin1String("MB")),
                  "a size has a unit");
    const auto bytes = fuzz::shortDecimal(value);
    if (bytes) {
        const bool large = *bytes >= 1048576;
        const int count = *bytes / (large ? 1048576 : 1024);
        value = count == 0 ? "" : std::to_string(count);
        fuzz::require(shown.size == QString::fromStdString(value + (large ? "MB" : "KB")),
                      "a size is truncated to whole units, and zero units show no digit");
    }

    // Without a duration the digits of the size are shown. They are known here only if the size is
    // a short number.
    if (take(text, "time=\"", value) || bytes) {
        fuzz::require(shown.duration == QString::fromStdString(value + "s"),
                      "the duration is the text as received");
    }
    return 0;
}
