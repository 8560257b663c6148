#pragma once

#include "simulator/Clock.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// How the text behind NAME= is read.
enum class FaultValue {
    None,   ///< takes no value
    Number, ///< a decimal number within the row's bounds
    Words,  ///< comma-separated words out of those that valueName lists with '|' between them
    Text    ///< any bytes; \r \n \t \\ and \xHH are decoded
};

/// One row of the fault table: everything there is to know about a fault but its effect.
struct FaultDescription
{
    std::string name;
    FaultValue kind;
    std::string valueName;    ///< as --list-faults shows it: "SECONDS", "control|ground"
    std::string defaultValue; ///< used when no value is given; empty: a value must be given
    long long minimum;        ///< bounds of a Number
    long long maximum;
    std::string result; ///< what the client sees, one sentence
};

/// All faults, in the order of --list-faults.
const std::vector<FaultDescription>& faultDescriptions();

/// The text of --list-faults: one line per fault.
std::string faultListText();

/// The faults that are switched on. Hooks ask by name; a name that is not in the table is a
/// programming error and throws std::logic_error.
class FaultTable
{
public:
    /// Switches on what "NAME" or "NAME=VALUE" says. Returns an error text, empty on success.
    std::string set(const std::string& assignment, TimePoint now);
    /// Switches one fault off, or every one for "all". Returns an error text, empty on success.
    std::string clear(const std::string& name);

    bool active(std::string_view name) const;
    std::optional<std::string> value(std::string_view name) const;
    std::optional<long long> number(std::string_view name) const;
    /// True when the fault is on and its Words value holds the word.
    bool names(std::string_view fault, std::string_view word) const;
    /// When the fault was switched on; only for an active one.
    TimePoint since(std::string_view name) const;
    /// Values of all active faults whose name begins with the prefix, in table order.
    std::vector<std::string> valuesWithPrefix(std::string_view prefix) const;
    /// False when the fault "only" leaves the module ("control", "ground") or the kind of camera
    /// request ("count", "list", ...) out.
    bool inScope(std::string_view who) const;

private:
    struct Active
    {
        std::string value;
        TimePoint since;
    };
    const Active* find(std::string_view name) const;

    std::map<std::string, Active, std::less<>> m_active;
};

/// The faults as one module or one camera request sees them: those out of its scope are off.
class FaultScope
{
public:
    FaultScope(const FaultTable& faults, std::string_view who)
        : m_faults(&faults), m_inScope(faults.inScope(who))
    {
    }
    bool active(std::string_view name) const { return m_faults->active(name) && m_inScope; }
    std::optional<std::string> value(std::string_view name) const
    {
        return m_inScope ? m_faults->value(name) : std::nullopt;
    }
    std::optional<long long> number(std::string_view name) const
    {
        return m_inScope ? m_faults->number(name) : std::nullopt;
    }
    bool names(std::string_view fault, std::string_view word) const
    {
        return m_inScope && m_faults->names(fault, word);
    }

private:
    const FaultTable* m_faults;
    bool m_inScope;
};

} // namespace simulator
