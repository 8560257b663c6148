#pragma once

#include "simulator/CameraConnection.h"
#include "simulator/Card.h"
#include "simulator/Device.h"
#include "simulator/FaultTable.h"
#include "simulator/Journal.h"
#include "simulator/Options.h"

#include <memory>
#include <string>
#include <vector>

namespace simulator {

/// The whole simulated vehicle: three devices, one card, one thread.
class Simulator
{
public:
    explicit Simulator(Options options);

    /// Opens what the options name and listens. Returns an error text, empty on success.
    std::string start();
    /// Serves until a signal, "quit", or the end of standard input where that counts.
    /// signals: a descriptor that becomes readable when the program shall end.
    void run(int signals);
    /// Carries one control line out and returns the line that answers it.
    std::string control(const std::string& line);

private:
    std::string setFault(const std::string& assignment);
    std::string clearFault(const std::string& name);
    std::string drop(const std::string& name);
    std::string send(const std::string& arguments);
    std::string changeVersions(const std::string& text);
    std::string changeRate(const std::string& text);
    std::string loadCard();
    std::string connectionCounts() const;
    Device* device(const std::string& name);
    void noteControl(const std::string& line);
    void readControlLines();
    void endReboot(TimePoint now);
    int timeout(TimePoint now) const;
    void resetModules();

    Options m_options;
    FaultTable m_faults;
    Journal m_journal;
    Card m_card;
    CameraAnswers m_answers;
    CameraState m_cameraState;
    ModuleSettings m_controlSettings;
    ModuleSettings m_groundSettings;
    Device m_control;
    Device m_ground;
    Device m_camera;
    std::string m_input; ///< an unfinished control line
    /// Answers to control lines; printed when what they say has taken effect.
    std::vector<std::string> m_replies;
    bool m_inputOpen = true;
    bool m_ending = false;
};

} // namespace simulator
