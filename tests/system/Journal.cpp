#include "tests/system/Journal.h"

#include "tests/kit/Cuts.h"

#include <algorithm>
#include <map>
#include <string>

#include <QByteArray>
#include <QFile>
#include <QJsonDocument>
#include <QPair>
#include <QSet>
#include <QStringList>

namespace {

constexpr char heartbeatAnswer[] = "aaaf0401015f";
constexpr int answerDigits = sizeof heartbeatAnswer - 1;
constexpr char versionReportStart[] = "aaaf0009";

QString value(const QJsonObject& line, const char* name)
{
    return line.value(QLatin1String(name)).toString();
}

QString heartbeatOf(const QString& device)
{
    return device == "ground" ? QString("bbaf0401005e") : QString("aaaf0401005e");
}

/// Returns the bytes as lines of text with special characters escaped. Each line begins with the
/// mark.
QStringList shownText(const QString& mark, const QByteArray& bytes)
{
    QStringList lines;
    std::string line;
    const auto endLine = [&] {
        lines += mark + QString::fromStdString(support::printable(line));
        line.clear();
    };
    for (const char byte : bytes) {
        line += byte;
        if (byte == '\n') {
            endLine();
        }
    }
    if (!line.empty()) {
        endLine();
    }
    return lines;
}

QString shownClose(const QJsonObject& line)
{
    return value(line, "by") == "peer" ? QString("closed by the client")
                                       : QString("closed by the device: ") + value(line, "reason");
}

QString shownOpen(const QJsonObject& line)
{
    return "opened from " + value(line, "peer").section(':', 0, 0);
}

QStringList cameraLines(const QList<QJsonObject>& connection)
{
    QStringList lines;
    QByteArray received; // consecutive receives are shown as one
    for (const QJsonObject& line : connection) {
        const QString event = value(line, "event");
        const QByteArray bytes = QByteArray::fromHex(value(line, "bytes").toLatin1());
        if (event == "received") {
            received += bytes;
            continue;
        }
        lines += shownText("> ", received);
        received.clear();
        if (event == "open") {
            lines += shownOpen(line);
        } else if (event == "request") {
            lines += QString("request %1: %2")
                         .arg(line.value("exchange").toInt())
                         .arg(value(line, "kind"));
        } else if (event == "sent" && line.contains("crc32")) {
            lines += QString("< %1 bytes with CRC-32 %2")
                         .arg(line.value("count").toInt())
                         .arg(value(line, "crc32"));
        } else if (event == "sent") {
            lines += shownText("< ", bytes);
        } else if (event == "close") {
            lines += shownClose(line);
        } else {
            lines += event;
        }
    }
    return lines + shownText("> ", received);
}

/// The two directions of a module's connection, formatted separately.
class ModuleTalk
{
public:
    explicit ModuleTalk(const QString& device) : m_heartbeat(heartbeatOf(device)) {}

    void add(const QJsonObject& line)
    {
        const QString event = value(line, "event");
        if (event == "open") {
            m_lines += shownOpen(line);
        } else if (event == "sent") {
            m_sent.append(value(line, "bytes"));
        } else if (event == "received") {
            m_received += value(line, "bytes");
        } else if (event == "close") {
            m_end = shownClose(line);
        } else if (event != "complaint") { // a complaint results from the bytes or reports slowness
            m_sent.append(event);
        }
    }

    QStringList lines() const
    {
        if (m_received.isEmpty()) {
            return m_lines + QStringList{"nothing received", m_end};
        }
        QStringList lines = m_lines;
        for (int i = 0; i < m_sent.size(); ++i) {
            if (m_sent[i] != m_heartbeat) {
                lines += "< " + m_sent[i];
            } else if (m_sent.indexOf(m_heartbeat) == i) {
                lines += "< heartbeats " + m_sent[i];
            }
        }
        const QStringList frames = received();
        for (int i = 0; i < frames.size(); ++i) {
            if (frames[i] != heartbeatAnswer) {
                lines += "> " + frames[i];
            } else if (frames.indexOf(heartbeatAnswer) == i) {
                lines += "> answers " + frames[i];
            }
        }
        // The last heartbeat may be unanswered, because it arrived while the client was
        // disconnecting.
        const int heartbeats = static_cast<int>(m_sent.count(m_heartbeat));
        const int answers = static_cast<int>(frames.count(heartbeatAnswer));
        if (answers > heartbeats || answers < heartbeats - 1) {
            lines += QString("%1 answers to %2 heartbeats").arg(answers).arg(heartbeats);
        }
        return lines + QStringList(m_end);
    }

private:
    QStringList received() const
    {
        QStringList frames;
        for (int i = 0; i < m_received.size(); i += answerDigits) {
            frames.append(m_received.mid(i, answerDigits));
        }
        return frames;
    }

    QString m_heartbeat;
    QStringList m_lines;
    QStringList m_sent;
    QString m_received;
    QString m_end = QString("open");
};

QStringList moduleLines(const QString& device, const QList<QJsonObject>& connection)
{
    ModuleTalk talk(device);
    for (const QJsonObject& line : connection) {
        talk.add(line);
    }
    return talk.lines();
}

} // namespace

Journal::Journal(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QList<QByteArray> lines = file.readAll().split('\n');
    QSet<QPair<QString, int>> closed;
    // The part after the last line ending is empty or still being written.
    for (int i = 0; i + 1 < lines.size(); ++i) {
        const QJsonObject line = QJsonDocument::fromJson(lines[i]).object();
        if (value(line, "event") == "close") {
            // A client with unread bytes resets a connection that the device has already closed,
            // which adds a second "close".
            const auto connection =
                qMakePair(value(line, "device"), line.value("connection").toInt());
            if (closed.contains(connection)) {
                continue;
            }
            closed.insert(connection);
        }
        m_lines.append(line);
    }
}

bool Journal::isHeartbeatAnswered(const QString& device, int connection) const
{
    return std::any_of(m_lines.begin(), m_lines.end(), [&](const QJsonObject& line) {
        return value(line, "device") == device && line.value("connection") == connection &&
               value(line, "event") == "received" && value(line, "bytes") == heartbeatAnswer;
    });
}

bool Journal::isVersionReported(int connection) const
{
    return std::any_of(m_lines.begin(), m_lines.end(), [&](const QJsonObject& line) {
        return value(line, "device") == "control" && line.value("connection") == connection &&
               value(line, "event") == "sent" &&
               value(line, "bytes").startsWith(versionReportStart);
    });
}

bool Journal::isEveryConnectionClosed() const
{
    const auto count = [this](const char* event) {
        return std::count_if(m_lines.begin(), m_lines.end(), [event](const QJsonObject& line) {
            return value(line, "event") == event;
        });
    };
    return count("open") == count("close");
}

QString Journal::text() const
{
    std::map<QString, std::map<int, QList<QJsonObject>>> devices;
    QStringList steering;
    for (const QJsonObject& line : m_lines) {
        const QString device = value(line, "device");
        if (device == "simulator") {
            steering.append(value(line, "line"));
        } else {
            devices[device][line.value("connection").toInt()].append(line);
        }
    }
    QStringList lines{"[simulator]"};
    lines += steering;
    for (const auto& [device, connections] : devices) {
        for (const auto& [number, connection] : connections) {
            lines += QString();
            lines += QString("[%1 %2]").arg(device).arg(number);
            lines += device == "camera" ? cameraLines(connection) : moduleLines(device, connection);
        }
    }
    return lines.join('\n') + '\n';
}
