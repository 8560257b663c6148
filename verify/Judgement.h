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
    Shorter,   ///< the local file is shorter, probably because the download was interrupted
    Longer,    ///< the local file is longer, probably with the tail of an older file
    NotHere,
    NotOnCard,
    Nowhere, ///< requested by name, but neither on the card nor on this computer
    Unknown, ///< cannot be compared; see Recording::reason
};

enum class Reason {
    None,
    NoDetails, ///< the size could not be queried; see Recording::error
    NoContent, ///< the bytes could not be read; see Recording::error
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

/// The smallest size of a recording that the window cannot download: it counts the received bytes
/// in a signed 32-bit number.
constexpr std::uint64_t downloadLimit = std::uint64_t(1) << 31;

/// The maximum number of recordings that the window lists.
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
    std::uint64_t announced = 0;             ///< bytes announced or sent, for Reason::LengthsDiffer
    CameraError error;
    int systemError = 0;

    bool isSafe() const { return result == Result::SameSize || result == Result::SameContent; }
    /// Returns the number of bytes that are missing on this computer: all for a missing file, the
    /// difference for a shorter file, otherwise 0.
    std::uint64_t missingBytes() const;
};

/// Returns why the window cannot download a recording with this name, or Reason::None. The window
/// refuses ".", ".." and names with a slash. It reads names as UTF-8 but requests them in Latin-1,
/// which changes non-ASCII names, and a CR or LF in a name would end the request line.
Reason reasonAgainstName(const std::string& name);

/// The current step of the comparison.
enum class Step { Count, List, Details, Content };

/// The progress of the comparison.
struct Advance
{
    Step step = Step::Count;
    std::size_t number = 0;  ///< position of the recording, from 1
    std::size_t count = 0;   ///< number of all recordings to compare
    std::string name;        ///< name of the recording
    std::uint64_t bytes = 0; ///< bytes read so far in Step::Content
    std::uint64_t total = 0; ///< bytes to read in Step::Content
};

enum class Verdict { Safe, Empty, NotSafe, Unknown };

struct Summary
{
    Verdict verdict = Verdict::Unknown;
    bool contents = false; ///< compare contents, not only sizes
    bool named = false;    ///< compare only the recordings requested by name

    std::size_t recordings = 0;     ///< number of recordings on the card to compare
    std::size_t safe = 0;           ///< number of these that are safe
    std::vector<Recording> notSafe; ///< the others, and requested names that are not on the card
    std::uint64_t missingBytes = 0; ///< sum of missingBytes() over notSafe
    std::optional<std::uint64_t> freeBytes;
    std::string folder;

    std::uint64_t counted = 0; ///< the count stated by the camera
    std::size_t listed = 0;    ///< entries in the list of the camera
    bool changed = false;      ///< the card changed during the comparison

    bool complete = false; ///< the comparison ran to its end
    Step failedStep = Step::Count;
    std::string failedName; ///< name of the recording, in Step::Details and Step::Content
    CameraError error;      ///< error that ended the comparison early, if the camera caused it
    int systemError = 0;    ///< errno if the folder could not be read

    bool disagrees() const { return counted != listed; }
};

/// Returns the verdict that follows from the other members: Unknown if the comparison ended early,
/// if count and list disagree or if the card changed; otherwise Empty for an empty list, Safe if
/// notSafe is empty, Unknown if none of notSafe could be compared, and else NotSafe.
Verdict verdictOf(const Summary& summary);

/// Returns the exit status of the program for a verdict.
int statusOf(Verdict verdict);

constexpr int wrongOptionStatus = 64;
constexpr int failureStatus = 2;
constexpr int interruptedStatus = 130;

} // namespace verify
