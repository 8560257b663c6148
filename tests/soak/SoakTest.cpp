// Soak test: hundreds of lost links and downloads and thousands of heartbeats in one window. Only
// what is designed to grow may grow, and the window must always respond.
#include "link/ControlClientThread.h"
#include "tests/kit/OpenDescriptors.h"
#include "tests/kit/SimulatedCard.h"
#include "tests/kit/SimulatorProcess.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"
#include "tests/soak/StallWatch.h"

#include <cstdio>

#include <unistd.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QFileInfoList>
#include <QIODevice>
#include <QList>
#include <QObject>
#include <QSignalSpy>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QVariant>

namespace {

constexpr qint64 answersWithin = 100;        // milliseconds
constexpr qint64 answersWhileRefused = 200;  // milliseconds; two link threads are busy at that time
constexpr qint64 growthPerDownload = 20'480; // bytes
constexpr char controlAddress[] = "192.168.1.149";
constexpr char groundAddress[] = "192.168.1.148";

/// Returns this run's share of a figure for a full run, at least 1.
int share(int whole)
{
    const double part = qEnvironmentVariable("BELUN_SOAK_SHARE", "1").toDouble();
    return qMax(1, qRound(whole * part));
}

void tell(const QString& line)
{
    std::printf("soak: %s\n", qPrintable(line));
    std::fflush(stdout);
}

/// Returns the resident memory of this process in bytes.
qint64 residentBytes()
{
    QFile file("/proc/self/statm");
    return file.open(QIODevice::ReadOnly)
               ? file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE)
               : -1;
}

QList<CardFile> recordings(int count, int size)
{
    QList<CardFile> files;
    for (int i = 0; i < count; ++i) {
        files.push_back({QString("REC%1.MP4").arg(i, 5, 10, QLatin1Char('0')), size});
    }
    return files;
}

} // namespace

class SoakTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void modulesDropAndReturn();
    void windowAnswersWhileModulesRefuse();
    void heartbeats();
    void downloads();
    void browses();
    void idleWhileLinked();

private:
    void start(const QStringList& options);
    void link();
    void waitForNextConnection(const char* device, const char* address);
    void downloadAll(int count);
    static int connectionsTo(const char* address)
    {
        return support::socketsConnectedTo(address, 5000);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<SimulatorProcess> m_simulator;
    std::unique_ptr<UserWindow> m_user;
};

void SoakTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_simulator = std::make_unique<SimulatorProcess>();
    m_user = std::make_unique<UserWindow>();
}

void SoakTest::cleanup()
{
    QElapsedTimer closing;
    closing.start();
    m_user.reset();
    QVERIFY2(closing.elapsed() < 2000, "closing the window took more than two seconds");
    m_simulator.reset();
    m_folder.reset();
}

void SoakTest::start(const QStringList& options)
{
    QVERIFY2(m_simulator->start(options), qPrintable(m_simulator->error()));
}

void SoakTest::link()
{
    m_user->clickLink();
    QVERIFY(support::eventually([this] {
        return m_user->showsLinkSuccess() && connectionsTo(controlAddress) == 1 &&
               connectionsTo(groundAddress) == 1;
    }));
}

void SoakTest::waitForNextConnection(const char* device, const char* address)
{
    const int before = connectionsTo(address);
    QVERIFY2(m_simulator->control(QByteArray("drop ") + device), qPrintable(m_simulator->error()));
    QVERIFY2(support::eventually([&] { return connectionsTo(address) == before + 1; }),
             qPrintable(QStringLiteral("%1: no connection after %2").arg(device).arg(before)));
    // Process events even if the condition already holds.
    QCoreApplication::processEvents();
}

void SoakTest::modulesDropAndReturn()
{
    start({"--sample", "--heartbeat", "20"});
    link();
    const int before = support::openDescriptors();
    const int drops = share(500);
    const StallWatch watch;
    for (int i = 0; i < drops && !QTest::currentTestFailed(); ++i) {
        waitForNextConnection("control", controlAddress);
        waitForNextConnection("ground", groundAddress);
        QVERIFY2(support::eventually([this] { return m_user->showsLinkSuccess(); }),
                 "the status is not green again");
    }
    const int grown = support::openDescriptors() - before;
    tell(QStringLiteral("%1 drops of each module: %2 descriptors more, longest wait %3 ms")
             .arg(drops)
             .arg(grown)
             .arg(watch.longest()));
    QCOMPARE(grown, 2 * drops);
    QVERIFY2(watch.longest() <= answersWithin, "the window did not respond in time");
}

void SoakTest::windowAnswersWhileModulesRefuse()
{
    start({"--sample", "--heartbeat", "100"});
    link();
    for (const char* line : {"fault refuse=control,ground", "drop control", "drop ground"}) {
        QVERIFY2(m_simulator->control(line), qPrintable(m_simulator->error()));
    }
    QVERIFY(support::eventually([this] { return m_user->showsLinkFail(); }));
    const StallWatch watch;
    QTest::qWait(share(30) * 1000);
    tell(QStringLiteral("%1 s of refusal: longest wait %2 ms").arg(share(30)).arg(watch.longest()));
    QVERIFY(watch.ticks() > 0);
    QVERIFY2(watch.longest() <= answersWhileRefused, "the window did not respond in time");
    QVERIFY2(m_simulator->control("clear refuse"), qPrintable(m_simulator->error()));
    QVERIFY(support::eventually([this] { return m_user->showsLinkSuccess(); }));
}

