// The link to the vehicle's ground module.
#pragma once

#include "link/ModuleClientThread.h"

/// The link thread of the ground module: answers its heartbeat. The state of the ground link is not
/// shown anywhere, so the thread emits nothing and ignores version reports.
class GroundClientThread : public ModuleClientThread
{
    Q_OBJECT

public:
    explicit GroundClientThread(QObject* parent);
    ~GroundClientThread() override { finish(); }

public slots:
    /// Reserved for naming the module; does nothing.
    void ModuleNameInit(char* modulename);
    /// Counts one more tick without a heartbeat.
    void heartBeatTimer();

private:
    void handleReceived(int sockfd, const vehicle::Received& received) override;
};
