#include "link/ModuleClientThread.h"

#include "link/ModuleSocket.h"
#include "posix/PipeSignalBlock.h"

#include <netinet/in.h>

#include <QByteArray>
#include <QDebug>
#include <QTimer>

ModuleClientThread::ModuleClientThread(QObject* parent, const char* address,
                                       const LogNames& logNames)
    : QThread(parent), m_logNames(logNames)
{
    qstrncpy(serverIP, address, sizeof serverIP);
    qDebug("%s build", m_logNames.thread);
}

void ModuleClientThread::startHeartBeatTimer()
{
    auto* timer = new QTimer(this);
    // SLOT(), because only the derived class declares the slot. clazy:excludeall=old-style-connect
    connect(timer, SIGNAL(timeout()), this, SLOT(heartBeatTimer()));
    timer->setInterval(1000);
    timer->start();
}

void ModuleClientThread::stopAndWait()
{
    m_calls.stopAndWait([this](unsigned long milliseconds) {
        return currentThread() == this || wait(milliseconds); // run() cannot wait for itself
    });
}

void ModuleClientThread::finish()
{
    stopAndWait();
    qDebug("%s ~", m_logNames.thread);
}

int ModuleClientThread::newTcpSocketClient(const char* ip, int port)
{
    return vehicle::connectToModule(m_calls, m_logNames.socket, ip, port);
}

int ModuleClientThread::gethostIP(int sockfd, char* ip)
{
    return vehicle::localAddress(sockfd, ip);
}

void ModuleClientThread::sendString(int sockfd, char type, char data)
{
    const sys::PipeSignalBlock block;
    sys::StoppableCalls::Call call(m_calls);
    call.waitOn(sockfd);
    vehicle::sendFrame(sockfd, type, data);
}

void ModuleClientThread::answerHeartBeat(int sockfd)
{
    vehicle::sendFrame(sockfd, vehicle::heartbeatType, vehicle::heartbeatAnswerPayload);
}

void ModuleClientThread::run()
{
    const sys::PipeSignalBlock block;
    sys::StoppableCalls::Call call(m_calls);
    for (;;) {
        qDebug("%s run begin", m_logNames.thread);
        const int sockfd = newTcpSocketClient(serverIP, serverPort);
        m_calls.keep(sockfd); // the socket of an ended connection stays open, by design
        call.waitOn(sockfd);
        if (m_calls.stopRequested()) {
            return;
        }
        char ip[INET_ADDRSTRLEN];
        const int length = gethostIP(sockfd, ip);
        qDebug() << m_logNames.hostLine << ip << "length:" << length;

        heartBeatCount = 0;
        const vehicle::ConnectionEnd end = vehicle::receiveUntilEnd(
            sockfd, heartBeatCount, [this, sockfd](const vehicle::Received& received) {
                handleReceived(sockfd, received);
            });
        if (m_calls.stopRequested()) {
            return;
        }
        handleEnd(end);
        qDebug("%s run exit", m_logNames.thread);
    }
}
