// What the simulator has noted of a run.
#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

/// The lines of a simulator's journal, as far as they are written.
class Journal
{
public:
    explicit Journal(const QString& path);

    /// The client has answered a heartbeat on that connection.
    bool isHeartbeatAnswered(const QString& device, int connection) const;
    /// The control module has reported its versions on that connection.
    bool isVersionReported(int connection) const;
    bool isEveryConnectionClosed() const;

    /// All bytes of every connection in their order, by device and connection, in a form that a
    /// person can read. What only depends on time is left out: times, ports, the number of
    /// heartbeats and of their answers (but not whether each has one), how bytes of the two
    /// directions of a module's connection follow each other, and what a module says on a
    /// connection that its client drops without a word. Of a client's close it is also left open
    /// whether it came as an end or, with bytes unread, as a reset.
    QString text() const;

private:
    QList<QJsonObject> m_lines;
};
