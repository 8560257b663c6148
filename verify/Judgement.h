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
    Shorter,   ///< on this computer, probably because the download was interrupted
    Longer,    ///< on this computer, probably by the tail of an older file
    NotHere,
    NotOnCard,
    Nowhere, ///< requested by name, but on neither side
    Unknown, ///< cannot be compared; see Reason
};

enum class Reason {
    None,
    NoDetails, ///< the camera does not return the size; see Recording::error
    NoContent, ///< the camera does not return the bytes; see Recording::error
    LengthsDiffer,
    TwoEntries,
    NoName,
    NotDownloadable, ///< see reasonAgainstName()
    TooLarge,
    Link,
    Folder,
    NoFile,
    NameTooLong,
    FileError, ///< see Recording::systemError
    FileChanged,
};

/// The window cannot download recordings of this size or more: it counts bytes in 31 bits.
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
    /// Returns the additional bytes that a complete download needs: for a missing or shorter file,
    /// what it lacks; otherwise 0.
    std::uint64_t missingBytes() const;
};

/// Returns why the window cannot download a recording with this name, or Reason::None. The window
/// refuses ".", ".." and names with a slash. It reads names as UTF-8 but requests them in Latin-1,
/// which changes non-ASCII ones, and a line ending would end its request.
Reason reasonAgainstName(const std::string& name);

/// The current step of the comparison.
enum class Step { Count, List, Details, Content };

/// The progress of the comparison.
struct Advance
{
    Step step = Step::Count;
    std::size_t number = 0;  ///< of the recording, from 1
    std::size_t count = 0;   ///< of all recordings
    std::string name;        ///< of the recording
    std::uint64_t bytes = 0; ///< read so far, in Step::Content
    std::uint64_t total = 0; ///< to read in Step::Content
};

enum class Verdict { Safe, Empty, NotSafe, Unknown };

struct Summary
{
    Verdict verdict = Verdict::Unknown;
    bool contents = false; ///< contents were compared, not only sizes
    bool named = false;    ///< only the recordings requested by name

    std::size_t recordings = 0;     ///< on the card, and requested
    std::size_t safe = 0;           ///< of these
    std::vector<Recording> notSafe; ///< of these, and requested names that are not on the card
    std::uint64_t missingBytes = 0; ///< of notSafe
    std::optional<std::uint64_t> freeBytes;
    std::string folder;

    std::uint64_t counted = 0; ///< the count stated by the camera
    std::size_t listed = 0;    ///< entries in the list of the camera
    bool changed = false;      ///< the card changed during the comparison

    bool complete = false; ///< nothing failed
    Step failedStep = Step::Count;
    std::string failedName; ///< the recording's, for Step::Details and Step::Content
    CameraError error;      ///< of the camera, if it failed
    int systemError = 0;    ///< of the folder, if it failed

    bool disagrees() const { return counted != listed; }
};

/// Returns the verdict that the rest of the summary results in. A doubt about the whole card takes
/// precedence over a known problem with one recording, and such a problem over a recording that
/// cannot be compared.
Verdict verdictOf(const Summary& summary);

/// Returns the exit status of the program.
int statusOf(Verdict verdict);

constexpr int wrongOptionStatus = 64;
constexpr int failureStatus = 2;
constexpr int interruptedStatus = 130;

} // namespace verify
