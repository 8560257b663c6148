// The link to the vehicle's ground module.
#pragma once

#include "link/ModuleSocket.h"
#include "link/VehicleFrame.h"

#include <QThread>

/// Keeps a connection to the ground module and answers its heartbeat, exactly as the control
/// module's thread does. The ground link's state is shown nowhere, so it emits nothing and passes
/// no version report on.
class GroundClientThread : public QThread
{
    Q_OBJECT

public:
    explicit GroundClientThread(QObject* parent);
    ~GroundClientThread() override; ///< Stops the thread and waits for it.

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

    char serverIP[20] = "192.168.1.148"; ///< Address of the module.
    int serverPort = 5000;               ///< TCP port of the module.

    /// Timer ticks since the last heartbeat; shared by two threads without a lock, which does no
    /// harm for the reason told at the control module's.
    int heartBeatCount = 0;

public slots:
    /// Reserved for naming the module; does nothing.
    void ModuleNameInit(char* modulename);
    /// One more tick without a heartbeat.
    void heartBeatTimer();

protected:
    void run() override;

private:
    void handleChunk(int sockfd, const vehicle::Chunk& chunk);

    vehicle::ModuleSocket m_socket{"ground"};
};
