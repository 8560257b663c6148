// Faults of the simulator and what a user sees of them: the tables behind the system.Faults tests.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// What the user does.
enum class FaultAction {
    Link,          ///< switches the faults on, then clicks the link button
    Linked,        ///< the same the other way round
    Browse,        ///< switches the faults on, then lists the card for the first time
    BrowseAgain,   ///< lists the card, switches the faults on, lists it again
    Delete,        ///< links, lists, switches the faults on, deletes the first recording
    DeleteAll,     ///< the same with all recordings
    Format,        ///< the same, formats the card
    Download,      ///< the same, downloads the first recording of 40,000 bytes
    DownloadSmall, ///< the same, downloads the second recording of 500 bytes
    Stalled        ///< as Download, looked at while it is under way
};

struct FaultCase
{
    /// Faults as the simulator takes them, "NAME" or "NAME=VALUE"; other control lines ("drop
    /// control") go as they are.
    QList<QByteArray> faults;
    FaultAction action;
    /// What is seen then: see the tables.
    QString expected;
    /// Milliseconds that a link then has to stay as it is. The least: two heartbeats and the
    /// version report.
    int watched = 450;

    /// The row's tag.
    QByteArray tag() const;
    /// Names of the faults without their values.
    QList<QByteArray> faultNames() const;
};

// A test executable for each.
const QList<FaultCase>& linkFaultCases();
const QList<FaultCase>& heartbeatKeptFaultCases();
const QList<FaultCase>& heartbeatLostFaultCases();
const QList<FaultCase>& rebootFaultCases();
const QList<FaultCase>& listFaultCases();
const QList<FaultCase>& answerFaultCases();
const QList<FaultCase>& downloadFaultCases();
const QList<FaultCase>& changeFaultCases();
