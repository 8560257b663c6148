// The link to the vehicle's control module.
#pragma once

#include "link/ModuleSocket.h"
#include "link/VehicleFrame.h"

#include <QThread>

/// Keeps a connection to the control module, answers its heartbeat, passes its version report on
/// and tells the state of the link. Once started it reconnects by itself until it is stopped. The
/// object belongs to the thread that made it, where its one-second timer ticks; run() is the link
/// thread, and the signals come from there.
class ControlClientThread : public QThread
{
    Q_OBJECT

public:
    explicit ControlClientThread(QObject* parent);
    ~ControlClientThread() override; ///< Stops the thread and waits for it.

    /// Asks run() to end, without waiting. From any thread.
    void requestStop() noexcept { m_socket.requestStop(); }
    /// Ends whatever run() waits for and returns when it has finished, within milliseconds.
    void stopAndWait();

    /// A socket connected to the module; tries until it is, or until a stop is requested. The
    /// descriptor is the caller's; it is negative when the system gave none.
    int newTcpSocketClient(const char* ip, int port);

    /// Writes the local address of a connected socket into `ip`, which holds at least 16
    /// characters, and returns the length of the text.
    int gethostIP(int sockfd, char* ip);

    /// Sends one frame of a type and one payload byte.
    void sendString(int sockfd, char type, char data);

    char serverIP[20] = "192.168.1.149"; ///< Address of the module.
    int serverPort = 5000;               ///< TCP port of the module.

    /// Timer ticks since the last heartbeat. The timer's thread counts it up, the link thread sets
    /// it back and reads it, without a lock: a tick more or less does no harm to a limit of six
    /// seconds, and a plain int is never torn on the machines this runs on.
    int heartBeatCount = 0;

    bool linkedFlag = false; ///< The module answers the heartbeat. The link thread's own.

signals:
    void VersionInfo(char hardType, int hardVer, int softVer, int ProtocolVer, int BootVer);
    void updateLinkedFlag(bool flag);

public slots:
    /// One more tick without a heartbeat.
    void heartBeatTimer();

protected:
    void run() override;

private:
    void handleChunk(int sockfd, const vehicle::Chunk& chunk);

    vehicle::ModuleSocket m_socket{"control"};
};
