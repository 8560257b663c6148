// The appearance of the file table, and the creation of its cells.
#pragma once

#include "card/NoFocusDelegate.h"

#include <memory>

#include <QStringList>
#include <QTableWidgetItem>

class QTableWidget;

namespace card {

enum Column { NameColumn, DateColumn, SizeColumn, DurationColumn, ColumnCount };

/// Sets up the table's columns, headers, colours and selection mode. The table uses the returned
/// delegate but does not own it, so the caller must keep the delegate as long as the table.
std::unique_ptr<NoFocusDelegate> setUpFileTable(QTableWidget& table, const QStringList& headers);

/// Inserts a row with a name.
void addNameRow(QTableWidget& table, int row, const QString& name);

/// Sets the text of a cell, in gray. Ignores a row that does not exist: the camera may count more
/// files than it lists.
void setDetail(QTableWidget& table, int row, Column column, const QString& text,
               Qt::Alignment alignment);

} // namespace card
