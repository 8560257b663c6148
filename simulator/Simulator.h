// The three devices, their card and the loop that serves them.
#pragma once

#include "simulator/CameraConnection.h"
#include "simulator/Card.h"
#include "simulator/ControlLines.h"
#include "simulator/ControlSocket.h"
#include "simulator/Device.h"
#include "simulator/FaultTable.h"
#include "simulator/Journal.h"
#include "simulator/LineReader.h"
#include "simulator/Options.h"
#include "simulator/Replay.h"
#include "simulator/Scenario.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// The simulated vehicle: three devices, one card, one thread.
class Simulator
{
public:
    Simulator(Options options, Scenario scenario, std::optional<RecordedRun> replay);

    /// Opens the files given by the options and listens. Returns an error text, empty on success.
    std::string start();
    /// Serves until a signal, "quit", or the end of standard input if requested. signals: a
    /// descriptor that becomes readable when the program must end. Returns an error text if a
    /// replay could not continue, empty otherwise.
    std::string run(int signals);
    /// Executes one control line and returns the lines that answer it: none for an empty line,
    /// otherwise any number of lines that start with two spaces, then one line that starts with
    /// "ok" or "error".
    std::vector<std::string> control(const std::string& text);
    /// Executes a control line that has already been parsed, and returns the lines that answer it.
    std::vector<std::string> carryOut(const ControlLine& line);

    // The effects of control lines; functions that return a text return an error text, empty on
    // success.
    std::string setFault(const std::string& assignment);
    std::string clearFault(const std::string& name);
    void drop(const std::string& name);
    void send(const std::string& module, const std::string& bytes);
    void changeVersions(const Versions& versions);
    void changeRate(std::uint64_t rate) { m_cameraState.rate = rate; }
    ControlAnswer reload();
    ControlAnswer quit();
    ControlAnswer showConnections();
    ControlAnswer showFaults();
    ControlAnswer showCard();
    ControlAnswer showStatus();

private:
    std::string loadCard();
    /// Returns a device by its name: "control", "ground" or "camera".
    Device& device(const std::string& name);
    void noteControl(const std::string& line);
    void readStandardInput();
    void endReboot(TimePoint now);
    int timeout(TimePoint now) const;
    void resetModules();
    /// Executes the given steps of the scenario and prints the answer to each.
    void play(const std::vector<ControlLine>& steps);

    Options m_options;
    Scenario m_scenario;
    FaultTable m_faults;
    Journal m_journal;
    std::optional<Replay> m_replay;
    Card m_card;
    CameraAnswers m_answers;
    CameraState m_cameraState;
    std::uint64_t m_downloads = 0;
    ModuleSettings m_controlSettings;
    ModuleSettings m_groundSettings;
    Device m_control;
    Device m_ground;
    Device m_camera;
    TimePoint m_started = never;
    ControlSocket m_controlSocket;
    LineReader m_input;
    /// Answers to control lines on standard input, which are printed once these lines have taken
    /// effect.
    std::vector<std::string> m_replies;
    bool m_inputOpen = true;
    bool m_ending = false;
};

} // namespace simulator
