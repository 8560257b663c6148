#include "simulator/Fault.h"

#include "simulator/Text.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr long long dayInMilliseconds = 86'400'000;
constexpr long long anyLength = 1'000'000'000'000;
const std::string modules = "control|ground";
const std::string bothModules = "control,ground";
const std::string devices = "control|ground|camera";
const std::string allDevices = "control,ground,camera";
// The words of the fault "only": the modules, "cgi" for every request to the camera except those
// for recordings, and each kind of request.
const std::string scopes = modules + "|cgi"
#define REQUEST(enumerator, name, target, argument, answer) "|" name
#include "simulator/CameraRequests.inc"
#undef REQUEST
    ;

FaultValue none()
{
    return {};
}

FaultValue number(std::string unit, std::string preset, long long minimum, long long maximum)
{
    return {FaultKind::Number, std::move(unit), std::move(preset), minimum, maximum};
}

FaultValue size(std::string unit, std::string preset, long long minimum, long long maximum)
{
    return {FaultKind::Size, std::move(unit), std::move(preset), minimum, maximum};
}

FaultValue words(std::string known, std::string preset)
{
    return {FaultKind::Words, std::move(known), std::move(preset), 0, 0};
}

FaultValue text(std::string preset)
{
    return {FaultKind::Text, "TEXT", std::move(preset), 0, 0};
}

} // namespace

// NOLINTNEXTLINE(readability-function-size): one table
const std::vector<FaultDescription>& faultDescriptions()
{
    static const std::vector<FaultDescription> rows = {
#define FAULT(enumerator, name, oldName, group, device, value, result)                             \
    {Fault::enumerator, name, oldName, FaultGroup::group, FaultDevice::device, value, result},
#include "simulator/Faults.inc"
#undef FAULT
    };
    return rows;
}

FaultCounts counted(FaultGroup group)
{
    switch (group) {
    case FaultGroup::Scope:
    case FaultGroup::Reach:
    case FaultGroup::Card:
    case FaultGroup::Names:
        return FaultCounts::Nothing;
    case FaultGroup::Frames:
        return FaultCounts::Connections;
    case FaultGroup::Answers:
    case FaultGroup::Count:
    case FaultGroup::List:
    case FaultGroup::Details:
    case FaultGroup::Changes:
        return FaultCounts::Requests;
    }
    return FaultCounts::Nothing;
}

const FaultDescription& describe(Fault fault)
{
    return faultDescriptions()[static_cast<std::size_t>(fault)];
}

const FaultDescription* findFault(std::string_view name)
{
    const auto& rows = faultDescriptions();
    const auto row = std::find_if(rows.begin(), rows.end(), [name](const FaultDescription& each) {
        return each.name == name || (!each.oldName.empty() && each.oldName == name);
    });
    return row == rows.end() ? nullptr : &*row;
}

std::string unknownFault(std::string_view name)
{
    std::vector<std::string> names;
    for (const FaultDescription& row : faultDescriptions()) {
        names.push_back(row.name);
        names.push_back(row.oldName);
    }
    return "no fault is called \"" + std::string(name) + "\"" + didYouMean(name, names) +
           " (--list-faults shows all)";
}

} // namespace simulator
