// The link to the vehicle's ground module.
#pragma once

#include "link/ModuleClientThread.h"

/// Answers the ground module's heartbeat. The ground link's state is not shown anywhere, so it
/// emits nothing and passes no version report on.
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
    void handleChunk(int sockfd, const vehicle::Chunk& chunk) override;
};