void SoakTest::heartbeats()
{
    start({"--sample", "--heartbeat", "5"});
    link();
    auto* control = m_user->window().findChild<ControlClientThread*>();
    QVERIFY(control != nullptr);
    QSignalSpy heard(control, SIGNAL(updateLinkedFlag(bool)));
    const int before = support::openDescriptors();
    const int wanted = share(10'000);
    const StallWatch watch;
    QVERIFY2(support::eventually([&] { return heard.size() >= wanted; },
                                 support::busyLimit + wanted * 20),
             qPrintable(QStringLiteral("%1 of %2 heartbeats").arg(heard.size()).arg(wanted)));
    tell(QStringLiteral("%1 heartbeats: longest wait %2 ms").arg(wanted).arg(watch.longest()));
    QVERIFY2(watch.longest() <= answersWithin, "the window did not respond in time");
    QVERIFY(std::all_of(heard.cbegin(), heard.cend(),
                        [](const QList<QVariant>& call) { return call.first().toBool(); }));
    QCOMPARE(support::openDescriptors(), before);
}

void SoakTest::downloadAll(int count)
{
    m_user->probe().click("checkBoxSelectAllFiles");
    m_user->clickDownload();
    QVERIFY(!m_user->canDownload());
    QVERIFY2(
        support::eventually([this] { return m_user->isIdle(); }, support::busyLimit + count * 1000),
        qPrintable(QStringLiteral("stuck at %1").arg(m_user->downloadCount())));
    m_user->probe().click("checkBoxSelectAllFiles");
}

void SoakTest::downloads()
{
    constexpr int filesOnCard = 20;
    constexpr int fileSize = 300'000;
    const QString card = m_folder->filePath("card");
    QVERIFY(writeCard(card, recordings(filesOnCard, fileSize)));
    start({"--card", card});
    link();
    m_user->clickBrowse();
    QCOMPARE(m_user->table().rowCount(), filesOnCard);
    // The first downloads make one-time allocations, such as fonts and the first thread's memory,
    // which do not count as growth.
    downloadAll(filesOnCard);
    const int rounds = share(300 / filesOnCard - 1);
    const int descriptors = support::openDescriptors();
    const qint64 memory = residentBytes();
    const StallWatch watch;
    for (int round = 0; round < rounds && !QTest::currentTestFailed(); ++round) {
        downloadAll(filesOnCard);
    }
    const int done = rounds * filesOnCard;
    const qint64 growth = (residentBytes() - memory) / done;
    const int opened = support::openDescriptors() - descriptors;
    tell(QStringLiteral("%1 downloads: %2 bytes of memory and %3 descriptors each, longest wait "
                        "%4 ms")
             .arg(done)
             .arg(growth)
             .arg(static_cast<double>(opened) / done)
             .arg(watch.longest()));
    QCOMPARE(opened, 2 * done);
    QVERIFY2(growth <= growthPerDownload, "memory grows with each download");
    QVERIFY2(watch.longest() <= answersWithin, "the window did not respond in time");
    const QFileInfoList files =
        QDir(QDir::homePath() + "/Desktop/DCIM").entryInfoList(QDir::Files, QDir::Name);
    QCOMPARE(files.size(), filesOnCard);
    QVERIFY(std::all_of(files.cbegin(), files.cend(),
                        [](const QFileInfo& file) { return file.size() == fileSize; }));
}

void SoakTest::browses()
{
    constexpr int filesOnCard = 128;
    const QString card = m_folder->filePath("card");
    QVERIFY(writeCard(card, recordings(filesOnCard, 2048)));
    start({"--card", card});
    m_user->clickBrowse();
    const int descriptors = support::openDescriptors();
    const qint64 memory = residentBytes();
    const int rounds = share(10);
    for (int round = 0; round < rounds; ++round) {
        m_user->clickBrowse();
        QCOMPARE(m_user->table().rowCount(), filesOnCard);
        QCOMPARE(m_user->row(filesOnCard - 1).at(2), QStringLiteral("2KB"));
    }
    const qint64 growth = residentBytes() - memory;
    tell(QStringLiteral("%1 browses of %2 recordings: %3 bytes more")
             .arg(rounds)
             .arg(filesOnCard)
             .arg(growth));
    QCOMPARE(support::openDescriptors(), descriptors);
    QVERIFY2(growth <= 1'048'576, "memory grows with each browse");
}

void SoakTest::idleWhileLinked()
{
    start({"--sample"});
    link();
    const int descriptors = support::openDescriptors();
    const qint64 memory = residentBytes();
    const StallWatch watch;
    QTest::qWait(share(600) * 1000);
    tell(QStringLiteral("%1 idle seconds: %2 bytes more, longest wait %3 ms")
             .arg(share(600))
             .arg(residentBytes() - memory)
             .arg(watch.longest()));
    QVERIFY(m_user->showsLinkSuccess());
    QCOMPARE(connectionsTo(controlAddress), 1);
    QCOMPARE(connectionsTo(groundAddress), 1);
    QCOMPARE(support::openDescriptors(), descriptors);
    QVERIFY2(residentBytes() - memory <= 1'048'576, "memory grows while nothing happens");
    QVERIFY2(watch.longest() <= answersWithin, "the window did not respond in time");
}

BELUN_NETWORK_TEST(SoakTest)

#include "SoakTest.moc"
