// The common part of both modules' link threads.
#pragma once

#include "link/ReceiveLoop.h"
#include "link/VehicleFrame.h"
#include "posix/StoppableCalls.h"
#include "posix/Worker.h"

#include <QThread>

/// A thread that maintains a connection to one module, and reconnects when the connection ends,
/// until the thread is stopped. The object belongs to the thread that created it, in which its
/// one-second timer runs; run() executes in the link thread. The derived classes have the slots and
/// the handlers, so their constructors start the timer, and their destructors stop the thread while
/// the handlers still exist.
/// clazy:exclude=missing-qobject-macro
class ModuleClientThread : public QThread, public sys::Worker
{
public:
    void requestStop() noexcept final { m_calls.requestStop(); }
    /// Ends every wait on a socket: in run(), and in this object's other functions in any thread.
    /// Returns, within milliseconds, once run() has finished and the calls in other threads have
    /// returned. Called in the link thread, it does not wait for run().
    void stopAndWait() final;

    /// Returns a socket connected to a module; retries until connecting succeeds or a stop is
    /// requested. The caller owns the descriptor. After a stop the socket may not be connected, and
    /// the descriptor is negative if no socket could be created.
    int newTcpSocketClient(const char* ip, int port);

    /// Writes the local address of a connected socket into `ip`, which has room for at least 16
    /// characters, and returns the length of the text; see vehicle::localAddress().
    int gethostIP(int sockfd, char* ip);

    /// Sends one frame with a type and one payload byte.
    void sendString(int sockfd, char type, char data);

    char serverIP[20] = {}; ///< Address of the module.
    int serverPort = 5000;  ///< TCP port of the module.

    /// Timer ticks since the last heartbeat or, before the first one, since the connection was
    /// made. The timer's thread increments it, the link thread resets and reads it, without a lock:
    /// being off by one tick is harmless for a limit of six seconds, and reads and writes of a
    /// plain int are atomic on the supported machines.
    int heartBeatCount = 0;

protected:
    /// The texts that identify the thread and its module in the log.
    struct LogNames
    {
        const char* thread;
        const char* hostLine;
        const char* socket;
    };

    ModuleClientThread(QObject* parent, const char* address, const LogNames& logNames);

    /// Starts the timer that calls the derived class's slot heartBeatTimer() every second.
    void startHeartBeatTimer();

    /// Stops the thread, waits for it and logs its end.
    void finish();

    void run() override;

    /// Sends the heartbeat answer. Must be called in the link thread.
    void answerHeartBeat(int sockfd);

private:
    /// Handles the bytes of one receive, in the link thread.
    virtual void handleReceived(int sockfd, const vehicle::Received& received) = 0;
    /// Handles the end of a connection, in the link thread; not called after a stop.
    virtual void handleEnd(const vehicle::ConnectionEnd& /*end*/) {}

    LogNames m_logNames;
    sys::StoppableCalls m_calls;
};
