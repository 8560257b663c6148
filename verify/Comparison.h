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

/// What the comparison hands out while it runs.
struct Listener
{
    /// Each recording, when it is judged.
    std::function<void(const Recording&)> judged;
    /// How far the comparison is; called often.
    std::function<void(const Advance&)> advanced;
};

class Comparison
{
public:
    /// `names`: the recordings to compare; all, if there is none.
    Comparison(CardReader card, LocalFolder& folder, bool contents,
               const std::vector<std::string>& names, Listener listener);

    /// Runs to the end, or to the first failure that would only repeat itself.
    Summary run();

private:
    bool readCard();
    bool judgeSizes();
    bool judgeContents();
    void judgeOthers();
    bool readCardAgain();

    /// Asks for the count and the whole list.
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
    std::vector<Recording> m_recordings; // of the card, those that are wanted, each name once
    Advance m_advance;
    Summary m_summary;
};

} // namespace verify
