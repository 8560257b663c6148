#include "tests/kit/DrivenProcess.h"

#include "tests/kit/TimeFactor.h"

#include <QTest>

DrivenProcess::~DrivenProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(limit());
    }
}

void DrivenProcess::start(const QString& folder, const QProcessEnvironment& environment,
                          const QString& script)
{
    QVERIFY(m_server.listen(folder + QStringLiteral("/socket")));
    QProcessEnvironment all = environment;
    all.insert(QStringLiteral("DRIVEN_PROGRAM_SOCKET"), m_server.fullServerName());
    m_process.setProcessEnvironment(all);
    m_process.setWorkingDirectory(folder);
    m_process.start(QStringLiteral("/bin/sh"),
                    {QStringLiteral("-ec"), script, QStringLiteral(DRIVEN_PROGRAM)});
    QVERIFY2(m_server.waitForNewConnection(limit()),
             "the program does not start: " + m_process.readAllStandardError());
    m_socket = m_server.nextPendingConnection();
}

QByteArray DrivenProcess::tell(const QByteArray& command)
{
    m_socket->write(command + '\n');
    QByteArray answer;
    while (!answer.endsWith("done\n")) {
        if (!m_socket->waitForReadyRead(limit())) {
            return "the program does not answer: " + command;
        }
        answer += m_socket->readAll();
    }
    return answer;
}

QByteArray DrivenProcess::output()
{
    m_output += m_process.readAllStandardOutput();
    return m_output;
}

void DrivenProcess::close()
{
    m_socket->write("close\n");
    m_socket->flush();
    QVERIFY2(m_process.waitForFinished(limit()), "the program does not end");
    QCOMPARE(m_process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_process.exitCode(), 0);
}

int DrivenProcess::limit()
{
    return 15'000 * support::timeFactor();
}
