// The faults that are switched on, and how devices query them.
#pragma once

#include "simulator/Clock.h"
#include "simulator/Fault.h"
#include "simulator/Occasion.h"

#include <cstdint>
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
    /// seed: decides when faults such as "NAME@10%" act.
    explicit FaultTable(std::uint64_t seed = 0) : m_seed(seed) {}

    /// Switches on a fault given as "NAME", "NAME=VALUE", "NAME@WHEN" or "NAME@WHEN=VALUE". Returns
    /// an error text, empty on success.
    std::string set(const std::string& assignment, TimePoint now);
    /// Switches one fault off, or all for "all". Returns an error text, empty on success.
    std::string clear(const std::string& name);
    void clear(Fault fault) { m_active.erase(fault); }

    bool active(Fault fault) const { return find(fault) != nullptr; }
    std::optional<std::string> value(Fault fault) const;
    std::optional<long long> number(Fault fault) const;
    /// Returns true if the fault is on and its Words value contains the word.
    bool names(Fault fault, std::string_view word) const;
    /// Returns when the fault was switched on; `never` if it is off.
    TimePoint since(Fault fault) const;
    /// Returns the values of all active faults of the group, in table order.
    std::vector<std::string> values(FaultGroup group) const;
    /// Returns the faults that are on, as texts that set() accepts, such as "stall=50".
    std::vector<std::string> list() const;
    /// Returns false if the fault "only" excludes the module ("control", "ground") or the kind of
    /// camera request ("count", "list", ...).
    bool inScope(std::string_view who) const;
    /// Returns true if the fault is on and acts on the request or connection with this number.
    bool actsOn(Fault fault, std::uint64_t number) const;

private:
    struct Active
    {
        std::string value;
        Occasion when;
        TimePoint since;
    };
    const Active* find(Fault fault) const;

    std::uint64_t m_seed;
    std::map<Fault, Active> m_active;
};

/// The faults as they act on one connection of a module or one camera request; those that do not
/// act on it are off.
class FaultScope
{
public:
    /// who: "control", "ground" or the kind of the request. number: the number of the connection or
    /// request.
    FaultScope(const FaultTable& faults, std::string_view who, std::uint64_t number)
        : m_faults(&faults), m_inScope(faults.inScope(who)), m_number(number)
    {
    }
    bool active(Fault fault) const { return m_inScope && m_faults->actsOn(fault, m_number); }
    std::optional<std::string> value(Fault fault) const
    {
        return active(fault) ? m_faults->value(fault) : std::nullopt;
    }
    std::optional<long long> number(Fault fault) const
    {
        return active(fault) ? m_faults->number(fault) : std::nullopt;
    }
    bool names(Fault fault, std::string_view word) const
    {
        return active(fault) && m_faults->names(fault, word);
    }

private:
    const FaultTable* m_faults;
    bool m_inScope;
    std::uint64_t m_number;
};

} // namespace simulator
