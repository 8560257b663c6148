#include "tests/system/FaultCase.h"

using A = FaultAction;

namespace {

const QString linked = "Link Success! / v7 v3 v6 v1 v0.1";
const QString unheard = "Link Success! / ";
const QString failed = "Link Fail! / ";
const QString lostAndBack = "Link Success!, Link Fail!, Link Success! / v7 v3 v6 v1 v0.1";

} // namespace

const QList<FaultCase> linkFaults = {
    {{"refuse=ground"}, A::Link, failed},
    {{"refuse=control"}, A::Link, failed},
    {{"refuse"}, A::Link, failed},
    {{"down=ground"}, A::Link, failed},
    {{"down=control"}, A::Link, failed},
    {{"never-accept=control,ground"}, A::Link, unheard},
    {{"silent=control,ground"}, A::Link, unheard},
    {{"silent=control,ground", "clear silent"}, A::Link, linked},
    {{"silent=ground"}, A::Link, linked},
    {{"refuse=control", "drop control"}, A::Linked, "Link Success!, Link Fail! / v7 v3 v6 v1 v0.1"},
    {{"refuse=control", "drop control", "clear refuse"}, A::Linked, lostAndBack},
    {{"drop control"}, A::Linked, lostAndBack},
    {{"drop ground"}, A::Linked, linked},
    {{"down=control,ground"}, A::Linked, linked},
    {{"down=control", "clear down"}, A::Linked, lostAndBack},
    {{"reboot=1"}, A::Linked, lostAndBack},
    {{"flapping=300"},
     A::Linked,
     "Link Success!, Link Fail!, Link Success!, Link Fail! / v7 v3 v6 v1 v0.1..."},

    {{"no-heartbeat"}, A::Link, linked},
    {{"no-heartbeat=ground"}, A::Link, linked},
    {{"heartbeat-interval=100"}, A::Link, linked},
    {{"wrong-start=other"}, A::Link, unheard},
    {{"wrong-start=5A"}, A::Link, unheard},
    {{"unknown-type"}, A::Link, linked},
    {{"early-version"}, A::Link, linked},
    {{"no-version"}, A::Link, unheard},
    // Half a frame counts as a frame if it has a start byte and a type.
    {{"split-frames"}, A::Link, "Link Success! / v7 v3 v0 v0 v0"},
    {{"split-version"}, A::Link, "Link Success! / v7 v3 v0 v0 v0"},
    // Only the start of a segment is examined.
    {{"two-frames=heartbeat"}, A::Link, unheard},
    {{"two-frames=version"}, A::Link, linked},
    {{"long-segment=106"}, A::Link, linked},
    {{"long-segment=4000"}, A::Link, linked},
    {{"high-bit-version"}, A::Link, "Link Success! / v-1 v1.44 v-327.68 v-2.57 v-1.28"},
    {{"reset-mid-frame", "only=control"},
     A::Link,
     "Link Success!, Link Fail!, Link Success! / v7 v3 v6 v1 v0.1..."},
    {{"half-close", "only=control"},
     A::Link,
     "Link Success!, Link Fail!, Link Success! / v7 v3 v6 v1 v0.1..."},
    {{"half-close", "only=ground"}, A::Link, linked},
};

// The cases below take several seconds each, because the heartbeat limit and the reboot run in real
// time. FaultsTest has one function for each list, so that CTest can run the lists in parallel.
const QList<FaultCase> heartbeatKeptFaults = {
    {{"heartbeat-pause=5", "unknown-type"}, A::Link, linked, 6500},
    // The sixth tick comes at 6.0 seconds. The heartbeat at 6.2 seconds, the next receive, resets
    // the count before the program checks the limit.
    {{"heartbeat-pause=6"}, A::Link, linked, 7500},
    // The program checks the limit only after a receive, and nothing else arrives.
    {{"heartbeat-stops=1"}, A::Link, linked, 7500},
};

const QList<FaultCase> heartbeatLostFaults = {
    {{"heartbeat-pause=10", "unknown-type"}, A::Link, lostAndBack + "..."},
    {{"heartbeat-stops=1", "unknown-type"}, A::Link, lostAndBack + "..."},
};

const QList<FaultCase> rebootFaults = {
    {{"reboot=10"}, A::Linked, lostAndBack},
};
