// Construction, destruction, display-only fields, number conversion.
#include "app/MainWindow.h"

#include "card/CardCommands.h"
#include "card/NoFocusDelegate.h"
#include "card/NumberText.h"
#include "download/DownloadFileThread.h"
#include "link/ControlClientThread.h"
#include "link/GroundClientThread.h"
#include "ui_MainWindow.h"

#include <vector>

#include <QCoreApplication>
#include <QPalette>
#include <QTranslator>

namespace {

/// Makes a translator that is never deleted: it stays installed until the process ends, when no
/// window is left to own it. The list keeps it reachable.
QTranslator* makeLastingTranslator()
{
    static auto& lasting = *new std::vector<QTranslator*>;
    lasting.push_back(new QTranslator);
    return lasting.back();
}

template <typename Thread>
void requestStops(const QObject& window)
{
    for (Thread* thread : window.findChildren<Thread*>()) {
        thread->requestStop();
    }
}

template <typename Thread>
void awaitStops(const QObject& window)
{
    for (Thread* thread : window.findChildren<Thread*>()) {
        thread->stopAndWait();
    }
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
    // By signature, as all connections to its slots are. clazy:excludeall=old-style-connect
    connect(ui->comboBox, SIGNAL(currentIndexChanged(int)), this, SLOT(comboxLanguageChanged()));
}

MainWindow::~MainWindow()
{
    stopWorkers();
}

/// A QThread must not be destroyed while it runs. All are asked first, so that they end side by
/// side.
void MainWindow::stopWorkers()
{
    requestStops<ControlClientThread>(*this);
    requestStops<GroundClientThread>(*this);
    requestStops<DownloadFileThread>(*this);
    awaitStops<ControlClientThread>(*this);
    awaitStops<GroundClientThread>(*this);
    awaitStops<DownloadFileThread>(*this);
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

/// Black although disabled: the field shows, it does not ask.
void MainWindow::LineEditInit(QLineEdit* Information)
{
    QPalette palette = Information->palette();
    palette.setBrush(QPalette::Text, QColor(0, 0, 0, 255));
    Information->setPalette(palette);
    Information->setStyleSheet(QStringLiteral("border:1px;background:transparent"));
    Information->setEnabled(false);
}
