// A recording's details as the table shows them.
#pragma once

#include <string_view>

#include <QString>

namespace card {

/// A creation time of fourteen digits as "2020-01-31  12:45:02". What a shorter text lacks is left
/// out between the separators; what a longer one has more is dropped.
QString dateText(std::string_view field);

/// A size as it is shown: whole units, cut, and the unit's name.
struct ShownSize
{
    int count;
    const char* unit;
};

/// Megabytes from 1,048,576 bytes on, kilobytes below.
ShownSize shownSize(int bytes);

/// A field's text with a unit behind it, as in "37s".
QString withUnit(const char* field, const char* unit);

} // namespace card
