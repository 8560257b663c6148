// The main window. The functions are defined in:
//   MainWindow.cpp                construction, destruction, display-only fields, number conversion
//   MainWindow_Language.cpp       language switch, setting all texts
//   MainWindow_Link.cpp           link button, reachability probe, status, version fields
//   MainWindow_Browse.cpp         the camera's commands; count, list, details; marker search, row
//                                 filling
//   MainWindow_FileTable.cpp      table set-up, select all, collecting the selection
//   MainWindow_Download.cpp       start, next, progress, finished
//   MainWindow_Delete.cpp         delete selected, delete all, format
//   MainWindow_Accessibility.cpp  names for screen readers, keyboard in the table, keyboard focus
#pragma once

#include "card/NameTable.h"
#include "card/SelectionRecord.h"
#include "http/HTTPClient.h"
#include "http/HTTPRecords.h"

#include <memory>
#include <optional>
#include <string>

#include <QLineEdit>
#include <QMainWindow>
#include <QString>
#include <QStringList>

class NoFocusDelegate;
class QPushButton;
class QTranslator;
class Ui_MainWindow;

/// The main window: links to the vehicle and manages its camera's card. All slots run in the
/// window's thread; a camera command blocks the thread until its exchange ends. The object is about
/// a third of a megabyte: create it on the main thread's stack or on the heap.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    /// Stops every worker thread and waits for it, which takes milliseconds, before anything is
    /// destroyed.
    ~MainWindow() override;

signals:
    /// Reserved for naming a module; nothing emits it.
    void ModuleNameInit(char* modulename);

    // The order of the slots and the names of their parameters are fixed. setupUi() connects the
    // on_ slots to the form's widgets by name. clazy:excludeall=connect-by-name
private slots:
    // MainWindow.cpp
    void itoa(int value, char* string, int radix);
    // MainWindow_Language.cpp
    void translateLanguage();
    void comboxLanguageChanged();
    // MainWindow.cpp
    void LineEditsInit();
    void LineEditInit(QLineEdit* Information);
    // MainWindow_FileTable.cpp
    void TableWidgetItemInit();
    // MainWindow_Link.cpp
    void on_pushButtonLinkBELUN_clicked();
    // MainWindow_Browse.cpp
    void on_pushButtonEnterTFcard_clicked();
    void ParseFileInfo(const char* fileinfo, int Index);
    // MainWindow_Download.cpp
    void on_pushButtonDownloadFile_clicked();
    void DownloadFile(QString fileName);
    void DownloadFileFinished();
    void updateDownloadFileProgress(qint64 bytesRead, qint64 totalBytes);
    // MainWindow_Delete.cpp
    void on_pushButtonDeleteFile_clicked();
    void DeleteFile(QString fileName);
    void on_pushButtonDeleteAllFiles_clicked();
    void on_pushButtonFormatCard_clicked();
    // MainWindow_FileTable.cpp
    void on_checkBoxSelectAllFiles_stateChanged(int arg1);
    void GetSelectedFiles();
    // MainWindow_Browse.cpp
    /// Copies the text between two markers into `strBuf`, which must be at least as large as
    /// `string`, and returns the length of that text. Returns 0 and writes nothing if a marker is
    /// missing.
    int findSubString(const char* string, char* strBuf, const char* leftSplit,
                      const char* rightSplit);
    // MainWindow_Link.cpp
    /// Returns whether a TCP connection can be made within `timeout` milliseconds.
    bool IPLive(QString ip, int port, int timeout = 1000);
    void VersionInfo(char hardType, int hardVer, int softVer, int ProtocolVer, int BootVer);
    void updateLinkedFlag(bool flag);

private:
    // MainWindow.cpp
    void stopWorkers();
    // MainWindow_Browse.cpp
    /// Sends a command and appends its answer to httpAnswer. Returns false if the exchange failed.
    bool sendCommand(const QString& address);
    /// Clears httpAnswer, then calls sendCommand() and returns its result.
    bool askCamera(const QString& address);
    // MainWindow_Delete.cpp
    /// Sends a command that empties the card, if the link is up. If the exchange succeeds, clears
    /// the table, after showing `successText` if the answer is card::successAnswer.
    void emptyCard(const QString& address, const QString& successText);
    // MainWindow_Link.cpp
    void showLinkState(bool isLinked);
    // MainWindow_Language.cpp
    QStringList tableHeaders() const;
    // MainWindow_FileTable.cpp
    /// Returns the name in a table row's first column, or nothing if the row or its name is
    /// missing.
    std::optional<QString> fileNameAt(qint32 row) const;
    // MainWindow_Download.cpp
    /// Returns the name in the next selected row that still exists, and moves the cursor past that
    /// row. Returns nothing if no such row is left.
    std::optional<QString> takeNextFile();
    // MainWindow_Accessibility.cpp
    void joinLabelsToFields();
    /// Sets the accessible names in the current language, from the catalogue.
    void setAccessibleNames();
    void openTableToKeyboard();
    /// Disables a button. If the button has the focus, moves the focus to the table first.
    void disableButton(QPushButton& button);

    // The item delegate, which the table uses but does not own.
    std::unique_ptr<NoFocusDelegate> m_tableDelegate;

    QTranslator* translator = nullptr; // installed until the process ends
    bool linked = false;               // result of the last probe or link report
    qint32 currentFileIndex = 0;       // row whose details are being queried
    card::NameTable fileNames;
    qint32 selectedCursor = 0; // position in selectedRows of the next row to process
    qint32 selectedCount = 0;  // number of valid entries in selectedRows; -1 after deleting
    card::SelectedRows selectedRows{};
    QString getFileCountUrl;
    QString getFileListUrl;
    QString deleteFileUrl;
    QString getFileInfoUrl;
    QString deleteAllFilesUrl;
    QString formatCardUrl;
    // One client, request and response for all commands; nothing resets the response between them.
    HTTPClient httpClient;
    HTTPRequest httpRequest;
    HTTPResponse httpResponse;
    std::string httpAnswer;
    std::unique_ptr<Ui_MainWindow> ui;
};
