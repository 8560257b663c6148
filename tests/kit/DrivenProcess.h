// Starts the program, linked with code that operates its window, and sends it commands.
#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

/// A process of the program, linked with code that operates its window
/// (tests/kit/DrivenProgram.cpp) through a socket, so that the commands do not use the program's
/// standard streams. A failed step fails the calling test function.
class DrivenProcess
{
public:
    DrivenProcess() = default;
    ~DrivenProcess();
    DrivenProcess(const DrivenProcess&) = delete;
    DrivenProcess& operator=(const DrivenProcess&) = delete;

    /// Runs a shell script in the folder, with the path of the program as $0. The socket is created
    /// in the same folder.
    void start(const QString& folder, const QProcessEnvironment& environment,
               const QString& script);

    /// Sends a command, waits until the program has executed it, and returns the answer.
    QByteArray tell(const QByteArray& command);

    /// Returns what the program has printed so far.
    QByteArray output();

    /// Returns the process id of the shell or of the program that replaced it.
    qint64 id() const { return m_process.processId(); }

    /// Closes the window; the program has to end with status 0.
    void close();

    /// Returns how many milliseconds a step may take on a busy machine.
    static int limit();

private:
    QLocalServer m_server;
    QLocalSocket* m_socket = nullptr; // owned by m_server
    QProcess m_process;
    QByteArray m_output;
};
