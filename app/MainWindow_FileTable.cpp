// Table set-up, select all, collecting the selection.
#include "app/MainWindow.h"

#include "app/CutTextTip.h"
#include "card/FileTable.h"
#include "ui_MainWindow.h"

void MainWindow::TableWidgetItemInit()
{
    m_tableDelegate = card::setUpFileTable(*ui->tableWidgetFileInfo, tableHeaders());
    new CutTextTip(*ui->tableWidgetFileInfo);
}

void MainWindow::on_checkBoxSelectAllFiles_stateChanged(int /*arg1*/)
{
    if (ui->checkBoxSelectAllFiles->checkState() == Qt::Checked) {
        ui->tableWidgetFileInfo->selectAll();
    } else {
        ui->tableWidgetFileInfo->clearSelection();
    }
}

void MainWindow::GetSelectedFiles()
{
    selectedCursor = 0;
    selectedCount = 0;
    selectedRows.fill(0);
    const auto ranges = ui->tableWidgetFileInfo->selectedRanges();
    for (const QTableWidgetSelectionRange& range : ranges) {
        for (int row = range.topRow(); row <= range.bottomRow(); ++row) {
            card::insertLargestFirst(selectedRows, selectedCount, row);
        }
    }
}

std::optional<QString> MainWindow::fileNameAt(qint32 row) const
{
    const QTableWidgetItem* item = ui->tableWidgetFileInfo->item(row, card::NameColumn);
    if (item == nullptr) {
        return std::nullopt;
    }
    return item->data(Qt::DisplayRole).toString();
}
