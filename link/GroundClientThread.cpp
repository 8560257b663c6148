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

void GroundClientThread::handleChunk(int sockfd, const vehicle::Chunk& chunk)
{
    if (vehicle::isHeartbeat(chunk, vehicle::groundStartByte)) {
        answerHeartBeat(sockfd);
    }
}
