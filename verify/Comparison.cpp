#include "verify/Comparison.h"

#include "download/LocalFile.h"
#include "verify/ByteComparison.h"

#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace verify {

namespace {

Reason reasonAgainstFile(LocalFile::State state)
{
    switch (state) {
    case LocalFile::State::Link:
        return Reason::Link;
    case LocalFile::State::Folder:
        return Reason::Folder;
    case LocalFile::State::NoFile:
        return Reason::NoFile;
    case LocalFile::State::NotThere:
        return Reason::NameTooLong;
    case LocalFile::State::Failed:
        return Reason::FileError;
    default:
        return Reason::None;
    }
}

/// Sets the result of a recording according to the state and size of its file.
void judge(Recording& recording, const LocalFile& file)
{
    recording.reason = reasonAgainstFile(file.state());
    recording.systemError = file.error();
    if (recording.reason != Reason::None) {
        recording.result = Result::Unknown;
    } else if (file.state() == LocalFile::State::Missing) {
        recording.result = Result::NotHere;
    } else {
        recording.localBytes = file.size();
        recording.result = file.size() < recording.cardBytes   ? Result::Shorter
                           : file.size() > recording.cardBytes ? Result::Longer
                                                               : Result::SameSize;
    }
}

} // namespace

Comparison::Comparison(CardReader card, LocalFolder& folder, bool contents,
                       const std::vector<std::string>& names, Listener listener)
    : m_card(card), m_folder(folder), m_names(names.begin(), names.end()),
      m_listener(std::move(listener))
{
    m_summary.contents = contents;
    m_summary.named = !m_names.empty();
    m_summary.folder = folder.path();
}

Summary Comparison::run()
{
    m_summary.complete = checkFolder() && readCard() && judgeSizes() && judgeContents();
    if (m_summary.complete) {
        judgeOthers();
        m_summary.complete = checkFolder() && readCardAgain();
    }
    m_summary.freeBytes = m_folder.freeBytes();
    m_summary.verdict = verdictOf(m_summary);
    return m_summary;
}

bool Comparison::readList(CardCount& count, std::vector<std::string>& names)
{
    advance(Step::Count);
    Reply<CardCount> counted = m_card.count();
    if (counted.error) {
        return fail(counted.error);
    }
    advance(Step::List);
    Reply<std::vector<std::string>> listed = m_card.names(counted.value.text);
    if (listed.error) {
        return fail(listed.error);
    }
    // The camera lists no more entries than requested, so a count that is too small would hide
    // recordings. Therefore the list is requested again with one more entry; an error of this
    // request is ignored.
    Reply<std::vector<std::string>> oneMore =
        m_card.names(std::to_string(counted.value.number + 1));
    const bool hidden = !oneMore.error && oneMore.value.size() > listed.value.size();
    names = std::move(hidden ? oneMore.value : listed.value);
    count = std::move(counted.value);
    return true;
}

bool Comparison::readCard()
{
    if (!readList(m_count, m_listed)) {
        return false;
    }
    m_summary.counted = m_count.number;
    m_summary.listed = m_listed.size();

    std::map<std::string, std::size_t> places; // indices in m_recordings
    for (std::size_t i = 0; i < m_listed.size(); ++i) {
        const std::string& name = m_listed[i];
        if (!isWanted(name)) {
            continue;
        }
        const auto [place, isNew] = places.emplace(name, m_recordings.size());
        if (!isNew && !name.empty()) {
            m_recordings[place->second].reason = Reason::TwoEntries;
            continue;
        }
        Recording recording;
        recording.name = name;
        recording.entry = i + 1;
        recording.reason = reasonAgainstName(name);
        m_recordings.push_back(std::move(recording));
    }
    m_summary.recordings = m_recordings.size();
    return true;
}

bool Comparison::judgeSizes()
{
    for (std::size_t i = 0; i < m_recordings.size(); ++i) {
        Recording& recording = m_recordings[i];
        advance(Step::Details, i + 1, recording.name);
        if (recording.reason == Reason::None && !judgeSize(recording)) {
            return false;
        }
        if (recording.result == Result::SameSize) {
            m_advance.total += *recording.cardBytes;
        }
        if (!m_summary.contents) {
            report(recording);
        }
    }
    return true;
}

