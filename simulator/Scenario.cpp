#include "simulator/Scenario.h"

#include "simulator/Options.h"

#include <algorithm>
#include <array>
#include <sstream>

namespace simulator {

namespace {

constexpr std::uint64_t longestTime = 1'000'000'000; // in any unit
constexpr const char* triggerForms =
    "a step begins with \"after 10 s:\" (or ms, min), \"after download 3:\" or \"at exchange 12:\"";

bool timeUnit(const std::string& word, Milliseconds& unit)
{
    unit = word == "ms"    ? Milliseconds(1)
           : word == "s"   ? Milliseconds(1'000)
           : word == "min" ? Milliseconds(60'000)
                           : Milliseconds(0);
    return unit != Milliseconds(0);
}

/// Returns whether control lines with this first word change nothing; a scenario rejects them.
bool changesNothing(const std::string& word)
{
    constexpr std::array<const char*, 5> words = {"faults", "card", "connections", "status",
                                                  "help"};
    return std::find(words.begin(), words.end(), word) != words.end();
}

} // namespace

std::string Scenario::parseTrigger(const std::string& text, Step& step)
{
    std::istringstream words(text);
    std::string preposition;
    std::string second;
    std::string third;
    std::string rest;
    words >> preposition >> second >> third;
    Milliseconds unit{};
    if (words >> rest) {
        return triggerForms;
    }
    if (preposition == "after" && parseUnsigned(second, step.number) && timeUnit(third, unit) &&
        step.number <= longestTime) {
        step.trigger = Trigger::Time;
        step.time = unit * static_cast<long>(step.number);
        return {};
    }
    const bool download = preposition == "after" && second == "download";
    if (!download && (preposition != "at" || second != "exchange")) {
        return triggerForms;
    }
    step.trigger = download ? Trigger::Download : Trigger::Exchange;
    return parseUnsigned(third, step.number) && step.number > 0
               ? std::string()
               : "\"" + third + "\" is no number from 1 on";
}

std::string Scenario::addLine(const std::string& text)
{
    const std::size_t start = text.find_first_not_of(" \t\r");
    if (start == std::string::npos || text[start] == '#') {
        return {};
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) {
        return triggerForms;
    }
    Step step;
    if (std::string error = parseTrigger(text.substr(0, colon), step); !error.empty()) {
        return error;
    }
    std::istringstream action(text.substr(colon + 1));
    std::string word;
    action >> word;
    if (word.empty()) {
        return "nothing follows the colon";
    }
    if (changesNothing(word)) {
        return "\"" + word + "\" changes nothing";
    }
    step.line = parseControlLine((isControlWord(word) ? "" : "fault ") + text.substr(colon + 1));
    if (step.line.error.empty()) {
        m_steps.push_back(std::move(step));
        return {};
    }
    return step.line.error;
}

std::vector<std::string> Scenario::read(std::istream& file, const std::string& name,
                                        std::uint64_t speed)
{
    m_speed = speed;
    std::vector<std::string> errors;
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        const std::string error = addLine(text);
        if (!error.empty()) {
            errors.push_back(name + ":" + std::to_string(number) + ": " + error);
        }
    }
    if (errors.empty() && m_steps.empty()) {
        errors.push_back(name + ": there is no step in it");
    }
    return errors;
}

TimePoint Scenario::nextDue() const
{
    TimePoint next = never;
    for (const Step& step : m_steps) {
        if (step.trigger == Trigger::Time && m_start != never) {
            next = std::min(next, m_start + step.time / static_cast<long>(m_speed));
        }
    }
    return next;
}

std::vector<ControlLine> Scenario::take(const std::function<bool(const Step&)>& isDue)
{
    std::vector<ControlLine> lines;
    std::vector<Step> later;
    for (Step& step : m_steps) {
        if (isDue(step)) {
            lines.push_back(std::move(step.line));
        } else {
            later.push_back(std::move(step));
        }
    }
    m_steps = std::move(later);
    return lines;
}

std::vector<ControlLine> Scenario::dueAt(TimePoint now)
{
    return take([this, now](const Step& step) {
        return step.trigger == Trigger::Time &&
               now >= m_start + step.time / static_cast<long>(m_speed);
    });
}

std::vector<ControlLine> Scenario::dueAtExchange(std::uint64_t number)
{
    return take([number](const Step& step) {
        return step.trigger == Trigger::Exchange && step.number == number;
    });
}

std::vector<ControlLine> Scenario::dueAfterDownload(std::uint64_t number)
{
    return take([number](const Step& step) {
        return step.trigger == Trigger::Download && step.number == number;
    });
}

} // namespace simulator
