// Reads the simulator's journal of a run.
#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

/// The complete lines of a simulator's journal, except for a second "close" of a connection.
class Journal
{
public:
    explicit Journal(const QString& path);

    /// Returns whether the client has answered a heartbeat on that connection.
    bool isHeartbeatAnswered(const QString& device, int connection) const;
    /// Returns whether the control module has reported its versions on that connection.
    bool isVersionReported(int connection) const;
    bool isEveryConnectionClosed() const;

    /// Returns the simulator's control lines, then the bytes of every connection in order, by
    /// device and connection, in readable form; long parts of the camera's answers only as their
    /// length and CRC-32. Timing-dependent details are left out: times, ports, complaints, the
    /// number of heartbeats and answers (but not whether every heartbeat was answered), how the two
    /// directions of a module's connection interleave, and what a module sends on a connection that
    /// its client drops without sending anything. Also left out is whether a client closed its
    /// connection normally or, because of unread bytes, with a reset.
    QString text() const;

private:
    QList<QJsonObject> m_lines;
};
