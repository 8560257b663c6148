// One user session with the simulated vehicle, from the first link to closing the window.
#pragma once

#include "tests/kit/SimulatorProcess.h"
#include "tests/kit/UserWindow.h"
#include "tests/system/Journal.h"

#include <functional>
#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A session that links, lists the card twice, downloads three recordings, deletes two, deletes
/// all, formats, loses the link and links again. Card, contents, dates and time zone are always the
/// same.
class WireRun
{
public:
    /// `fault`: the fault of the simulator, or empty for none. `emptyingIsTold`: whether the window
    /// shows a message after "delete all" and "format".
    WireRun(const QString& fault, bool emptyingIsTold);

    /// Performs the session. A failed step fails the calling test function.
    void play();
    /// Returns whether play() ended early, because the version report, which is sent once, arrived
    /// together with the heartbeat before it: the program then ignores it. Only a busy machine
    /// causes that.
    bool reportMissed() const { return m_reportMissed; }
    /// Returns the simulator's journal and what the window showed.
    QString text() const;

private:
    void startSimulator();
    void link();
    void browse();
    void download();
    void deleteTwo();
    void deleteAll();
    void format();
    void loseLink();
    void linkAgain();
    void close();

    void emptyCard(void (UserWindow::*click)() const);
    void control(const QByteArray& line);
    void noteTable();
    void noteLink();
    Journal journal() const { return Journal(m_folder.filePath("journal")); }

    const QString m_fault;
    const bool m_emptyingIsTold;
    QTemporaryDir m_folder;
    SimulatorProcess m_simulator;
    std::optional<UserWindow> m_user;
    QStringList m_seen;
    bool m_reportMissed = false;
};
