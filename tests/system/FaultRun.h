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
/// case, with an empty home folder; a failed step fails the calling test function.
class FaultRun
{
public:
    /// The files of the card, in the order of the rows.
    static const QList<CardFile> recordings;

    FaultRun();

    /// Performs the case, compares what is seen, then closes the window.
    void play(const FaultCase& faultCase);

    void startSimulator(const QStringList& arguments = {});
    void link();
    void browse();
    /// Switches faults on (see FaultCase).
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
    /// Waits for the expected text of a link case. The text must then stay for a while, unless it
    /// ends with "...", which means that more text may follow.
    void compareLink(const FaultCase& faultCase);
    /// Waits for something that needs a version report. The program only recognises a report in its
    /// own segment, and a busy machine joins segments, so the report is sent repeatedly.
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

/// Adds the rows of a test class, and plays the current row.
void addFaultRows(const QList<FaultCase>& cases);
void playFaultRow(const QList<FaultCase>& cases);
