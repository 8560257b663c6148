// What a user sees of each of the simulator's faults. CTest runs each function separately.
#include "tests/kit/TestMain.h"
#include "tests/system/FaultRun.h"

class FaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void link_data() { addFaultRows(linkFaults); }
    void link() { playFaultRow(linkFaults); }
    void heartbeatKept_data() { addFaultRows(heartbeatKeptFaults); }
    void heartbeatKept() { playFaultRow(heartbeatKeptFaults); }
    void heartbeatLost_data() { addFaultRows(heartbeatLostFaults); }
    void heartbeatLost() { playFaultRow(heartbeatLostFaults); }
    void reboot_data() { addFaultRows(rebootFaults); }
    void reboot() { playFaultRow(rebootFaults); }
    void list_data() { addFaultRows(listFaults); }
    void list() { playFaultRow(listFaults); }
    void answers_data() { addFaultRows(answerFaults); }
    void answers() { playFaultRow(answerFaults); }
    void download_data() { addFaultRows(downloadFaults); }
    void download() { playFaultRow(downloadFaults); }
    void change_data() { addFaultRows(changeFaults); }
    void change() { playFaultRow(changeFaults); }
};

BELUN_NETWORK_TEST(FaultsTest)
#include "FaultsTest.moc"
