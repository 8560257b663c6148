// One request to the camera and its answer, in bounded time and memory.
#pragma once

#include "verify/AnswerReader.h"

#include <chrono>
#include <cstdint>

#include <QByteArray>
#include <QString>

class QTcpSocket;

namespace verify {

/// Why there is no answer.
enum class Trouble {
    None,
    NoRoute,      ///< the system knows no way, or the network says so
    Refused,      ///< the camera refuses the connection
    NoConnection, ///< nobody answered within the time-out
    Silent,       ///< connected, and then no byte for the whole time-out
    TooSlow,      ///< the answer to a command, or a head, took four times the time-out
    Surplus,      ///< a recording has more bytes than its head announces
    Closed,       ///< the connection ended before the answer did
    Status,       ///< the answer's status is not 200
    TooLong,      ///< more than any card's answer has
    NotUnderstood,
};

/// What went wrong in an exchange; a default one says that nothing did.
struct CameraError
{
    Trouble trouble = Trouble::None;
    int status = 0;          ///< for Trouble::Status
    QString systemText = {}; ///< for Trouble::NoRoute: what the system says

    explicit operator bool() const { return trouble != Trouble::None; }
    /// Whether any further request would end the same way.
    bool isLasting() const;
};

/// Time-outs that the answer to a command, or a head, may take altogether.
constexpr int answerPatience = 4;

/// Talks to a camera over a connection of its own for each request, closed after it. No proxy is
/// asked, and every wait is bounded.
class Camera
{
public:
    Camera(QString host, quint16 port, std::chrono::seconds timeout);

    enum class Kind {
        Command,
        Recording, ///< its body may take any time as long as it keeps coming, and nothing follows
                   ///< it
    };

    /// Sends the request and hands the answer to the handlers; one that returns false ends the
    /// exchange without an error. A body longer than `bodyLimit` is refused.
    CameraError get(const QByteArray& request, Kind kind, std::uint64_t bodyLimit,
                    const AnswerReader::Handlers& handlers) const;

private:
    CameraError connectTo(QTcpSocket& socket) const;

    const QString m_host;
    const quint16 m_port;
    const std::chrono::milliseconds m_timeout;
};

} // namespace verify
