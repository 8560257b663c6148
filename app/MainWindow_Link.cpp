// Link button, reachability probe, status, version fields.
#include "app/MainWindow.h"

#include "link/ControlClientThread.h"
#include "link/GroundClientThread.h"
#include "link/VersionText.h"
#include "ui_MainWindow.h"

#include <QFont>
#include <QNetworkProxy>
#include <QTcpSocket>

void MainWindow::on_pushButtonLinkBELUN_clicked()
{
    if (linked) {
        return;
    }
    const bool reachable = IPLive(QStringLiteral("192.168.1.148"), 5000, 1000) &&
                           IPLive(QStringLiteral("192.168.1.149"), 5000, 1000);
    showLinkState(reachable);
    if (reachable) {
        // SIGNAL() and SLOT(), as for all the window's slots. clazy:excludeall=old-style-connect
        auto* control = new ControlClientThread(this);
        connect(control, SIGNAL(VersionInfo(char,int,int,int,int)), this,
                                SLOT(VersionInfo(char,int,int,int,int)));
        connect(control, SIGNAL(updateLinkedFlag(bool)), this, SLOT(updateLinkedFlag(bool)));
        control->start(QThread::InheritPriority);
        auto* ground = new GroundClientThread(this);
        ground->start(QThread::InheritPriority);
    }
    linked = reachable;
}

bool MainWindow::IPLive(QString ip, int port, int timeout)
{
    QTcpSocket probe;
    probe.setProxy(QNetworkProxy::NoProxy); // reaching a proxy would not mean reaching the module
    probe.abort();
    probe.connectToHost(ip, static_cast<quint16>(port));
    return probe.waitForConnected(timeout);
}

void MainWindow::updateLinkedFlag(bool flag)
{
    linked = flag;
    showLinkState(linked);
}

void MainWindow::showLinkState(bool isLinked)
{
    QLineEdit& status = *ui->lineEditLinkBELUN;
    const QString look = isLinked ? QStringLiteral("border:1px;background:transparent;color:green")
                                  : QStringLiteral("border:1px;background:transparent;color:red");
    // This runs on every heartbeat, and setting a style sheet is expensive even if it is unchanged.
    if (status.styleSheet() != look) {
        status.setStyleSheet(look);
    }
    status.setText(isLinked ? tr("Link Success!") : tr("Link Fail!"));
    status.setFont(QFont(QStringLiteral("Timers"), 14, QFont::Bold, false));
}

void MainWindow::VersionInfo(char hardType, int hardVer, int softVer, int ProtocolVer, int BootVer)
{
    if (!linked) {
        return;
    }
    ui->lineEditHardType->setText(vehicle::hardwareTypeText(hardType));
    ui->lineEditHardVer->setText(vehicle::versionText(hardVer));
    ui->lineEditSoftVer->setText(vehicle::versionText(softVer));
    ui->lineEditProtocolVer->setText(vehicle::versionText(ProtocolVer));
    ui->lineEditBootVer->setText(vehicle::versionText(BootVer));
}
