// Commands that change the card: delete selected, delete all, format.
#include "app/MainWindow.h"

#include "card/CardCommands.h"
#include "ui_MainWindow.h"

#include <cstring>

#include <QMessageBox>
#include <QThread>

void MainWindow::on_pushButtonDeleteFile_clicked()
{
    if (!linked) {
        return;
    }
    GetSelectedFiles();
    while (selectedCount-- != 0) {
        const auto fileName = fileNameAt(card::rowAt(selectedRows, selectedCursor));
        if (fileName && !fileName->isEmpty()) {
            DeleteFile(*fileName);
        } else {
            // A delete command without a name would address the folder.
            ++selectedCursor;
        }
    }
}

void MainWindow::DeleteFile(QString fileName)
{
    disableButton(*ui->pushButtonDeleteAllFiles);
    if (askCamera(card::withArgument(deleteFileUrl, fileName))) {
        ui->pushButtonDeleteAllFiles->setEnabled(true);
        ui->tableWidgetFileInfo->removeRow(card::rowAt(selectedRows, selectedCursor));
    }
    ++selectedCursor;
    QThread::usleep(200);
}

void MainWindow::on_pushButtonDeleteAllFiles_clicked()
{
    emptyCard(deleteAllFilesUrl, QStringLiteral("已删除卡内所有文件"));
}

void MainWindow::on_pushButtonFormatCard_clicked()
{
    emptyCard(formatCardUrl, QStringLiteral("格式化卡成功"));
}

void MainWindow::emptyCard(const QString& address, const QString& successText)
{
    if (!linked || !askCamera(address)) {
        return;
    }
    // The message box is in Chinese even if the window is in English.
    if (std::strcmp(httpAnswer.c_str(), card::successAnswer) == 0) {
        QMessageBox::information(this, QStringLiteral("单击消息"), successText, QMessageBox::Ok,
                                 QMessageBox::NoButton);
    }
    ui->tableWidgetFileInfo->setRowCount(0);
}
