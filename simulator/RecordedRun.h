// A recorded run of a vehicle, for replaying it.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace simulator {

using Microseconds = std::chrono::microseconds;

/// An event on one connection, from a journal or a capture.
struct ObservedEvent
{
    enum class Kind {
        Open,
        Received,  ///< by the device
        Sent,      ///< by the device
        HalfClose, ///< the device sends no more
        Close,     ///< by the device
        Reset      ///< by the device
    };
    Kind kind;
    std::string device; ///< "control", "ground" or "camera"
    int connection;     ///< its number, different for each connection of the device
    Microseconds time;
    std::string bytes{};
    std::uint64_t unknown = 0; ///< number of further bytes sent, whose values are unknown
};

/// An action of the device; `after` counts from the end of the request's head (camera) or from the
/// opening of the connection (modules).
struct RecordedEvent
{
    ObservedEvent::Kind kind;
    Microseconds after;
    std::string bytes;
    std::uint64_t unknown; ///< number of zeros to send after `bytes`
};

/// One request to the camera and the camera's actions after it.
struct RecordedExchange
{
    std::string request; ///< the request line
    std::vector<RecordedEvent> events{};
    bool played = false;
};

/// The devices' actions, by request (camera) and by connection (modules).
struct RecordedRun
{
    std::vector<RecordedExchange> exchanges;
    std::map<std::string, std::vector<std::vector<RecordedEvent>>> connections; ///< by module
    /// Number of gaps in the file, and of the bytes missing in them, which are replaced by zeros.
    std::uint64_t filledRuns = 0;
    std::uint64_t filledBytes = 0;
};

/// Reads a journal or a packet capture. Returns an error text, empty on success.
std::string readRecordedRun(const std::string& path, RecordedRun& run);

// Both functions read a file, append its events in file order, and count its gaps and the bytes
// that are missing in them. They return an error text, empty on success.
std::string readJournal(const std::string& path, std::vector<ObservedEvent>& events,
                        RecordedRun& run);
std::string readCapture(const std::string& path, std::vector<ObservedEvent>& events,
                        RecordedRun& run);

} // namespace simulator
