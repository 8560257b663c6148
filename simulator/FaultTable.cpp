#include "simulator/FaultTable.h"

#include "simulator/Text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace simulator {

namespace {

std::vector<std::string> split(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(separator, start);
        parts.emplace_back(text.substr(start, end == std::string_view::npos ? std::string_view::npos
                                                                            : end - start));
        if (end == std::string_view::npos) {
            return parts;
        }
        start = end + 1;
    }
}

bool contains(const std::vector<std::string>& words, std::string_view word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::optional<long long> parseNumber(std::string_view text)
{
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::string> unescape(std::string_view text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        if (++i == text.size()) {
            return std::nullopt;
        }
        switch (text[i]) {
        case 'r':
            bytes += '\r';
            break;
        case 'n':
            bytes += '\n';
            break;
        case 't':
            bytes += '\t';
            break;
        case '\\':
            bytes += '\\';
            break;
        case 'x': {
            unsigned value = 0;
            if (i + 2 >= text.size()) {
                return std::nullopt;
            }
            const char* digits = text.data() + i + 1;
            const auto [end, error] = std::from_chars(digits, digits + 2, value, 16);
            if (error != std::errc() || end != digits + 2) {
                return std::nullopt;
            }
            bytes += static_cast<char>(value);
            i += 2;
            break;
        }
        default:
            return std::nullopt;
        }
    }
    return bytes;
}

/// Reverses unescape(). A space is escaped only if it is the first or the last byte.
std::string escape(const std::string& bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool edge = i == 0 || i + 1 == bytes.size();
        if (bytes[i] == '\\') {
            text += "\\\\";
        } else if (byte < 0x20 || byte > 0x7E || (byte == ' ' && edge)) {
            text += "\\x" + hexText(bytes.substr(i, 1));
        } else {
            text += bytes[i];
        }
    }
    return text;
}

/// Parses a decimal number, which may end in k or M if `kind` is Size.
std::optional<long long> parseAmount(std::string_view text, FaultKind kind)
{
    long long unit = 1;
    if (kind == FaultKind::Size && !text.empty()) {
        unit = text.back() == 'k' ? 1'024 : text.back() == 'M' ? 1'048'576 : 1;
        text.remove_suffix(unit == 1 ? 0 : 1);
    }
    const auto number = parseNumber(text);
    constexpr long long largest = std::numeric_limits<long long>::max() / 1'048'576;
    if (!number || (unit != 1 && (*number > largest || *number < -largest))) {
        return std::nullopt;
    }
    return *number * unit;
}

/// Checks a value against the row of its fault and normalises it. Returns an error text, empty on
/// success.
std::string readValue(const FaultDescription& row, std::string& value)
{
    const FaultValue& taken = row.value;
    switch (taken.kind) {
    case FaultKind::None:
        return "fault " + row.name + " takes no value";
    case FaultKind::Number:
    case FaultKind::Size: {
        const auto number = parseAmount(value, taken.kind);
        if (!number || *number < taken.minimum || *number > taken.maximum) {
            return "fault " + row.name + " takes a number from " + std::to_string(taken.minimum) +
                   " to " + std::to_string(taken.maximum) + ", not \"" + value + "\"";
        }
        value = std::to_string(*number);
        return {};
    }
    case FaultKind::Words: {
        const auto known = split(taken.name, '|');
        for (const std::string& word : split(value, ',')) {
            if (!contains(known, word)) {
                return "fault " + row.name + " takes " + taken.name + ", not \"" + word + "\"";
            }
        }
        return {};
    }
    case FaultKind::Text:
        break;
    }
    const auto bytes = unescape(value);
    if (!bytes) {
        return "fault " + row.name + R"(: only \r \n \t \\ and \xHH may follow a backslash)";
    }
    value = *bytes;
    return {};
}

} // namespace

std::string FaultTable::set(const std::string& assignment, TimePoint now)
{
    const std::size_t equals = assignment.find('=');
    const std::size_t at = assignment.find('@');
    const bool limited = at < equals && at != std::string::npos;
    const std::string name = assignment.substr(0, limited ? at : equals);
    const FaultDescription* row = findFault(name);
    if (!row) {
        return unknownFault(name);
    }
    Active active{row->value.preset, {}, now};
    if (limited) {
        const std::string when = assignment.substr(at + 1, equals - at - 1);
        if (counted(row->group) == FaultCounts::Nothing) {
            return "fault " + name + " cannot be limited to some requests or connections";
        }
        if (!Occasion::parse(when, active.when)) {
            return "fault " + name + R"(: after @ there is a number ("3", "3-5", "3-") or a )" +
                   R"(percentage from 1% to 99%, not ")" + when + "\"";
        }
    }
    if (equals != std::string::npos) {
        active.value = assignment.substr(equals + 1);
    } else if (row->value.kind == FaultKind::None) {
        m_active[row->fault] = active;
        return {};
    } else if (active.value.empty()) {
        return "fault " + name + " needs a value: " + name + "=" + row->value.name;
    }
    std::string error = readValue(*row, active.value);
    if (error.empty()) {
        m_active[row->fault] = active;
    }
    return error;
}

std::string FaultTable::clear(const std::string& name)
{
    if (name == "all") {
        m_active.clear();
        return {};
    }
    const FaultDescription* row = findFault(name);
    if (!row) {
        return unknownFault(name);
    }
    clear(row->fault);
    return {};
}

const FaultTable::Active* FaultTable::find(Fault fault) const
{
    const auto active = m_active.find(fault);
    return active == m_active.end() ? nullptr : &active->second;
}

bool FaultTable::actsOn(Fault fault, std::uint64_t number) const
{
    const Active* active = find(fault);
    return active && active->when.includes(number, m_seed, static_cast<std::uint64_t>(fault));
}

std::optional<std::string> FaultTable::value(Fault fault) const
{
    const Active* active = find(fault);
    return active ? std::optional<std::string>(active->value) : std::nullopt;
}

std::optional<long long> FaultTable::number(Fault fault) const
{
    const Active* active = find(fault);
    return active ? parseNumber(active->value) : std::nullopt;
}

bool FaultTable::names(Fault fault, std::string_view word) const
{
    const Active* active = find(fault);
    return active && contains(split(active->value, ','), word);
}

TimePoint FaultTable::since(Fault fault) const
{
    const Active* active = find(fault);
    return active ? active->since : never;
}

std::vector<std::string> FaultTable::values(FaultGroup group) const
{
    std::vector<std::string> values;
    for (const auto& [fault, active] : m_active) {
        if (describe(fault).group == group) {
            values.push_back(active.value);
        }
    }
    return values;
}

std::vector<std::string> FaultTable::list() const
{
    std::vector<std::string> faults;
    for (const auto& [fault, active] : m_active) {
        const FaultDescription& row = describe(fault);
        faults.push_back(row.name + (active.when.always() ? "" : "@" + active.when.text()) +
                         (row.value.kind == FaultKind::None ? "" : "=" + escape(active.value)));
    }
    return faults;
}

bool FaultTable::inScope(std::string_view who) const
{
    const Active* only = find(Fault::Only);
    if (!only) {
        return true;
    }
    const auto isModule = [](std::string_view word) {
        return word == "control" || word == "ground";
    };
    bool groupNamed = false;
    for (const std::string& word : split(only->value, ',')) {
        if (word == who || (word == "cgi" && !isModule(who) && who != "recording")) {
            return true;
        }
        groupNamed = groupNamed || isModule(word) == isModule(who);
    }
    return !groupNamed;
}

} // namespace simulator
