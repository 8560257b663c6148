// One request to the camera and its answer, in bounded time and memory.
#pragma once

#include "verify/AnswerReader.h"

#include <chrono>
#include <cstdint>

#include <QByteArray>
#include <QString>

class QTcpSocket;

namespace verify {

/// The reason why there is no answer.
enum class Trouble {
    None,
    NoRoute,      ///< the system has no route, or the network reports so
    Refused,      ///< the camera refuses the connection
    NoConnection, ///< no answer within the timeout
    Silent,       ///< connected, but no byte within the timeout
    TooSlow,      ///< the answer to a command, or a head, took more than four times the timeout
    Surplus,      ///< a recording has more bytes than its head announces
    Closed,       ///< the connection ended before the answer did
    Status,       ///< the answer's status is not 200
    TooLong,      ///< more than any card's answer has
    NotUnderstood,
};

/// The error of an exchange; by default none.
struct CameraError
{
    Trouble trouble = Trouble::None;
    int status = 0;          ///< for Trouble::Status
    QString systemText = {}; ///< for Trouble::NoRoute: the system's message

    explicit operator bool() const { return trouble != Trouble::None; }
    /// Returns whether any further request would fail in the same way.
    bool isLasting() const;
};

/// Time limit for the whole answer to a command, or for a head, in timeouts.
constexpr int answerPatience = 4;

/// Talks to a camera over a new connection for each request. Uses no proxy; every wait is bounded.
class Camera
{
public:
    Camera(QString host, quint16 port, std::chrono::seconds timeout);

    enum class Kind {
        Command,
        Recording, ///< its body may take any time as long as it keeps coming, and nothing follows
                   ///< it
    };

    /// Sends the request and passes the answer to the handlers; if one returns false, the exchange
    /// ends without an error. A body longer than `bodyLimit` is rejected.
    CameraError get(const QByteArray& request, Kind kind, std::uint64_t bodyLimit,
                    const AnswerReader::Handlers& handlers) const;

private:
    CameraError connectTo(QTcpSocket& socket) const;

    const QString m_host;
    const quint16 m_port;
    const std::chrono::milliseconds m_timeout;
};

} // namespace verify
