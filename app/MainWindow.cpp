// Construction, destruction, display-only fields, number conversion.
#include "app/MainWindow.h"

#include "card/CardCommands.h"
#include "card/NoFocusDelegate.h"
#include "card/NumberText.h"
#include "posix/Worker.h"
#include "ui_MainWindow.h"

#include <vector>

#include <QCoreApplication>
#include <QPalette>
#include <QThread>
#include <QTranslator>

namespace {

/// Creates a translator that is never deleted: it stays installed until the process ends, so no
/// window can own it. The list keeps it reachable, so that LeakSanitizer does not report it.
QTranslator* makeLastingTranslator()
{
    static auto& lasting = *new std::vector<QTranslator*>;
    lasting.push_back(new QTranslator);
    return lasting.back();
}

/// Returns the worker threads among the window's children. sys::Worker has no meta-object that
/// findChildren() could search for.
std::vector<sys::Worker*> workersOf(const QObject& window)
{
    std::vector<sys::Worker*> workers;
    const auto threads = window.findChildren<QThread*>();
    for (QThread* thread : threads) {
        if (auto* worker = dynamic_cast<sys::Worker*>(thread)) {
            workers.push_back(worker);
        }
    }
    return workers;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), getFileCountUrl(card::fileCountCommand),
      getFileListUrl(card::fileListCommand), deleteFileUrl(card::deleteFileCommand),
      getFileInfoUrl(card::fileInfoCommand), deleteAllFilesUrl(card::deleteAllFilesCommand),
      formatCardUrl(card::formatCardCommand), ui(std::make_unique<Ui_MainWindow>())
{
    ui->setupUi(this);
    ui->progressBarDownLoad->hide();
    LineEditsInit();
    TableWidgetItemInit();
    joinLabelsToFields();
    openTableToKeyboard();
    translator = makeLastingTranslator();
    QCoreApplication::installTranslator(translator);
    ui->comboBox->insertItems(ui->comboBox->count(),
                              {QStringLiteral("English"), QStringLiteral("Chinese")});
    translateLanguage();
    // SIGNAL() and SLOT(), as for all the window's slots. clazy:excludeall=old-style-connect
    connect(ui->comboBox, SIGNAL(currentIndexChanged(int)), this, SLOT(comboxLanguageChanged()));
}

MainWindow::~MainWindow()
{
    stopWorkers();
}

/// Stops all worker threads, since a QThread must not be destroyed while it runs. Asks all of them
/// to stop before it waits, so that they end in parallel.
void MainWindow::stopWorkers()
{
    const std::vector<sys::Worker*> workers = workersOf(*this);
    for (sys::Worker* worker : workers) {
        worker->requestStop();
    }
    for (sys::Worker* worker : workers) {
        worker->stopAndWait();
    }
}

void MainWindow::itoa(int value, char* string, int radix)
{
    card::writeNumber(value, string, radix);
}

void MainWindow::LineEditsInit()
{
    LineEditInit(ui->lineEditLinkBELUN);
    LineEditInit(ui->lineEditHardType);
    LineEditInit(ui->lineEditHardVer);
    LineEditInit(ui->lineEditSoftVer);
    LineEditInit(ui->lineEditProtocolVer);
    LineEditInit(ui->lineEditBootVer);
    LineEditInit(ui->lineEditDownloadLabel);
    LineEditInit(ui->lineEditDownloadProgress);
}

/// Sets up a field that only displays a value: disabled, but with black text.
void MainWindow::LineEditInit(QLineEdit* Information)
{
    QPalette palette = Information->palette();
    palette.setBrush(QPalette::Text, QColor(0, 0, 0, 255));
    Information->setPalette(palette);
    Information->setStyleSheet(QStringLiteral("border:1px;background:transparent"));
    Information->setEnabled(false);
}
