#include "verify/Judgement.h"

#include <algorithm>

namespace verify {

std::uint64_t Recording::missingBytes() const
{
    if (result == Result::NotHere || result == Result::Shorter) {
        return cardBytes.value_or(0) - localBytes.value_or(0);
    }
    return 0;
}

Reason reasonAgainstName(const std::string& name)
{
    if (name.empty()) {
        return Reason::NoName;
    }
    const auto breaksRequest = [](char byte) {
        return byte == '/' || byte == '\r' || byte == '\n' ||
               static_cast<unsigned char>(byte) >= 0x80;
    };
    if (name == "." || name == ".." || std::any_of(name.begin(), name.end(), breaksRequest)) {
        return Reason::NotDownloadable;
    }
    return Reason::None;
}

Verdict verdictOf(const Summary& summary)
{
    if (!summary.complete || summary.disagrees() || summary.changed) {
        return Verdict::Unknown;
    }
    if (summary.listed == 0) {
        return Verdict::Empty;
    }
    if (summary.notSafe.empty()) {
        return Verdict::Safe;
    }
    const bool allUnknown =
        std::all_of(summary.notSafe.begin(), summary.notSafe.end(),
                    [](const Recording& each) { return each.result == Result::Unknown; });
    return allUnknown ? Verdict::Unknown : Verdict::NotSafe;
}

int statusOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Safe:
    case Verdict::Empty:
        return 0;
    case Verdict::NotSafe:
        return 1;
    case Verdict::Unknown:
        break;
    }
    return failureStatus;
}

} // namespace verify
