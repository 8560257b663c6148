// One client of the camera.
#pragma once

#include "simulator/AnswerBytes.h"
#include "simulator/Connection.h"
#include "simulator/FaultTable.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace simulator {

/// The state shared by all connections of the camera; must outlive them.
struct CameraState
{
    CameraAnswers* answers;
    const FaultTable* faults;
    std::uint64_t rate = 0; ///< bytes per second for recordings; 0: no limit
    std::uint64_t exchanges = 0;
    std::function<void()> dropModules;                 ///< for the fault "link-lost-mid-command"
    std::function<void(std::uint64_t)> exchangeBegins; ///< called with the number of each request
    std::function<void()> downloadEnds;                ///< called after the answer to a download
};

/// One client of the camera: one request, one answer, then the end of the connection.
class CameraConnection : public Connection
{
public:
    CameraConnection(FileDescriptor socket, ConnectionName name, Journal& journal,
                     CameraState& state);

protected:
    void received(std::string_view bytes) override;
    void work(TimePoint now) override;
    TimePoint nextWork() const override { return never; }

private:
    void takeRequest();
    void queueAnswer(Answer answer, const FaultScope& faults);
    void queueMessage(Message message);

    CameraState* m_state;
    std::string m_request;
    bool m_requestWhole = false;
    bool m_answered = false;
    bool m_isDownload = false;
};

} // namespace simulator
