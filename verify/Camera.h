// One request to the camera and its answer, in bounded time and memory.
#pragma once

#include "verify/AnswerReader.h"

#include <chrono>
#include <cstdint>

#include <QByteArray>
#include <QString>

class QTcpSocket;

namespace verify {

/// The reason why a request failed.
enum class Trouble {
    None,
    NoRoute,      ///< any failure to connect except the next two; usually there is no route
    Refused,      ///< the camera refuses the connection
    NoConnection, ///< connecting got no reply within the timeout
    Silent,       ///< connected, but the camera sent nothing for the length of the timeout
    TooSlow, ///< a head or a command's answer took longer than answerPatience times the timeout
    Surplus, ///< bytes arrived after the end of a recording
    Closed,  ///< the connection ended before the answer did
    Status,  ///< the answer's status is not 200
    TooLong, ///< the head or the body exceeds its limit
    NotUnderstood,
};

/// The error of an exchange; by default none.
struct CameraError
{
    Trouble trouble = Trouble::None;
    int status = 0;          ///< for Trouble::Status
    QString systemText = {}; ///< for Trouble::NoRoute: the system's message

    explicit operator bool() const { return trouble != Trouble::None; }
    /// Returns whether further requests are expected to fail in the same way.
    bool isLasting() const;
};

/// Time limit for the answer to a command and for the head of a recording, as a number of timeouts.
constexpr int answerPatience = 4;

/// A client that opens a new connection to the camera for each request, without a proxy. Every wait
/// is bounded.
class Camera
{
public:
    Camera(QString host, quint16 port, std::chrono::seconds timeout);

    enum class Kind {
        Command,
        Recording, ///< no time limit for the whole body; bytes after the body are an error
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
