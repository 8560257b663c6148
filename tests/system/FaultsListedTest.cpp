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
    void everyFaultHasACase();
    void everyFaultHasItsOwnLine();

private:
    static QStringList listed();
};

QStringList FaultsListedTest::listed()
{
    QProcess simulator;
    simulator.start(BELUN_SIMULATOR, {"--list-faults=json"});
    simulator.waitForFinished();
    QStringList names;
    for (const QJsonValue fault :
         QJsonDocument::fromJson(simulator.readAllStandardOutput()).array()) {
        names += fault["name"].toString();
    }
    return names;
}

void FaultsListedTest::everyFaultHasACase()
{
    QSet<QString> played;
    for (const auto* cases : {&linkFaultCases(), &heartbeatKeptFaultCases(),
                              &heartbeatLostFaultCases(), &rebootFaultCases(), &listFaultCases(),
                              &answerFaultCases(), &downloadFaultCases(), &changeFaultCases()}) {
        for (const FaultCase& faultCase : *cases) {
            for (const QByteArray& name : faultCase.faultNames()) {
                played += QString::fromLatin1(name);
            }
        }
    }
    QStringList names = listed();
    QStringList seen = played.values();
    names.sort();
    seen.sort();
    QCOMPARE(seen.join('\n'), names.join('\n'));
}

void FaultsListedTest::everyFaultHasItsOwnLine()
{
    const QStringList names = listed();
    QVERIFY2(names.size() >= 50, qPrintable(QString::number(names.size())));
    QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), names.size());
}

BELUN_TEST(FaultsListedTest)
#include "FaultsListedTest.moc"
