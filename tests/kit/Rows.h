// The columns and rows of a table.
#pragma once

#include <QTest>

namespace support {

/// An object that adds the columns of a `_data` function and then, called with values, its rows:
///
///     const support::Rows<QByteArray, int> row("text", "number");
///     row("leading zeros", "007", 7);
template <class... Columns>
class Rows
{
public:
    template <class... Names>
    explicit Rows(Names... names)
    {
        (QTest::addColumn<Columns>(names), ...);
    }

    void operator()(const char* tag, const Columns&... values) const
    {
        (QTest::newRow(tag) << ... << values);
    }
};

} // namespace support
