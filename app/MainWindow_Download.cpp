// Downloads, one file after the other: start, next, progress, finished.
#include "app/MainWindow.h"

#include "download/DownloadFileThread.h"
#include "ui_MainWindow.h"

#include <QThread>

void MainWindow::on_pushButtonDownloadFile_clicked()
{
    if (!linked) {
        return;
    }
    GetSelectedFiles();
    if (const auto fileName = takeNextFile()) {
        DownloadFile(*fileName);
    }
}

/// Skips rows that no longer exist: the card may be browsed or emptied during a download.
std::optional<QString> MainWindow::takeNextFile()
{
    while (selectedCursor < selectedCount) {
        const qint32 row = card::rowAt(selectedRows, selectedCursor);
        ++selectedCursor;
        if (auto fileName = fileNameAt(row)) {
            return fileName;
        }
    }
    return std::nullopt;
}

void MainWindow::DownloadFile(QString fileName)
{
    ui->lineEditDownloadProgress->setText(
        QStringLiteral("%1%2%3").arg(selectedCursor).arg(QStringLiteral("/")).arg(selectedCount));
    ui->lineEditDownloadLabel->setText(tr("Download Progress:"));
    ui->progressBarDownLoad->setValue(0);
    ui->progressBarDownLoad->show();
    disableButton(*ui->pushButtonDownloadFile);

    auto* download = new DownloadFileThread(this);
    download->fileName = fileName;
    // SIGNAL() and SLOT(), as for all the window's slots. clazy:excludeall=old-style-connect
    connect(download, SIGNAL(updateDownloadFileProgress(qint64,qint64)), this,
                             SLOT(updateDownloadFileProgress(qint64,qint64)));
    connect(download, SIGNAL(downloadFileFinished()), this, SLOT(DownloadFileFinished()));
    download->start(QThread::InheritPriority);
}

void MainWindow::updateDownloadFileProgress(qint64 bytesRead, qint64 totalBytes)
{
    ui->progressBarDownLoad->setMaximum(static_cast<int>(totalBytes));
    ui->progressBarDownLoad->setValue(static_cast<int>(bytesRead));
}

void MainWindow::DownloadFileFinished()
{
    ui->progressBarDownLoad->hide();
    ui->pushButtonDownloadFile->setEnabled(true);
    if (const auto fileName = takeNextFile()) {
        DownloadFile(*fileName);
    } else {
        ui->lineEditDownloadLabel->clear();
        ui->lineEditDownloadProgress->clear();
    }
    QThread::usleep(200);
}
