#include "tests/kit/SimulatorProcess.h"

#include <QDeadlineTimer>

namespace {

constexpr int limit = 20'000; // milliseconds, for a busy machine

} // namespace

SimulatorProcess::SimulatorProcess()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

SimulatorProcess::~SimulatorProcess()
{
    if (m_process.state() != QProcess::NotRunning && !end()) {
        m_process.kill();
        m_process.waitForFinished(limit);
    }
}

bool SimulatorProcess::start(const QStringList& arguments)
{
    m_process.start(BELUN_SIMULATOR, QStringList{"--exit-with-stdin"} + arguments);
    QByteArray answer;
    if (!readAnswer(answer)) {
        return false;
    }
    return answer == "belun-simulator ready" || failed("start: " + answer);
}

bool SimulatorProcess::control(const QByteArray& line)
{
    m_process.write(line + '\n');
    QByteArray answer;
    if (!readAnswer(answer)) {
        return false;
    }
    return answer == "ok " + line || failed(line + ": " + answer);
}

bool SimulatorProcess::end()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(limit)) {
        return failed("it does not end");
    }
    return (m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0) ||
           failed(QStringLiteral("ended with status %1").arg(m_process.exitCode()));
}

bool SimulatorProcess::readAnswer(QByteArray& answer)
{
    const QDeadlineTimer deadline(limit);
    for (;;) {
        while (m_process.canReadLine()) {
            answer = m_process.readLine().chopped(1);
            if (!answer.startsWith("control: ") && !answer.startsWith("ground: ")) {
                return true;
            }
        }
        if (!m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
            return failed("no answer: " + m_process.errorString());
        }
    }
}

bool SimulatorProcess::failed(const QString& what)
{
    m_error = "belun-simulator: " + what;
    return false;
}
