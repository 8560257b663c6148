#include "link/GroundClientThread.h"

GroundClientThread::GroundClientThread(QObject* parent)
    : ModuleClientThread(parent, "192.168.1.148",
                         {"GroundClientThread", "Ground host IP:", "ground"})
{
    startHeartBeatTimer();
}

void GroundClientThread::ModuleNameInit(char* /*modulename*/) {}

void GroundClientThread::heartBeatTimer()
{
    ++heartBeatCount;
}

void GroundClientThread::handleReceived(int sockfd, const vehicle::Received& received)
{
    if (vehicle::isHeartbeat(received, vehicle::groundStartByte)) {
        heartBeatCount = 0;
        answerHeartBeat(sockfd);
    }
}
