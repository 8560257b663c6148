// The events of --scenario: what happens to the vehicle, and when.
#pragma once

#include "simulator/Clock.h"
#include "simulator/ControlLines.h"

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace simulator {

// One step per line; a line that starts with '#' is a comment.
//   after 10 s: stall=50             this long after the start; also ms and min
//   after download 3: reboot         when the answer to the third request for a recording was sent
//   at exchange 12: clear all        when the twelfth request to the camera has arrived, before its
//                                    answer
// After the colon: a control line that changes something, or a fault without the word "fault".

/// The steps of a scenario, each of which is executed once.
class Scenario
{
public:
    /// Reads a file. Returns an error text for each invalid line ("NAME:3: ..."), or one if the
    /// file has no step. `speed` is the factor by which the scenario's time passes faster.
    std::vector<std::string> read(std::istream& file, const std::string& name, std::uint64_t speed);

    void start(TimePoint now) { m_start = now; }
    /// Returns the time at which the next timed step is due, or `never` if there is none.
    TimePoint nextDue() const;
    // Each of these removes the due steps and returns their control lines in file order.
    std::vector<ControlLine> dueAt(TimePoint now);
    std::vector<ControlLine> dueAtExchange(std::uint64_t number);
    std::vector<ControlLine> dueAfterDownload(std::uint64_t number);
    std::size_t stepsLeft() const { return m_steps.size(); }

private:
    enum class Trigger { Time, Exchange, Download };
    struct Step
    {
        Trigger trigger = Trigger::Time;
        Milliseconds time{};
        std::uint64_t number = 0;
        ControlLine line;
    };
    static std::string parseTrigger(const std::string& text, Step& step);
    std::string addLine(const std::string& text);
    std::vector<ControlLine> take(const std::function<bool(const Step&)>& isDue);

    std::vector<Step> m_steps;
    std::uint64_t m_speed = 1;
    TimePoint m_start = never;
};

} // namespace simulator
