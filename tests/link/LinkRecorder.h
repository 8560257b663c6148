// Records the signals of a link thread.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

/// An object that receives the control thread's signals through queued connections, as the window
/// does, and keeps them as texts in order: "linked", "lost", "version 7 300 600 100 10".
class LinkRecorder : public QObject
{
    Q_OBJECT

public:
    QStringList events;

    /// Waits until that many events have arrived. Returns false after five seconds.
    bool waitFor(int count) const
    {
        return QTest::qWaitFor([&] { return events.size() >= count; });
    }

public slots:
    void VersionInfo(char hardType, int hardVer, int softVer, int ProtocolVer, int BootVer)
    {
        events.append(QStringLiteral("version %1 %2 %3 %4 %5")
                          .arg(int{static_cast<signed char>(hardType)})
                          .arg(hardVer)
                          .arg(softVer)
                          .arg(ProtocolVer)
                          .arg(BootVer));
    }
    void updateLinkedFlag(bool flag)
    {
        events.append(flag ? QStringLiteral("linked") : QStringLiteral("lost"));
    }
};
