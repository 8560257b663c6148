// Language switch, setting all texts.
#include "app/MainWindow.h"

#include "ui_MainWindow.h"

#include <QTranslator>

void MainWindow::comboxLanguageChanged()
{
    const bool isChinese = ui->comboBox->currentText() == QLatin1String("Chinese");
    const QString catalogue = isChinese ? QStringLiteral(":/translation/belun_chinese.qm")
                                        : QStringLiteral(":/translation/belun_english.qm");
    // If the catalogue cannot be loaded, tr() returns the English source texts.
    static_cast<void>(translator->load(catalogue));
    translateLanguage();
}

void MainWindow::translateLanguage()
{
    ui->label_language->setText(tr("language:"));
    ui->label_1->setText(tr("HardwareType:"));
    ui->label_2->setText(tr("HardwareVersion:"));
    ui->label_3->setText(tr("SoftwareVersion:"));
    ui->label_4->setText(tr("ProtocolVersion:"));
    ui->label_5->setText(tr("BootloaderVersion:"));
    ui->pushButtonLinkBELUN->setText(tr("Link Device"));
    ui->pushButtonEnterTFcard->setText(tr("Browse Files in Card"));
    ui->pushButtonDownloadFile->setText(tr("Download File"));
    ui->pushButtonDeleteFile->setText(tr("Delete File"));
    ui->pushButtonDeleteAllFiles->setText(tr("Delete All Files"));
    ui->pushButtonFormatCard->setText(tr("Format Card"));
    ui->checkBoxSelectAllFiles->setText(tr("Select All"));
    ui->groupBoxFile->setTitle(tr("File Operate"));
    ui->groupBoxVersionInfo->setTitle(tr("Version Information"));
    ui->tableWidgetFileInfo->setHorizontalHeaderLabels(tableHeaders());
    setAccessibleNames();
}

QStringList MainWindow::tableHeaders() const
{
    return {tr("Name"), tr("Date"), tr("Size"), tr("Duration")};
}
