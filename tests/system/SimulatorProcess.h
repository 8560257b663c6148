// The built simulator, run by a test.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/// Runs belun-simulator with the test's privileges and time zone; the test must be in a private
/// network. Controls it through its standard input. The process ends at the latest with this
/// object. Use from one thread only; no call processes events.
class SimulatorProcess
{
public:
    SimulatorProcess();
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    /// Starts it and returns when its devices are reachable. This and the next two calls return
    /// false, with the reason in error(), if the simulator does not respond within twenty seconds.
    bool start(const QStringList& arguments);
    /// Sends a control line and returns when it has taken effect.
    bool control(const QByteArray& line);
    /// Stops it. Returns whether its exit status is 0.
    bool end();
    QString error() const { return m_error; }

private:
    /// Returns the next line of its standard output that is not a report about the client.
    bool readAnswer(QByteArray& answer);
    bool failed(const QString& what);

    QProcess m_process;
    QString m_error;
};
