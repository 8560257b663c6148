// The program's window, operated as by a user.
#pragma once

#include "app/MainWindow.h"
#include "tests/kit/WindowProbe.h"
#include "tests/kit/WindowTexts.h"

#include <memory>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QList>
#include <QProgressBar>
#include <QPushButton>
#include <QStringList>
#include <QTableWidget>

/// The window on screen, with functions that operate its widgets by mouse and keyboard and that
/// return what it shows.
class UserWindow
{
public:
    UserWindow();
    ~UserWindow();
    UserWindow(const UserWindow&) = delete;
    UserWindow& operator=(const UserWindow&) = delete;

    /// Selects English, then destroys the window as the end of the program does. The window's
    /// translator stays installed and would translate the next window too.
    void destroy();

    MainWindow& window() const { return *m_window; }
    support::WindowProbe probe() const { return support::WindowProbe(*m_window); }

    void clickLink() const { probe().click(QStringLiteral("pushButtonLinkBELUN")); }
    void clickBrowse() const { probe().click(QStringLiteral("pushButtonEnterTFcard")); }
    void clickDownload() const { probe().click(QStringLiteral("pushButtonDownloadFile")); }
    void clickDelete() const { probe().click(QStringLiteral("pushButtonDeleteFile")); }
    void clickDeleteAll() const { probe().click(QStringLiteral("pushButtonDeleteAllFiles")); }
    void clickFormat() const { probe().click(QStringLiteral("pushButtonFormatCard")); }
    /// Toggles the check box with the space bar.
    void toggleSelectAll() const;
    /// Clicks the first of these rows, and the others while holding Ctrl.
    void chooseRows(const QList<int>& rows) const;
    void downloadRows(const QList<int>& rows) const;
    void deleteRows(const QList<int>& rows) const;
    void chooseEnglish() const;
    void chooseChinese() const;
    QComboBox& languages() const { return probe().child<QComboBox>(QStringLiteral("comboBox")); }

    QLineEdit& statusField() const { return lineEdit("lineEditLinkBELUN"); }
    QString status() const { return statusField().text(); }
    bool showsLinkSuccess() const { return status() == support::windowText("linked").english; }
    bool showsLinkFail() const { return status() == support::windowText("unlinked").english; }
    /// Returns the texts of the version fields: hardware type, then hardware, software, protocol
    /// and bootloader version.
    QStringList versions() const;

    QTableWidget& table() const;
    /// Returns the numbers of the selected rows in ascending order.
    QList<int> selectedRows() const;
    QCheckBox& selectAll() const;
    /// Returns the texts of the name column.
    QStringList names() const;
    /// Returns the row's four texts, empty where there is no item.
    QStringList row(int number) const;

    QPushButton& button(const char* name) const;
    QLineEdit& lineEdit(const char* name) const;
    QString downloadLabel() const { return lineEdit("lineEditDownloadLabel").text(); }
    QString downloadCount() const { return lineEdit("lineEditDownloadProgress").text(); }
    QProgressBar& progressBar() const;
    bool canDownload() const { return button("pushButtonDownloadFile").isEnabled(); }
    bool canDeleteAll() const { return button("pushButtonDeleteAllFiles").isEnabled(); }
    /// Returns whether the window shows no download: the download button is enabled, the progress
    /// bar is hidden and the texts are empty.
    bool isIdle() const;

private:
    std::unique_ptr<MainWindow> m_window;
};
