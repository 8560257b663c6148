// Runs one fault case as a user would.
#pragma once

#include "tests/kit/SimulatedCard.h"
#include "tests/kit/SimulatorProcess.h"
#include "tests/kit/UserWindow.h"
#include "tests/system/FaultCase.h"

#include <functional>
#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace support {
class StdoutCapture;
}

/// The real window with the built simulator, whose card contains two recordings. Created for each
/// case, with a home folder that contains only an empty Desktop folder. A failed step fails the
/// calling test function.
class FaultRun
{
public:
    /// The files of the card, in the order of the rows.
    static const QList<CardFile> recordings;

    FaultRun();

    /// Performs the case and compares what is seen. The window stays open.
    void play(const FaultCase& faultCase);

    void startSimulator(const QStringList& arguments = {});
    void link();
    void browse();
    /// Switches faults on, and sends the control lines among them (see FaultCase::faults).
    void set(const QList<QByteArray>& faults);
    void control(const QByteArray& line);
    /// Selects the row and downloads it. Returns when the window is idle again; printed() then
    /// returns the output of the download.
    void download(int row);
    /// Destroys the window, which must take less than two seconds, and stops the simulator.
    void close();

    UserWindow& user() { return *m_user; }
    const QByteArray& printed() const { return m_printed; }
    QString seenTable() const;
    static QString downloadPath(const QString& name);

private:
    /// Waits until the statuses and versions of a link case have been shown. They must then stay
    /// for a while, unless the expected text ends with "...", which means that further statuses may
    /// follow.
    void compareLink(const FaultCase& faultCase);
    /// Waits for a condition that may need a version report. The program recognises a report only
    /// at the start of a receive, and a busy machine may receive two segments at once, so the
    /// report is sent repeatedly. Returns whether the condition holds.
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

/// Adds a row for each case to the current test function.
void addFaultRows(const QList<FaultCase>& cases);
/// Plays the case of the current row and closes the window.
void playFaultRow(const QList<FaultCase>& cases);
