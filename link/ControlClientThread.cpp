#include "link/ControlClientThread.h"

ControlClientThread::ControlClientThread(QObject* parent)
    : ModuleClientThread(parent, "192.168.1.149",
                         {"ControlClientThread", "Control host IP:", "control"})
{
    startHeartBeatTimer();
}

void ControlClientThread::heartBeatTimer()
{
    ++heartBeatCount;
}

void ControlClientThread::handleReceived(int sockfd, const vehicle::Received& received)
{
    if (const auto report = vehicle::decodeVersionReport(received)) {
        emit VersionInfo(static_cast<char>(report->hardType), report->hardVer, report->softVer,
                         report->protocolVer, report->bootVer);
    }
    if (vehicle::isHeartbeat(received, vehicle::controlStartByte)) {
        heartBeatCount = 0;
        linkedFlag = true;
        answerHeartBeat(sockfd);
        emit updateLinkedFlag(linkedFlag);
    }
}

void ControlClientThread::handleEnd(const vehicle::ConnectionEnd& end)
{
    if (end.reason == vehicle::EndReason::ClosedByModule) {
        qDebug("control nRead = 0");
    } else if (end.reason == vehicle::EndReason::HeartbeatLost) {
        qDebug("heartBeat is %d,break", end.missedTicks);
    }
    linkedFlag = false;
    emit updateLinkedFlag(linkedFlag);
}
