// Faults of the simulator and what a user sees of them: the tables of FaultsTest.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// What the user does. For a download, faults whose names begin with "name-" are switched on before
/// the card is listed.
enum class FaultAction {
    Link,          ///< switches the faults on, then clicks the link button
    Linked,        ///< links, then switches the faults on
    Browse,        ///< switches the faults on, then lists the card for the first time
    BrowseAgain,   ///< lists the card, switches the faults on, lists it again
    Delete,        ///< links, lists, switches the faults on, deletes the first recording
    DeleteAll,     ///< as Delete, but deletes all recordings
    Format,        ///< as Delete, but formats the card
    Download,      ///< as Delete, but downloads the first recording, of 40,000 bytes
    DownloadSmall, ///< as Delete, but downloads the second recording, of 500 bytes
    Stalled        ///< as Download, but is checked while the download is in progress
};

struct FaultCase
{
    /// Faults in the simulator's syntax, "NAME" or "NAME=VALUE". Control lines that begin with
    /// "drop" or "clear" are sent unchanged.
    QList<QByteArray> faults;
    FaultAction action;
    /// What the user then sees; see the tables.
    QString expected;
    /// How long the link must then stay in that state, in milliseconds; for the actions Link and
    /// Linked only. The default covers two heartbeats.
    int watched = 450;

    /// Returns the row's tag.
    QByteArray tag() const;
    /// Returns the names of the faults without their values.
    QList<QByteArray> faultNames() const;
};

// The tables. FaultsTest has one test function for each.
extern const QList<FaultCase> linkFaults;
extern const QList<FaultCase> heartbeatKeptFaults;
extern const QList<FaultCase> heartbeatLostFaults;
extern const QList<FaultCase> rebootFaults;
extern const QList<FaultCase> listFaults;
extern const QList<FaultCase> answerFaults;
extern const QList<FaultCase> downloadFaults;
extern const QList<FaultCase> changeFaults;
