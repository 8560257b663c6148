// What is known of each recording, and of the card altogether.
#pragma once

#include "verify/Camera.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace verify {

enum class Result {
    SameSize,
    SameContent,
    Different, ///< the same size, but not the same bytes
    Shorter,   ///< on this computer: the download was cut
    Longer,    ///< on this computer: an old tail
    NotHere,
    NotOnCard,
    Nowhere, ///< asked for by name, and on neither side
    Unknown, ///< cannot be compared; see Reason
};

enum class Reason {
    None,
    NoDetails, ///< the camera does not give its size; see Recording::error
    NoContent, ///< the camera does not give its bytes; see Recording::error
    LengthsDiffer,
    TwoEntries,
    NoName,
    NotDownloadable, ///< the window asks for another name than this
    TooLarge,
    Link,
    Folder,
    NoFile,
    NameTooLong,
    FileError, ///< see Recording::systemError
    FileChanged,
};

/// The window counts a download's bytes in 31 bits.
constexpr std::uint64_t downloadLimit = std::uint64_t(1) << 31;

/// The window lists no more recordings than this.
constexpr std::size_t windowRows = 128;

struct Recording
{
    std::string name;
    std::size_t entry = 0; ///< place in the card's list, from 1; 0 if it is not in it
    Result result = Result::Unknown;
    Reason reason = Reason::None;
    std::optional<std::uint64_t> cardBytes;
    std::optional<std::uint64_t> localBytes;
    std::optional<std::uint64_t> difference; ///< first byte that differs, from 0
    std::uint64_t announced = 0;             ///< for Reason::LengthsDiffer
    CameraError error;
    int systemError = 0;

    bool isSafe() const { return result == Result::SameSize || result == Result::SameContent; }
    /// Bytes that still have to be fetched, beyond what a new download would free first.
    std::uint64_t missingBytes() const;
};

/// Why the window cannot download a recording of this name, if it cannot: it asks for names in
/// Latin-1, while the card's are taken as UTF-8, and its request ends at the end of a line.
Reason reasonAgainstName(const std::string& name);

/// Where the comparison is.
enum class Step { Count, List, Details, Content };

/// How far it is.
struct Advance
{
    Step step = Step::Count;
    std::size_t number = 0;  ///< of the recording, from 1
    std::size_t count = 0;   ///< of all recordings
    std::string name;        ///< of the recording
    std::uint64_t bytes = 0; ///< read of all recordings, for Step::Content
    std::uint64_t total = 0; ///< to be read
};

enum class Verdict { Safe, Empty, NotSafe, Unknown };

struct Summary
{
    Verdict verdict = Verdict::Unknown;
    bool contents = false; ///< contents were compared, not only sizes
    bool named = false;    ///< only recordings that were asked for

    std::size_t recordings = 0;     ///< of the card, as far as they were wanted
    std::size_t safe = 0;           ///< of these
    std::vector<Recording> notSafe; ///< of these, and what was asked for and is not on the card
    std::uint64_t missingBytes = 0; ///< of these
    std::optional<std::uint64_t> freeBytes;
    std::string folder;

    std::uint64_t counted = 0; ///< by the camera
    std::size_t listed = 0;    ///< by the camera
    bool changed = false;      ///< the card, meanwhile

    bool complete = false; ///< nothing failed
    Step failedStep = Step::Count;
    std::string failedName; ///< the recording's, for Step::Details and Step::Content
    CameraError error;      ///< of the camera, if it failed
    int systemError = 0;    ///< of the folder, if it failed

    bool disagrees() const { return counted != listed; }
};

/// Verdict from everything else in the summary. A doubt about the whole card counts more than what
/// is known of one recording, and that more than what is not known.
Verdict verdictOf(const Summary& summary);

/// Exit status of the program.
int statusOf(Verdict verdict);

constexpr int wrongOptionStatus = 64;
constexpr int failureStatus = 2;
constexpr int interruptedStatus = 130;

} // namespace verify
