// What the link threads of both modules have in common.
#pragma once

#include "link/ReceiveLoop.h"
#include "link/VehicleFrame.h"
#include "posix/StoppableCalls.h"
#include "posix/Worker.h"

#include <QThread>

/// Keeps a connection to one module until it is stopped, reconnecting by itself. The object belongs
/// to the thread that made it, where its one-second timer ticks; run() is the link thread. Derived
/// classes have the meta-object, so it is their constructors that start the timer, and their
/// destructors that stop the thread, as long as their handlers exist.
/// clazy:exclude=missing-qobject-macro
class ModuleClientThread : public QThread, public sys::Worker
{
public:
    void requestStop() noexcept final { m_calls.requestStop(); }
    /// Ends every wait on a socket, in run() and in newTcpSocketClient() from whatever thread, and
    /// returns when run() has finished and the last caller has left, within milliseconds.
    void stopAndWait() final;

    /// Returns a socket connected to a module; retries until it is, or until a stop is requested.
    /// The descriptor is the caller's; it is negative if the system gave none.
    int newTcpSocketClient(const char* ip, int port);

    /// Writes the local address of a connected socket into `ip`, which holds at least 16
    /// characters, and returns the length of the text.
    int gethostIP(int sockfd, char* ip);

    /// Sends one frame of a type and one payload byte.
    void sendString(int sockfd, char type, char data);

    char serverIP[20] = {}; ///< Address of the module.
    int serverPort = 5000;  ///< TCP port of the module.

    /// Timer ticks since the last heartbeat. The timer's thread counts it up, the link thread
    /// resets and reads it, without a lock: a tick more or less is harmless to a limit of six
    /// seconds, and a plain int is never torn on the machines this runs on.
    int heartBeatCount = 0;

protected:
    /// How the log names the thread and the module.
    struct LogNames
    {
        const char* thread;
        const char* hostLine;
        const char* socket;
    };

    ModuleClientThread(QObject* parent, const char* address, const LogNames& logNames);

    /// Starts the timer that calls the derived class's slot heartBeatTimer().
    void startHeartBeatTimer();

    /// Stops the thread, waits for it and logs its end.
    void finish();

    void run() override;

    /// Resets the count and sends the heartbeat answer. Only for the link thread.
    void answerHeartBeat(int sockfd);

private:
    /// Handles what one receive returned, in the link thread.
    virtual void handleChunk(int sockfd, const vehicle::Chunk& chunk) = 0;
    /// Handles the end of a connection, in the link thread; not called for a stop.
    virtual void handleEnd(const vehicle::ConnectionEnd& /*end*/) {}

    LogNames m_logNames;
    sys::StoppableCalls m_calls;
};
