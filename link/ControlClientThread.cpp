#include "link/ControlClientThread.h"

#include "link/ReceiveLoop.h"

#include <netinet/in.h>

#include <QDebug>
#include <QTimer>

ControlClientThread::ControlClientThread(QObject* parent) : QThread(parent)
{
    qDebug("ControlClientThread build");
    auto* timer = new QTimer(this);
    // By signature, like the window's connections. clazy:excludeall=old-style-connect
    connect(timer, SIGNAL(timeout()), this, SLOT(heartBeatTimer()));
    timer->setInterval(1000);
    timer->start();
}

ControlClientThread::~ControlClientThread()
{
    stopAndWait();
    qDebug("ControlClientThread ~");
}

void ControlClientThread::stopAndWait()
{
    m_socket.stopAndWait(*this);
}

int ControlClientThread::newTcpSocketClient(const char* ip, int port)
{
    return m_socket.connectTo(ip, port);
}

int ControlClientThread::gethostIP(int sockfd, char* ip)
{
    return vehicle::localAddress(sockfd, ip);
}

void ControlClientThread::sendString(int sockfd, char type, char data)
{
    vehicle::sendFrame(sockfd, type, data);
}

void ControlClientThread::heartBeatTimer()
{
    ++heartBeatCount;
}

void ControlClientThread::run()
{
    vehicle::blockPipeSignal();
    for (;;) {
        qDebug("ControlClientThread run begin");
        const int sockfd = newTcpSocketClient(serverIP, serverPort);
        m_socket.keep(sockfd);
        if (m_socket.stopRequested()) {
            return;
        }
        char ip[INET_ADDRSTRLEN];
        const int length = gethostIP(sockfd, ip);
        qDebug() << "Control host IP:" << ip << "length:" << length;

        heartBeatCount = 0;
        const vehicle::ConnectionEnd end = vehicle::receiveUntilEnd(
            sockfd, heartBeatCount,
            [this, sockfd](const vehicle::Chunk& chunk) { handleChunk(sockfd, chunk); });
        if (m_socket.stopRequested()) {
            return;
        }
        if (end.reason == vehicle::EndReason::ClosedByModule) {
            qDebug("control nRead = 0");
        } else if (end.reason == vehicle::EndReason::HeartbeatLost) {
            qDebug("heartBeat is %d,break", end.missedTicks);
        }
        linkedFlag = false;
        emit updateLinkedFlag(linkedFlag);
        qDebug("ControlClientThread run exit");
    }
}

void ControlClientThread::handleChunk(int sockfd, const vehicle::Chunk& chunk)
{
    if (const auto report = vehicle::decodeVersionReport(chunk)) {
        emit VersionInfo(static_cast<char>(report->hardType), report->hardVer, report->softVer,
                         report->protocolVer, report->bootVer);
    }
    if (vehicle::isHeartbeat(chunk, vehicle::controlStartByte)) {
        heartBeatCount = 0;
        linkedFlag = true;
        vehicle::sendFrame(sockfd, vehicle::heartbeatType, vehicle::heartbeatAnswerPayload);
        emit updateLinkedFlag(linkedFlag);
    }
}
