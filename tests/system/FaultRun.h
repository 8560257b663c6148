// One fault in one user's hands.
#pragma once

#include "tests/app/UserWindow.h"
#include "tests/system/FaultCase.h"
#include "tests/system/SimulatorProcess.h"

#include <functional>
#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace support {
class StdoutCapture;
}

/// The real window against the built simulator, whose card holds REC00001.MP4 (40,000 bytes) and
/// REC00002.MP4 (500 bytes). Made anew for each case, with an empty home folder; a step that goes
/// wrong fails the test function that it is called from.
class FaultRun
{
public:
    FaultRun();

    /// Does what the case says and compares what is seen; then closes the window.
    void play(const FaultCase& faultCase);

    void startSimulator(const QStringList& arguments = {});
    void link();
    void browse();
    /// Switches faults on (see FaultCase).
    void set(const QList<QByteArray>& faults);
    void control(const QByteArray& line);
    /// Selects the row and downloads it. Returns when the window is idle again; what is printed
    /// meanwhile is printed().
    void download(int row);
    /// Destroys the window, which has to take less than two seconds, and ends the simulator.
    void close();

    UserWindow& user() { return *m_user; }
    const QByteArray& printed() const { return m_printed; }
    QString seenTable() const;
    /// What has become of a recording: "whole", "empty", "first 100 bytes", "41 other bytes", "no
    /// file".
    static QString seenFile(const QString& path, int size);
    static QByteArray content(int size);
    static QString downloadPath(const QString& name);

private:
    /// Waits for the expected text of a link case, which then has to stay for a while; with "..."
    /// at its end more may follow.
    void compareLink(const FaultCase& faultCase);
    /// Waits for something that takes a version report. The window looks at a report only when it
    /// comes in a segment of its own, and a busy machine joins segments: it is sent again.
    bool eventuallyReported(const std::function<bool()>& condition);
    QString seenLink() const;
    void playDownload(const FaultCase& faultCase, int row);
    void playStalled(const FaultCase& faultCase);
    void playChange(const FaultCase& faultCase);

    QTemporaryDir m_folder;
    SimulatorProcess m_simulator;
    std::optional<UserWindow> m_user;
    QStringList m_statuses;
    QByteArray m_printed;
};

/// The two functions that each executable's test class is made of.
void addFaultRows(const QList<FaultCase>& cases);
void playFaultRow(const QList<FaultCase>& cases);
