// The camera's commands, and the browse: count, list, details; marker search, row filling.
#include "app/MainWindow.h"

#include "card/CardAnswers.h"
#include "card/CardCommands.h"
#include "card/FileInfoText.h"
#include "card/FileTable.h"
#include "ui_MainWindow.h"

#include <algorithm>
#include <vector>

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
    // The count goes behind the last answer and is the first one found in all of that text.
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
    for (const std::string& name : card::readFileList(httpAnswer.c_str(), fileNames)) {
        card::addNameRow(table, table.rowCount(), QString::fromStdString(name));
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
    // One scratch text for all three fields: a field that is missing shows the one before it.
    std::vector<char> field = card::scratchFor(fileinfo);

    findSubString(fileinfo, field.data(), card::createStart, card::valueEnd);
    card::setDetail(table, Index, card::DateColumn, card::dateText(field.data()), Qt::AlignCenter);

    findSubString(fileinfo, field.data(), card::sizeStart, card::valueEnd);
    const card::ShownSize size = card::shownSize(card::leadingNumber(field.data()));
    itoa(size.count, field.data(), 10);
    card::setDetail(table, Index, card::SizeColumn, card::withUnit(field.data(), size.unit),
                    Qt::AlignRight);

    findSubString(fileinfo, field.data(), card::timeStart, card::valueEnd);
    card::setDetail(table, Index, card::DurationColumn, card::withUnit(field.data(), "s"),
                    Qt::AlignCenter);
}

int MainWindow::findSubString(const char* string, char* strBuf, const char* leftSplit,
                              const char* rightSplit)
{
    const auto text = card::textBetween(string, leftSplit, rightSplit);
    if (!text) {
        return 0;
    }
    *std::copy(text->begin(), text->end(), strBuf) = '\0';
    return static_cast<int>(text->size());
}
