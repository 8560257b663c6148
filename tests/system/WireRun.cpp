#include "tests/system/WireRun.h"

#include "tests/kit/MessageBoxWatcher.h"
#include "tests/kit/RecordedText.h"
#include "tests/kit/SimulatedCard.h"
#include "tests/kit/TimeFactor.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

namespace {

// In list order. The files that are downloaded fit the system's connection buffer, so that each is
// sent completely whether or not it is read.
const QList<CardFile> cardFiles = {
    {"REC 3 & 4.MP4", 12'345, "2020-02-29T23:59:58Z"},
    {"REC00001.MP4", 500, "2020-01-31T12:45:02Z"},
    {"REC00002.MP4", 5'000, "2021-12-31T23:59:59Z"},
    {"REC00005.MP4", 40'000, "2022-01-01T00:00:00Z"},
    {"REC00006.MP4", 1'572'864, "2023-06-05T04:03:02Z"},
    {"REC00007.MP4", 2'047, "2024-07-08T09:10:11Z"},
};

QDir downloadFolder()
{
    return QDir(QDir::homePath() + "/Desktop/DCIM");
}

QStringList downloadedFiles()
{
    QStringList lines;
    for (const CardFile& entry : cardFiles) {
        QFile file(downloadFolder().filePath(entry.name));
        if (file.exists()) {
            const QString seen = seenFile(file.fileName(), entry.content());
            lines += QString("file %1: %2 bytes, %3")
                         .arg(entry.name)
                         .arg(file.size())
                         .arg(seen == "whole" ? "as on the card" : "other than the card's");
        }
    }
    return lines;
}

} // namespace

WireRun::WireRun(const QString& fault, bool emptyingIsTold)
    : m_fault(fault), m_emptyingIsTold(emptyingIsTold)
{
}

void WireRun::play()
{
    for (const auto step :
         {&WireRun::startSimulator, &WireRun::link, &WireRun::browse, &WireRun::browse,
          &WireRun::download, &WireRun::deleteTwo, &WireRun::deleteAll, &WireRun::format,
          &WireRun::loseLink, &WireRun::linkAgain, &WireRun::close}) {
        (this->*step)();
        if (QTest::currentTestFailed() || m_reportMissed) {
            return;
        }
    }
}

QString WireRun::text() const
{
    return journal().text() + "\n[window]\n" + m_seen.join('\n') + '\n';
}

void WireRun::startSimulator()
{
    downloadFolder().removeRecursively();
    const QString card = m_folder.filePath("card");
    QVERIFY(writeCard(card, cardFiles));
    QStringList arguments{"--card", card, "--journal", m_folder.filePath("journal")};
    if (!m_fault.isEmpty()) {
        arguments += {"--fault", m_fault};
    }
    QVERIFY2(m_simulator.start(arguments), qPrintable(m_simulator.error()));
    m_user.emplace();
}

void WireRun::link()
{
    const QStringList before = m_user->versions();
    m_user->clickLink();
    m_reportMissed = !support::eventually([&] { return m_user->versions() != before; },
                                          5000 * support::timeFactor());
    if (m_reportMissed) {
        return;
    }
    QVERIFY(support::eventually([this] {
        return journal().isHeartbeatAnswered("control", 2) &&
               journal().isHeartbeatAnswered("ground", 2);
    }));
    m_seen += "linked";
    noteLink();
}

void WireRun::browse()
{
    m_user->clickBrowse();
    m_seen += "listed";
    noteTable();
}

void WireRun::download()
{
    if (m_user->table().rowCount() != 0) {
        m_user->chooseRows({1, 3, 0});
    }
    QStringList counts;
    const auto connection =
        QObject::connect(&m_user->lineEdit("lineEditDownloadProgress"), &QLineEdit::textChanged,
                         [&counts](const QString& text) { counts += text; });
    m_user->clickDownload();
    QVERIFY(support::eventually([this] { return m_user->isIdle(); }));
    QObject::disconnect(connection);
    m_seen += "downloaded";
    m_seen += "counts: " + counts.join(' ').trimmed();
    m_seen += downloadedFiles();
}

void WireRun::deleteTwo()
{
    if (m_user->table().rowCount() != 0) {
        m_user->chooseRows({2, 4});
    }
    m_user->clickDelete();
    m_seen += "deleted two";
    noteTable();
}

void WireRun::deleteAll()
{
    m_seen += "deleted all";
    emptyCard(&UserWindow::clickDeleteAll);
    noteTable();
}

void WireRun::format()
{
    m_seen += "formatted";
    emptyCard(&UserWindow::clickFormat);
    noteTable();
}

void WireRun::emptyCard(void (UserWindow::*click)() const)
{
    support::MessageBoxWatcher watcher;
    if (m_emptyingIsTold) {
        watcher.answerNext(QMessageBox::Ok);
    }
    (*m_user.*click)();
    for (const support::SeenBox& box : watcher.boxes()) {
        m_seen += QString("message %1: %2").arg(box.title, box.text);
    }
}

void WireRun::loseLink()
{
    control("fault refuse=control");
    control("drop control");
    QVERIFY(support::eventually([this] { return m_user->showsLinkFail(); }));
    m_seen += "link lost";
    noteLink();
    m_user->clickLink();
    m_seen += "clicked while the control module was away";
    noteLink();
}

// The existing link reconnects by itself. Without heartbeats the window still shows "Link Fail!",
// so that a click creates a second link to each module.
void WireRun::linkAgain()
{
    control("fault no-heartbeat=control");
    control("clear refuse");
    QVERIFY(support::eventually([this] { return journal().isVersionReported(3); }));
    m_seen += "control module back";
    noteLink();
    m_user->clickLink();
    QVERIFY(support::eventually([this] {
        return journal().isVersionReported(5) && journal().isHeartbeatAnswered("ground", 5);
    }));
    control("clear no-heartbeat");
    QVERIFY(support::eventually([this] {
        return journal().isHeartbeatAnswered("control", 3) &&
               journal().isHeartbeatAnswered("control", 5);
    }));
    m_seen += "linked again";
    noteLink();
}

void WireRun::close()
{
    m_user.reset();
    // The result is ignored, because a connection that stays open appears in the text.
    support::eventually([this] { return journal().isEveryConnectionClosed(); });
    QVERIFY2(m_simulator.end(), qPrintable(m_simulator.error()));
}

void WireRun::control(const QByteArray& line)
{
    QVERIFY2(m_simulator.control(line), qPrintable(m_simulator.error()));
}

void WireRun::noteTable()
{
    const int rows = m_user->table().rowCount();
    m_seen += QString("table: %1 rows").arg(rows);
    for (int number = 0; number < rows; ++number) {
        m_seen += "  " + m_user->row(number).join(" | ");
    }
}

void WireRun::noteLink()
{
    m_seen += "status: " + m_user->status();
    m_seen += "versions: " + m_user->versions().join(' ');
}
