// The built simulator, run by a test.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/// Runs belun-simulator with the rights and the time zone of the test, which has to be in a private
/// network, and steers it over its standard input. It ends with this object at the latest. One
/// thread; no call processes events.
class SimulatorProcess
{
public:
    SimulatorProcess();
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    /// Starts it and returns when its devices can be reached. This and the following two are false,
    /// with error() telling why, when it does not do as told within twenty seconds.
    bool start(const QStringList& arguments);
    /// Sends a control line and returns when it is in force.
    bool control(const QByteArray& line);
    /// Has it end; true when its exit status is 0.
    bool end();
    QString error() const { return m_error; }

private:
    /// The next line of its standard output that is no report about the client.
    bool readAnswer(QByteArray& answer);
    bool failed(const QString& what);

    QProcess m_process;
    QString m_error;
};
