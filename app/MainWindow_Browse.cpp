// Camera commands, and browsing: count, list, details; marker search, row filling.
#include "app/MainWindow.h"

#include "card/CardAnswers.h"
#include "card/CardCommands.h"
#include "card/FileInfoText.h"
#include "card/FileTable.h"
#include "ui_MainWindow.h"

#include <vector>

namespace {

constexpr int rowLimit = 128; // entries of the list; later ones are not shown

} // namespace

bool MainWindow::sendCommand(const QString& address)
{
    httpRequest.url = address.toStdString();
    return httpClient.get(httpRequest, httpResponse, httpAnswer);
}

bool MainWindow::askCamera(const QString& address)
{
    httpAnswer.clear();
    return sendCommand(address);
}

void MainWindow::on_pushButtonEnterTFcard_clicked()
{
    // The answer to the count command is appended to the previous answer, and the first value in
    // the combined text is taken for the count.
    if (!sendCommand(getFileCountUrl)) {
        return;
    }
    std::vector<char> countText = card::scratchFor(httpAnswer);
    findSubString(httpAnswer.c_str(), countText.data(), card::countStart, card::valueEnd);

    if (!askCamera(card::withArgument(getFileListUrl, QString::fromUtf8(countText.data())))) {
        return;
    }
    QTableWidget& table = *ui->tableWidgetFileInfo;
    table.setRowCount(0);
    card::FileListWalk walk(httpAnswer.c_str());
    for (int row = 0; row < rowLimit; ++row) {
        const auto entry = walk.next();
        if (!entry) {
            break;
        }
        if (entry->name) {
            fileNames.store(row, *entry->name);
        }
        card::addNameRow(table, row, QString::fromUtf8(fileNames[row]));
    }

    const int count = card::filesToAskAbout(countText.data(), table.rowCount());
    for (currentFileIndex = 0; currentFileIndex < count; ++currentFileIndex) {
        const QString name = QString::fromUtf8(fileNames[currentFileIndex]);
        if (askCamera(card::withArgument(getFileInfoUrl, name))) {
            ParseFileInfo(httpAnswer.c_str(), currentFileIndex);
        }
    }
}

void MainWindow::ParseFileInfo(const char* fileinfo, int Index)
{
    QTableWidget& table = *ui->tableWidgetFileInfo;
    const card::FileInfoText texts = card::readFileInfo(fileinfo);
    card::setDetail(table, Index, card::DateColumn, texts.date, Qt::AlignCenter);
    card::setDetail(table, Index, card::SizeColumn, texts.size, Qt::AlignRight);
    card::setDetail(table, Index, card::DurationColumn, texts.duration, Qt::AlignCenter);
}

int MainWindow::findSubString(const char* string, char* strBuf, const char* leftSplit,
                              const char* rightSplit)
{
    return card::copyTextBetween(string, strBuf, leftSplit, rightSplit);
}
