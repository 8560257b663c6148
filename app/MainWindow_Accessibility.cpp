// Accessible names, leaving the table from the keyboard, and where the focus goes.
#include "app/MainWindow.h"

#include "ui_MainWindow.h"

#include <QPushButton>
#include <QShortcut>

/// A version field, and the choice of languages, takes the name of the label beside it, in whatever
/// language that is. The texts have no mnemonics, so this gives the labels nothing else to do.
void MainWindow::joinLabelsToFields()
{
    ui->label_language->setBuddy(ui->comboBox);
    ui->label_1->setBuddy(ui->lineEditHardType);
    ui->label_2->setBuddy(ui->lineEditHardVer);
    ui->label_3->setBuddy(ui->lineEditSoftVer);
    ui->label_4->setBuddy(ui->lineEditProtocolVer);
    ui->label_5->setBuddy(ui->lineEditBootVer);
}

void MainWindow::setAccessibleNames()
{
    ui->lineEditLinkBELUN->setAccessibleName(tr("Link Device"));
    const QString progress = tr("Download Progress:");
    ui->lineEditDownloadLabel->setAccessibleName(progress);
    ui->progressBarDownLoad->setAccessibleName(progress);
    ui->lineEditDownloadProgress->setAccessibleName(progress);
    ui->tableWidgetFileInfo->setAccessibleName(tr("Browse Files in Card"));
}

/// Within the table Tab goes from cell to cell and never leaves it. Ctrl+Tab and Ctrl+Shift+Tab go
/// to the next and the previous widget and keep the selection, so that a button can be reached.
void MainWindow::openTableToKeyboard()
{
    const auto leaveWith = [this](const char* keys, bool forward) {
        auto* shortcut = new QShortcut(QKeySequence(QLatin1String(keys)), ui->tableWidgetFileInfo);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                [this, forward] { focusNextPrevChild(forward); });
    };
    leaveWith("Ctrl+Tab", true);
    leaveWith("Ctrl+Shift+Tab", false);
}

/// Qt would move the focus of a disabled button on to the next widget: from Download File to Delete
/// File, where the next press of the space bar deletes. The window's own focus counts, since the
/// window need not be the active one.
void MainWindow::disableButton(QPushButton& button)
{
    if (focusWidget() == &button) {
        ui->tableWidgetFileInfo->setFocus();
    }
    button.setEnabled(false);
}