bool Comparison::judgeSize(Recording& recording)
{
    const Reply<std::uint64_t> size = m_card.size(recording.name);
    if (size.error.isLasting()) {
        return fail(size.error);
    }
    if (size.error) {
        recording.reason = Reason::NoDetails;
        recording.error = size.error;
        return true;
    }
    recording.cardBytes = size.value;
    if (size.value >= downloadLimit) {
        recording.reason = Reason::TooLarge;
    } else {
        judge(recording, m_folder.open(recording.name));
    }
    return true;
}

bool Comparison::judgeContents()
{
    for (std::size_t i = 0; m_summary.contents && i < m_recordings.size(); ++i) {
        Recording& recording = m_recordings[i];
        advance(Step::Content, i + 1, recording.name);
        if (recording.result == Result::SameSize && !judgeContent(recording)) {
            return false;
        }
        report(recording);
    }
    return true;
}

bool Comparison::judgeContent(Recording& recording)
{
    LocalFile file = m_folder.open(recording.name);
    judge(recording, file);
    if (recording.result != Result::SameSize) {
        return true; // the file has changed since its size was compared
    }
    const std::uint64_t size = *recording.cardBytes;
    file.readFromDisk();
    ByteComparison comparison(file);
    const auto reply =
        m_card.content(recording.name, size, [this, &comparison](std::string_view bytes) {
            m_advance.bytes += bytes.size();
            m_listener.advanced(m_advance);
            return comparison.take(bytes);
        });
    if (reply.error.isLasting()) {
        return fail(reply.error);
    }
    recording.result = Result::Unknown;
    if (reply.error) {
        recording.reason = Reason::NoContent;
        recording.error = reply.error;
    } else if (file.error() != 0) {
        recording.reason = Reason::FileError;
        recording.systemError = file.error();
    } else if (!file.isUnchanged()) {
        recording.reason = Reason::FileChanged;
    } else if (reply.value || (comparison.isSame() && comparison.compared() != size)) {
        recording.reason = Reason::LengthsDiffer;
        recording.announced = reply.value.value_or(comparison.compared());
    } else if (comparison.isSame()) {
        recording.result = Result::SameContent;
    } else {
        recording.result = Result::Different;
        recording.difference = comparison.compared();
    }
    return true;
}

/// Reports the names that are not in the card's list: the requested ones, or those of all files in
/// the folder if no names were requested.
void Comparison::judgeOthers()
{
    const std::set<std::string> listed(m_listed.begin(), m_listed.end());
    std::vector<std::string> names(m_names.begin(), m_names.end());
    if (!m_summary.named) {
        names = m_folder.names();
    }
    for (const std::string& name : names) {
        if (listed.count(name) != 0) {
            continue;
        }
        Recording recording;
        recording.name = name;
        recording.result = Result::Nowhere;
        if (download::isBareFileName(QByteArray::fromStdString(name))) {
            const LocalFile file = m_folder.open(name);
            if (file.state() == LocalFile::State::Open) {
                recording.localBytes = file.size();
            }
            recording.result =
                file.state() == LocalFile::State::Missing ? Result::Nowhere : Result::NotOnCard;
        }
        report(recording);
    }
}

bool Comparison::readCardAgain()
{
    CardCount count;
    std::vector<std::string> names;
    if (!readList(count, names)) {
        return false;
    }
    m_summary.changed = count.text != m_count.text || names != m_listed;
    return true;
}

bool Comparison::isWanted(const std::string& name) const
{
    return m_names.empty() || m_names.count(name) != 0;
}

void Comparison::advance(Step step, std::size_t number, const std::string& name)
{
    m_advance.step = step;
    m_advance.number = number;
    m_advance.count = m_recordings.size();
    m_advance.name = name;
    m_listener.advanced(m_advance);
}

void Comparison::report(const Recording& recording)
{
    if (recording.isSafe()) {
        ++m_summary.safe;
    } else if (recording.entry != 0 || m_summary.named) {
        m_summary.notSafe.push_back(recording);
        m_summary.missingBytes += recording.missingBytes();
    }
    m_listener.judged(recording);
}

bool Comparison::fail(const CameraError& error)
{
    m_summary.failedStep = m_advance.step;
    m_summary.failedName = m_advance.name;
    m_summary.error = error;
    return false;
}

bool Comparison::checkFolder()
{
    m_summary.systemError = m_folder.error();
    return m_summary.systemError == 0;
}

} // namespace verify
