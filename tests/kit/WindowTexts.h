// The window's texts, read from a table in tests/data and so independent of the program's
// catalogues. The screen tests read the same table.
#pragma once

#include <vector>

#include <QString>
#include <QStringList>

namespace support {

struct WindowText
{
    QString name; ///< Identifies the text in the tests.
    QString english;
    QString chinese;
    QStringList shownBy;          ///< Object names; "column0" to "column3" are the table's headers.
    QStringList accessibleNameOf; ///< Further objects whose accessible name is this text.
};

/// Returns all texts, in the table's order.
const std::vector<WindowText>& windowTexts();

/// Returns the text of that name. A missing one ends the test program.
const WindowText& windowText(const QString& name);

} // namespace support
