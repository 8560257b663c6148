// The faults that are switched on, and how devices ask for them.
#pragma once

#include "simulator/Clock.h"
#include "simulator/Fault.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The faults that are switched on.
class FaultTable
{
public:
    /// Switches on what "NAME" or "NAME=VALUE" says. Returns an error text, empty on success.
    std::string set(const std::string& assignment, TimePoint now);
    /// Switches one fault off, or every one for "all". Returns an error text, empty on success.
    std::string clear(const std::string& name);
    void clear(Fault fault) { m_active.erase(fault); }

    bool active(Fault fault) const { return find(fault) != nullptr; }
    std::optional<std::string> value(Fault fault) const;
    std::optional<long long> number(Fault fault) const;
    /// Returns true when the fault is on and its Words value holds the word.
    bool names(Fault fault, std::string_view word) const;
    /// When the fault was switched on; `never` for one that is off.
    TimePoint since(Fault fault) const;
    /// Returns the values of all active faults of the group, in table order.
    std::vector<std::string> values(FaultGroup group) const;
    /// Returns the faults that are on, as they are switched on again: "stall=50".
    std::vector<std::string> list() const;
    /// False when the fault "only" leaves the module ("control", "ground") or the kind of camera
    /// request ("count", "list", ...) out.
    bool inScope(std::string_view who) const;

private:
    struct Active
    {
        std::string value;
        TimePoint since;
    };
    const Active* find(Fault fault) const;

    std::map<Fault, Active> m_active;
};

/// The faults as one module or one camera request sees them: those out of its scope are off.
class FaultScope
{
public:
    FaultScope(const FaultTable& faults, std::string_view who)
        : m_faults(&faults), m_inScope(faults.inScope(who))
    {
    }
    bool active(Fault fault) const { return m_inScope && m_faults->active(fault); }
    std::optional<std::string> value(Fault fault) const
    {
        return m_inScope ? m_faults->value(fault) : std::nullopt;
    }
    std::optional<long long> number(Fault fault) const
    {
        return m_inScope ? m_faults->number(fault) : std::nullopt;
    }
    bool names(Fault fault, std::string_view word) const
    {
        return m_inScope && m_faults->names(fault, word);
    }

private:
    const FaultTable* m_faults;
    bool m_inScope;
};

} // namespace simulator
