// Compares the card with the folder, recording by recording.
#pragma once

#include "verify/CardReader.h"
#include "verify/Judgement.h"
#include "verify/LocalFolder.h"

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace verify {

/// The functions that receive the output of the comparison while it runs.
struct Listener
{
    /// Called for each recording when its result is known.
    std::function<void(const Recording&)> judged;
    /// Called often with the progress.
    std::function<void(const Advance&)> advanced;
};

class Comparison
{
public:
    /// `names`: the recordings to compare; all if it is empty.
    Comparison(CardReader card, LocalFolder& folder, bool contents,
               const std::vector<std::string>& names, Listener listener);

    /// Compares everything and returns the summary. Ends early if the folder, the count or the list
    /// cannot be read, or after an error for which CameraError::isLasting() is true.
    Summary run();

private:
    bool readCard();
    bool judgeSizes();
    bool judgeContents();
    void judgeOthers();
    bool readCardAgain();

    /// Queries the number of recordings and the complete list of their names.
    bool readList(CardCount& count, std::vector<std::string>& names);
    bool judgeSize(Recording& recording);
    bool judgeContent(Recording& recording);

    bool isWanted(const std::string& name) const;
    void advance(Step step, std::size_t number = 0, const std::string& name = {});
    void report(const Recording& recording);
    bool fail(const CameraError& error);
    bool checkFolder();

    const CardReader m_card;
    LocalFolder& m_folder;
    const std::set<std::string> m_names;
    const Listener m_listener;

    CardCount m_count;
    std::vector<std::string> m_listed;
    std::vector<Recording> m_recordings; // those to compare; each name once, except the empty one
    Advance m_advance;
    Summary m_summary;
};

} // namespace verify
