// The look of the file table and the making of its cells.
#pragma once

#include "card/NoFocusDelegate.h"

#include <memory>

#include <QStringList>
#include <QTableWidgetItem>

class QTableWidget;

namespace card {

enum Column { NameColumn, DateColumn, SizeColumn, DurationColumn, ColumnCount };

/// Gives the table its columns, headers, colours and selection mode. The table paints with the
/// returned delegate but does not own it: keep it as long as the table.
std::unique_ptr<NoFocusDelegate> setUpFileTable(QTableWidget& table, const QStringList& headers);

/// Adds a row with a name at its end.
void addNameRow(QTableWidget& table, int row, const QString& name);

/// Puts a gray text into a cell. A row that does not exist is passed over: the camera may count
/// more files than it lists.
void setDetail(QTableWidget& table, int row, Column column, const QString& text,
               Qt::Alignment alignment);

} // namespace card
