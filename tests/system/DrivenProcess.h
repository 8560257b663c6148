// The built program in a test's hands.
#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

/// Runs the program as a process and operates its window from inside (tests/app/DrivenProgram.cpp)
/// through a socket, so that its standard streams are unused. A failed step fails the calling test
/// function.
class DrivenProcess
{
public:
    DrivenProcess() = default;
    ~DrivenProcess();
    DrivenProcess(const DrivenProcess&) = delete;
    DrivenProcess& operator=(const DrivenProcess&) = delete;

    /// Has a shell run this in the folder, where the socket is made: the program is $0.
    void start(const QString& folder, const QProcessEnvironment& environment,
               const QString& script);

    /// Returns what the program answers when it has done it.
    QByteArray tell(const QByteArray& command);

    /// The shell's, or that of what it has become.
    qint64 id() const { return m_process.processId(); }

    /// Closes the window; the program has to end with status 0.
    void close();

    /// Milliseconds that a step may take on a busy machine.
    static int limit();

private:
    QLocalServer m_server;
    QLocalSocket* m_socket = nullptr; // the server's
    QProcess m_process;
};
