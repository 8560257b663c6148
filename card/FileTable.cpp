#include "card/FileTable.h"

#include <QColor>
#include <QFont>
#include <QHeaderView>
#include <QTableWidget>

namespace card {

namespace {

/// A cell whose accessible description is the current header of its column, so that screen readers
/// can announce the column.
class Cell : public QTableWidgetItem
{
public:
    using QTableWidgetItem::QTableWidgetItem;

    QVariant data(int role) const override
    {
        if (role == Qt::AccessibleDescriptionRole && tableWidget() != nullptr) {
            return tableWidget()->model()->headerData(column(), Qt::Horizontal);
        }
        return QTableWidgetItem::data(role);
    }
};

} // namespace

std::unique_ptr<NoFocusDelegate> setUpFileTable(QTableWidget& table, const QStringList& headers)
{
    QHeaderView& columns = *table.horizontalHeader();
    QHeaderView& rows = *table.verticalHeader();

    table.setColumnCount(ColumnCount);
    columns.setDefaultSectionSize(150);
    table.setHorizontalHeaderLabels(headers);
    QFont headerFont = columns.font();
    headerFont.setBold(true);
    columns.setFont(headerFont);
    columns.setStretchLastSection(true);
    columns.setSectionResizeMode(QHeaderView::Stretch);
    rows.setDefaultSectionSize(25);
    table.setFrameShape(QFrame::NoFrame);
    rows.setVisible(false);
    table.setShowGrid(false);
    auto delegate = std::make_unique<NoFocusDelegate>();
    table.setItemDelegate(delegate.get());
    table.setSelectionMode(QAbstractItemView::ExtendedSelection);
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    columns.setFixedHeight(30);
    table.setStyleSheet(QStringLiteral("selection-background-color:rgb(89,153,247);"));
    columns.setStyleSheet(QStringLiteral("QHeaderView::section{background:rgb(231,228,229);}"));
    columns.setHighlightSections(false);
    return delegate;
}

void addNameRow(QTableWidget& table, int row, const QString& name)
{
    table.insertRow(row);
    table.setItem(row, NameColumn, new Cell(name));
}

void setDetail(QTableWidget& table, int row, Column column, const QString& text,
               Qt::Alignment alignment)
{
    if (row < 0 || row >= table.rowCount()) {
        return;
    }
    auto* item = new Cell(text);
    item->setData(Qt::ForegroundRole, QColor(QStringLiteral("gray")));
    item->setData(Qt::TextAlignmentRole, static_cast<int>(alignment));
    table.setItem(row, column, item);
}

} // namespace card
