#include "tests/kit/UserWindow.h"

#include <algorithm>

#include <QItemSelectionModel>
#include <QString>
#include <QTableWidgetItem>
#include <QTest>

UserWindow::UserWindow() : m_window(std::make_unique<MainWindow>())
{
    m_window->show();
}

UserWindow::~UserWindow()
{
    destroy();
}

void UserWindow::destroy()
{
    if (m_window) {
        chooseEnglish();
        m_window.reset();
    }
}

void UserWindow::toggleSelectAll() const
{
    QTest::keyClick(&selectAll(), Qt::Key_Space);
}

void UserWindow::chooseRows(const QList<int>& rows) const
{
    Qt::KeyboardModifier modifier = Qt::NoModifier;
    for (const int row : rows) {
        QTableWidgetItem* item = table().item(row, 0);
        table().scrollToItem(item);
        QTest::mouseClick(table().viewport(), Qt::LeftButton, modifier,
                          table().visualItemRect(item).center());
        modifier = Qt::ControlModifier;
    }
}

void UserWindow::downloadRows(const QList<int>& rows) const
{
    chooseRows(rows);
    clickDownload();
}

void UserWindow::deleteRows(const QList<int>& rows) const
{
    chooseRows(rows);
    clickDelete();
}

void UserWindow::chooseEnglish() const
{
    QTest::keyClick(&languages(), Qt::Key_Home);
}

void UserWindow::chooseChinese() const
{
    QTest::keyClick(&languages(), Qt::Key_End);
}

QStringList UserWindow::versions() const
{
    return {lineEdit("lineEditHardType").text(), lineEdit("lineEditHardVer").text(),
            lineEdit("lineEditSoftVer").text(), lineEdit("lineEditProtocolVer").text(),
            lineEdit("lineEditBootVer").text()};
}

QTableWidget& UserWindow::table() const
{
    return probe().child<QTableWidget>(QStringLiteral("tableWidgetFileInfo"));
}

QList<int> UserWindow::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex& index : table().selectionModel()->selectedRows()) {
        rows.append(index.row());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

QCheckBox& UserWindow::selectAll() const
{
    return probe().child<QCheckBox>(QStringLiteral("checkBoxSelectAllFiles"));
}

QStringList UserWindow::names() const
{
    QStringList names;
    for (int number = 0; number < table().rowCount(); ++number) {
        names.append(row(number).first());
    }
    return names;
}

QStringList UserWindow::row(int number) const
{
    QStringList texts;
    for (int column = 0; column < table().columnCount(); ++column) {
        const QTableWidgetItem* item = table().item(number, column);
        texts.append(item != nullptr ? item->text() : QString());
    }
    return texts;
}

QPushButton& UserWindow::button(const char* name) const
{
    return probe().child<QPushButton>(QLatin1String(name));
}

QLineEdit& UserWindow::lineEdit(const char* name) const
{
    return probe().child<QLineEdit>(QLatin1String(name));
}

QProgressBar& UserWindow::progressBar() const
{
    return probe().child<QProgressBar>(QStringLiteral("progressBarDownLoad"));
}

bool UserWindow::isIdle() const
{
    return canDownload() && !progressBar().isVisible() && downloadLabel().isEmpty() &&
           downloadCount().isEmpty();
}
