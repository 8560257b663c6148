// A run of the window with the simulator, played again from its journal.
#include "tests/kit/SimulatorProcess.h"
#include "tests/kit/StdoutCapture.h"
#include "tests/kit/TestMain.h"
#include "tests/kit/UserWindow.h"
#include "tests/system/FaultRun.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

class ReplayTest : public QObject
{
    Q_OBJECT

private slots:
    void windowSeesTheSameFromAFullJournal();

private:
    /// Appends to `seen` what the window shows and saves with a simulator started with these
    /// arguments.
    void use(const QStringList& arguments, QStringList& seen);

    QTemporaryDir m_folder;
};

void ReplayTest::use(const QStringList& arguments, QStringList& seen)
{
    QDir(QDir::homePath()).removeRecursively();
    QDir().mkpath(QDir::homePath() + "/Desktop");
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(arguments), qPrintable(simulator.error()));
    UserWindow user;
    user.clickLink();
    QVERIFY(support::eventually([&user] { return user.showsLinkSuccess(); }));
    user.clickBrowse();
    for (int row = 0; row < user.table().rowCount(); ++row) {
        seen += user.row(row).join('|');
    }
    QCOMPARE(seen.size(), 2);
    user.chooseRows({0, 1});
    const support::StdoutCapture standardOutput;
    user.clickDownload();
    QVERIFY(support::eventually([&user] { return user.isIdle(); }));
    for (const QString& name : user.names()) {
        QFile file(FaultRun::downloadPath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        seen += QString::fromLatin1(file.readAll().toHex());
    }
    user.destroy();
    QVERIFY2(simulator.end(), qPrintable(simulator.error()));
}

void ReplayTest::windowSeesTheSameFromAFullJournal()
{
    const QString card = m_folder.filePath("card");
    const CardFile large{"A.MP4", 40'000};
    const CardFile small{"B.MP4", 500};
    QVERIFY(writeCard(card, {large, small}));
    const QString journal = m_folder.filePath("journal");
    QStringList recorded;
    // The last row is downloaded first: request 5 is for B.MP4, request 6 for A.MP4.
    use({"--card", card, "--journal", journal, "--journal-full", "--fault", "info-reordered@3",
         "--fault", "close-mid-body@6=10000", "--fault", "split-head@5"},
        recorded);
    if (QTest::currentTestFailed()) {
        return;
    }
    QVERIFY(recorded.at(0).startsWith("A.MP4|"));
    QCOMPARE(recorded.at(2), QString::fromLatin1(large.content().left(10'000).toHex()));
    QCOMPARE(recorded.at(3), QString::fromLatin1(small.content().toHex()));
    QStringList replayed;
    use({"--replay", journal}, replayed);
    QCOMPARE(replayed, recorded);
}

BELUN_NETWORK_TEST(ReplayTest)
#include "ReplayTest.moc"
