// Accessible names, leaving the table from the keyboard, and where the focus goes.
#include "app/MainWindow.h"

#include "ui_MainWindow.h"

#include <QPushButton>
#include <QShortcut>

/// Makes the version fields and the language combo box the buddies of their labels, from which they
/// take their accessible names in the current language. The texts have no mnemonics, so this has no
/// other effect.
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

/// Adds shortcuts that leave the table, in which Tab only moves from cell to cell. Ctrl+Tab and
/// Ctrl+Shift+Tab move to the next and previous widget and keep the selection, so that the buttons
/// can be reached from the keyboard.
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

/// Moves the focus to the table because Qt would move it from a disabled button to the next widget,
/// for example from Download File to Delete File, where the next press of the space bar would
/// delete the selected files. The check uses the window's own focus widget, because the window may
/// be inactive.
void MainWindow::disableButton(QPushButton& button)
{
    if (focusWidget() == &button) {
        ui->tableWidgetFileInfo->setFocus();
    }
    button.setEnabled(false);
}
