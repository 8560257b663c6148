// Every fault of the simulator has a case, and every case names existing faults.
#include "tests/kit/TestMain.h"
#include "tests/system/FaultCase.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QProcess>
#include <QSet>

class FaultsListedTest : public QObject
{
    Q_OBJECT

private slots:
    void everyFaultHasItsOwnLineAndACase();
};

void FaultsListedTest::everyFaultHasItsOwnLineAndACase()
{
    QSet<QString> played;
    for (const auto* cases :
         {&linkFaults, &heartbeatKeptFaults, &heartbeatLostFaults, &rebootFaults, &listFaults,
          &answerFaults, &downloadFaults, &changeFaults}) {
        for (const FaultCase& faultCase : *cases) {
            for (const QByteArray& name : faultCase.faultNames()) {
                played += QString::fromLatin1(name);
            }
        }
    }
    QProcess simulator;
    simulator.start(BELUN_SIMULATOR, {"--list-faults=json"});
    simulator.waitForFinished();
    QStringList listed;
    for (const QJsonValue fault :
         QJsonDocument::fromJson(simulator.readAllStandardOutput()).array()) {
        listed += fault["name"].toString();
    }
    QVERIFY2(listed.size() >= 50, qPrintable(QString::number(listed.size())));
    QStringList seen = played.values();
    listed.sort();
    seen.sort();
    QCOMPARE(seen.join('\n'), listed.join('\n'));
}

BELUN_TEST(FaultsListedTest)
#include "FaultsListedTest.moc"
