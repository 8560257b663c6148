#include "link/GroundClientThread.h"

#include "link/ReceiveLoop.h"

#include <netinet/in.h>

#include <QDebug>
#include <QTimer>

GroundClientThread::GroundClientThread(QObject* parent) : QThread(parent)
{
    qDebug("GroundClientThread build");
    auto* timer = new QTimer(this);
    // By signature, like the window's connections. clazy:excludeall=old-style-connect
    connect(timer, SIGNAL(timeout()), this, SLOT(heartBeatTimer()));
    timer->setInterval(1000);
    timer->start();
}

GroundClientThread::~GroundClientThread()
{
    stopAndWait();
    qDebug("GroundClientThread ~");
}

void GroundClientThread::stopAndWait()
{
    m_socket.stopAndWait(*this);
}

int GroundClientThread::newTcpSocketClient(const char* ip, int port)
{
    return m_socket.connectTo(ip, port);
}

int GroundClientThread::gethostIP(int sockfd, char* ip)
{
    return vehicle::localAddress(sockfd, ip);
}

void GroundClientThread::sendString(int sockfd, char type, char data)
{
    vehicle::sendFrame(sockfd, type, data);
}

void GroundClientThread::ModuleNameInit(char* /*modulename*/) {}

void GroundClientThread::heartBeatTimer()
{
    ++heartBeatCount;
}

void GroundClientThread::run()
{
    vehicle::blockPipeSignal();
    for (;;) {
        qDebug("GroundClientThread run begin");
        const int sockfd = newTcpSocketClient(serverIP, serverPort);
        m_socket.keep(sockfd);
        if (m_socket.stopRequested()) {
            return;
        }
        char ip[INET_ADDRSTRLEN];
        const int length = gethostIP(sockfd, ip);
        qDebug() << "Ground host IP:" << ip << "length:" << length;

        heartBeatCount = 0;
        vehicle::receiveUntilEnd(
            sockfd, heartBeatCount,
            [this, sockfd](const vehicle::Chunk& chunk) { handleChunk(sockfd, chunk); });
        if (m_socket.stopRequested()) {
            return;
        }
        qDebug("GroundClientThread run exit");
    }
}

void GroundClientThread::handleChunk(int sockfd, const vehicle::Chunk& chunk)
{
    if (vehicle::isHeartbeat(chunk, vehicle::groundStartByte)) {
        heartBeatCount = 0;
        vehicle::sendFrame(sockfd, vehicle::heartbeatType, vehicle::heartbeatAnswerPayload);
    }
}
