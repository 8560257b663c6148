#include "tests/link/Link.h"

#include "link/ControlClientThread.h"

#include <QMetaObject>
#include <QTimer>

int heartBeatsOf(const ModuleClientThread& thread)
{
    return thread.heartBeatCount;
}

void SignalRecorder::listenTo(const ModuleClientThread& thread)
{
    const auto* control = qobject_cast<const ControlClientThread*>(&thread);
    if (control == nullptr) {
        return; // the ground module's thread has no signals
    }
    QObject::connect(
        control, &ControlClientThread::VersionInfo, control,
        [this, control](char hardType, int hardVer, int softVer, int protocolVer, int bootVer) {
            record(QStringLiteral("version %1 %2 %3 %4 %5")
                       .arg(int{static_cast<signed char>(hardType)})
                       .arg(hardVer)
                       .arg(softVer)
                       .arg(protocolVer)
                       .arg(bootVer),
                   control->linkedFlag);
        },
        Qt::DirectConnection);
    QObject::connect(
        control, &ControlClientThread::updateLinkedFlag, control,
        [this, control](bool flag) {
            m_isLinked = flag;
            record(flag ? QStringLiteral("linked") : QStringLiteral("lost"), control->linkedFlag);
        },
        Qt::DirectConnection);
}

QStringList SignalRecorder::signalTexts() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_texts;
}

void SignalRecorder::record(const QString& text, bool linkedFlag)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_texts.append(linkedFlag == m_isLinked ? text : text + " with the wrong linkedFlag");
}

Link::Link(const Module& linkedModule)
    : module(linkedModule), thread(linkedModule.newThread(nullptr)), watch(*thread)
{
    recorder.listenTo(*thread);
    thread->findChild<QTimer*>()->stop();
}

void Link::tick(int times) const
{
    for (int number = 0; number < times; ++number) {
        QMetaObject::invokeMethod(thread.get(), "heartBeatTimer", Qt::DirectConnection);
    }
}

bool Link::waitUntilConnected(int times) const
{
    return log.waitFor(module.connecting.last(), times);
}

bool Link::waitUntilConnecting(int times) const
{
    return log.waitFor(module.connecting.at(2), times);
}
