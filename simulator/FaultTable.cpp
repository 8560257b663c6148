#include "simulator/FaultTable.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

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

const FaultDescription* describe(std::string_view name)
{
    const auto& rows = faultDescriptions();
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [name](const FaultDescription& r) { return r.name == name; });
    return row == rows.end() ? nullptr : &*row;
}

/// Checks a value against its row and leaves it as the hooks read it; returns an error text.
std::string readValue(const FaultDescription& row, std::string& value)
{
    switch (row.kind) {
    case FaultValue::None:
        return "fault " + row.name + " takes no value";
    case FaultValue::Number: {
        const auto number = parseNumber(value);
        if (!number || *number < row.minimum || *number > row.maximum) {
            return "fault " + row.name + " takes a number from " + std::to_string(row.minimum) +
                   " to " + std::to_string(row.maximum) + ", not \"" + value + "\"";
        }
        value = std::to_string(*number);
        return {};
    }
    case FaultValue::Words: {
        const auto known = split(row.valueName, '|');
        for (const std::string& word : split(value, ',')) {
            if (!contains(known, word)) {
                return "fault " + row.name + " takes " + row.valueName + ", not \"" + word + "\"";
            }
        }
        return {};
    }
    case FaultValue::Text:
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

std::string faultListText()
{
    std::string text;
    for (const FaultDescription& row : faultDescriptions()) {
        std::string name = row.name;
        if (row.kind != FaultValue::None) {
            name += row.defaultValue.empty() ? "=" + row.valueName : "[=" + row.valueName + "]";
        }
        text += name + std::string(name.size() < 28 ? 28 - name.size() : 0, ' ');
        text += "  " + row.result + "\n";
    }
    return text;
}

std::string FaultTable::set(const std::string& assignment, TimePoint now)
{
    const std::size_t equals = assignment.find('=');
    const std::string name = assignment.substr(0, equals);
    const FaultDescription* row = describe(name);
    if (!row) {
        return "no fault is called \"" + name + "\" (--list-faults shows all)";
    }
    if (equals == std::string::npos && row->kind == FaultValue::None) {
        m_active[name] = {std::string(), now};
        return {};
    }
    std::string value = row->defaultValue;
    if (equals != std::string::npos) {
        value = assignment.substr(equals + 1);
    } else if (value.empty()) {
        return "fault " + name + " needs a value: " + name + "=" + row->valueName;
    }
    std::string error = readValue(*row, value);
    if (error.empty()) {
        m_active[name] = {value, now};
    }
    return error;
}

std::string FaultTable::clear(const std::string& name)
{
    if (name == "all") {
        m_active.clear();
        return {};
    }
    if (!describe(name)) {
        return "no fault is called \"" + name + "\" (--list-faults shows all)";
    }
    m_active.erase(name);
    return {};
}

const FaultTable::Active* FaultTable::find(std::string_view name) const
{
    if (!describe(name)) {
        throw std::logic_error("no fault is called " + std::string(name));
    }
    const auto active = m_active.find(name);
    return active == m_active.end() ? nullptr : &active->second;
}

bool FaultTable::active(std::string_view name) const
{
    return find(name) != nullptr;
}

std::optional<std::string> FaultTable::value(std::string_view name) const
{
    const Active* active = find(name);
    return active ? std::optional<std::string>(active->value) : std::nullopt;
}

std::optional<long long> FaultTable::number(std::string_view name) const
{
    const Active* active = find(name);
    return active ? parseNumber(active->value) : std::nullopt;
}

bool FaultTable::names(std::string_view fault, std::string_view word) const
{
    const Active* active = find(fault);
    return active && contains(split(active->value, ','), word);
}

TimePoint FaultTable::since(std::string_view name) const
{
    const Active* active = find(name);
    return active ? active->since : never;
}

std::vector<std::string> FaultTable::valuesWithPrefix(std::string_view prefix) const
{
    std::vector<std::string> values;
    for (const FaultDescription& row : faultDescriptions()) {
        const auto active = m_active.find(row.name);
        if (active != m_active.end() && row.name.compare(0, prefix.size(), prefix) == 0) {
            values.push_back(active->second.value);
        }
    }
    return values;
}

bool FaultTable::inScope(std::string_view who) const
{
    const Active* only = find("only");
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
