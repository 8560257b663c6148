#include "verify/Camera.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <utility>
#include <vector>

#include <QElapsedTimer>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

namespace verify {

namespace {

constexpr qint64 receiveSize = 262'144;
// Milliseconds to wait for further bytes after a complete recording. If none arrive in this time,
// or if the camera closes the connection, the recording is accepted.
constexpr int surplusWait = 200;

CameraError errorOf(const AnswerReader& reader)
{
    switch (reader.state()) {
    case AnswerReader::State::Complete:
    case AnswerReader::State::Stopped:
        return {};
    case AnswerReader::State::Refused:
        return {Trouble::Status, reader.status()};
    case AnswerReader::State::HeadTooLong:
    case AnswerReader::State::BodyTooLong:
        return {Trouble::TooLong};
    case AnswerReader::State::BadHead:
    case AnswerReader::State::BadBody:
        return {Trouble::NotUnderstood};
    default:
        return {Trouble::Closed};
    }
}

enum class Arrival { Bytes, End, Nothing };

Arrival waitForBytes(QTcpSocket& socket, int milliseconds)
{
    if (socket.bytesAvailable() > 0) {
        return Arrival::Bytes;
    }
    if (socket.state() != QAbstractSocket::ConnectedState) {
        return Arrival::End;
    }
    if (socket.waitForReadyRead(milliseconds) || socket.bytesAvailable() > 0) {
        return Arrival::Bytes;
    }
    return socket.error() == QAbstractSocket::SocketTimeoutError ? Arrival::Nothing : Arrival::End;
}

} // namespace

bool CameraError::isLasting() const
{
    switch (trouble) {
    case Trouble::NoRoute:
    case Trouble::Refused:
    case Trouble::NoConnection:
    case Trouble::Silent:
    case Trouble::TooSlow:
        return true;
    default:
        return false;
    }
}

Camera::Camera(QString host, quint16 port, std::chrono::seconds timeout)
    : m_host(std::move(host)), m_port(port), m_timeout(timeout)
{
}

CameraError Camera::connectTo(QTcpSocket& socket) const
{
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.setReadBufferSize(receiveSize); // the kernel buffers the rest
    socket.connectToHost(QHostAddress(m_host), m_port);
    if (socket.waitForConnected(static_cast<int>(m_timeout.count()))) {
        return {};
    }
    switch (socket.error()) {
    case QAbstractSocket::ConnectionRefusedError:
        return {Trouble::Refused};
    case QAbstractSocket::SocketTimeoutError:
        return {Trouble::NoConnection};
    default:
        return {Trouble::NoRoute, 0, socket.errorString()};
    }
}

CameraError Camera::get(const QByteArray& request, Kind kind, std::uint64_t bodyLimit,
                        const AnswerReader::Handlers& handlers) const
{
    QTcpSocket socket;
    if (CameraError error = connectTo(socket)) {
        return error;
    }
    QElapsedTimer clock;
    clock.start();
    socket.write(request);

    AnswerReader reader(bodyLimit, handlers);
    std::vector<char> buffer(receiveSize);
    while (!reader.ended()) {
        const bool limited = reader.state() == AnswerReader::State::Head || kind == Kind::Command;
        const qint64 left =
            limited ? answerPatience * m_timeout.count() - clock.elapsed() : LLONG_MAX;
        if (left <= 0) {
            return {Trouble::TooSlow};
        }
        const qint64 wait = std::min<qint64>(left, m_timeout.count());
        switch (waitForBytes(socket, static_cast<int>(wait))) {
        case Arrival::Bytes: {
            const qint64 count = std::max<qint64>(socket.read(buffer.data(), receiveSize), 0);
            reader.receive({buffer.data(), static_cast<std::size_t>(count)});
            break;
        }
        case Arrival::End:
            reader.closed();
            break;
        case Arrival::Nothing:
            return {wait < m_timeout.count() ? Trouble::TooSlow : Trouble::Silent};
        }
    }
    const bool complete = reader.state() == AnswerReader::State::Complete;
    if (kind == Kind::Recording && complete &&
        (reader.hasMore() || waitForBytes(socket, surplusWait) == Arrival::Bytes)) {
        return {Trouble::Surplus};
    }
    return errorOf(reader);
}

} // namespace verify
