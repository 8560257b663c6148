// The built simulator, run by a test.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/// A belun-simulator process with the test's privileges and time zone, controlled through its
/// standard input; the test must be in a private network. The process ends at the latest with this
/// object. Use from one thread only; no call processes events.
class SimulatorProcess
{
public:
    SimulatorProcess();
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    /// Starts the simulator and returns when its devices are reachable. This and the next two calls
    /// return false, with the reason in error(), if the simulator does not respond within twenty
    /// seconds.
    bool start(const QStringList& arguments);
    /// Sends a control line and returns when it has taken effect.
    bool control(const QByteArray& line);
    /// Stops the simulator. Returns whether its exit status is 0.
    bool end();
    QString error() const { return m_error; }

private:
    /// Reads the next line of the simulator's standard output that is not a report about the
    /// client.
    bool readAnswer(QByteArray& answer);
    bool failed(const QString& what);

    QProcess m_process;
    QString m_error;
};
