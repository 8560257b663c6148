// The link to the vehicle's control module.
#pragma once

#include "link/ModuleClientThread.h"

/// The link thread of the control module: answers its heartbeat, emits its version report and
/// reports the state of the link. The signals are emitted in the link thread.
class ControlClientThread : public ModuleClientThread
{
    Q_OBJECT

public:
    /// Whether a heartbeat was received on the current connection. For the link thread only.
    bool linkedFlag = false;

    explicit ControlClientThread(QObject* parent);
    ~ControlClientThread() override { finish(); }

signals:
    void VersionInfo(char hardType, int hardVer, int softVer, int ProtocolVer, int BootVer);
    void updateLinkedFlag(bool flag);

public slots:
    /// Counts one more tick without a heartbeat.
    void heartBeatTimer();

private:
    void handleReceived(int sockfd, const vehicle::Received& received) override;
    void handleEnd(const vehicle::ConnectionEnd& end) override;
};
