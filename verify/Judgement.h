// The results for each recording and for the whole card.
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
    Shorter,   ///< on this computer: the download was interrupted
    Longer,    ///< on this computer: it has the tail of an older file
    NotHere,
    NotOnCard,
    Nowhere, ///< requested by name, but on neither side
    Unknown, ///< cannot be compared; see Reason
};

enum class Reason {
    None,
    NoDetails, ///< the camera does not return its size; see Recording::error
    NoContent, ///< the camera does not return its bytes; see Recording::error
    LengthsDiffer,
    TwoEntries,
    NoName,
    NotDownloadable, ///< the window requests a different name
    TooLarge,
    Link,
    Folder,
    NoFile,
    NameTooLong,
    FileError, ///< see Recording::systemError
    FileChanged,
};

/// The window counts the bytes of a download in 31 bits.
constexpr std::uint64_t downloadLimit = std::uint64_t(1) << 31;

/// The window lists at most this many recordings.
constexpr std::size_t windowRows = 128;

struct Recording
{
    std::string name;
    std::size_t entry = 0; ///< position in the card's list, from 1; 0 if it is not listed
    Result result = Result::Unknown;
    Reason reason = Reason::None;
    std::optional<std::uint64_t> cardBytes;
    std::optional<std::uint64_t> localBytes;
    std::optional<std::uint64_t> difference; ///< offset of the first different byte
    std::uint64_t announced = 0;             ///< for Reason::LengthsDiffer
    CameraError error;
    int systemError = 0;

    bool isSafe() const { return result == Result::SameSize || result == Result::SameContent; }
    /// Bytes that still have to be downloaded, minus those that a new download would free first.
    std::uint64_t missingBytes() const;
};

/// Returns why the window cannot download a recording of this name, if so: it requests names in
/// Latin-1, while the card's names are read as UTF-8, and its request ends at a line ending.
Reason reasonAgainstName(const std::string& name);

/// The current step of the comparison.
enum class Step { Count, List, Details, Content };

/// The progress.
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
    bool named = false;    ///< only the recordings requested by name

    std::size_t recordings = 0;     ///< of the card, as far as they were wanted
    std::size_t safe = 0;           ///< of these
    std::vector<Recording> notSafe; ///< of these, and what was asked for and is not on the card
    std::uint64_t missingBytes = 0; ///< of these
    std::optional<std::uint64_t> freeBytes;
    std::string folder;

    std::uint64_t counted = 0; ///< by the camera
    std::size_t listed = 0;    ///< by the camera
    bool changed = false;      ///< the card changed during the comparison

    bool complete = false; ///< nothing failed
    Step failedStep = Step::Count;
    std::string failedName; ///< the recording's, for Step::Details and Step::Content
    CameraError error;      ///< of the camera, if it failed
    int systemError = 0;    ///< of the folder, if it failed

    bool disagrees() const { return counted != listed; }
};

/// Computes the verdict from the rest of the summary. A doubt about the whole card takes precedence
/// over a known problem with one recording, and that over an unknown one.
Verdict verdictOf(const Summary& summary);

/// Returns the exit status of the program.
int statusOf(Verdict verdict);

constexpr int wrongOptionStatus = 64;
constexpr int failureStatus = 2;
constexpr int interruptedStatus = 130;

} // namespace verify
