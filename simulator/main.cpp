#include "simulator/ControlSocket.h"
#include "simulator/FaultListing.h"
#include "simulator/FaultTable.h"
#include "simulator/FileDescriptor.h"
#include "simulator/Options.h"
#include "simulator/PrivateNetwork.h"
#include "simulator/SampleCard.h"
#include "simulator/Simulator.h"
#include "simulator/Text.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

constexpr int cannotRun = 1;
constexpr int wrongArguments = 2;
constexpr int noPrivateNetwork = 3;

int failed(int status, const std::string& error)
{
    std::fprintf(stderr, "belun-simulator: %s\n", error.c_str());
    return status;
}

/// Opens the null device as this descriptor if it is closed; otherwise a socket or file of ours
/// could become a standard stream. All lower descriptors must be open.
void openIfClosed(int descriptor, int mode)
{
    if (::fcntl(descriptor, F_GETFD) == -1) {
        static_cast<void>(::open("/dev/null", mode));
    }
}

/// Returns a descriptor for the signals that end the program.
simulator::FileDescriptor endingSignals()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        ::sigaddset(&signals, signal);
    }
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    ::signal(SIGPIPE, SIG_IGN);
    // In the background, reading from the terminal then fails instead of stopping the program.
    ::signal(SIGTTIN, SIG_IGN);
    return simulator::FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC));
}

/// Reads the scenario, if there is one. Returns 0, or prints what is wrong with the file and
/// returns the exit status.
int readScenario(const simulator::Options& options, simulator::Scenario& scenario)
{
    if (options.scenario.empty()) {
        return 0;
    }
    std::ifstream file(options.scenario);
    if (!file) {
        return failed(cannotRun, options.scenario + ": " + std::strerror(errno));
    }
    const auto errors = scenario.read(file, options.scenario, options.speed);
    for (const std::string& error : errors) {
        failed(wrongArguments, error);
    }
    return errors.empty() ? 0 : wrongArguments;
}

/// Prints how much of the recorded run is missing from the file, if anything is.
void printFilled(const std::string& path, const simulator::RecordedRun& run)
{
    if (run.filledBytes > 0) {
        std::fprintf(stderr,
                     "belun-simulator: %s: %llu bytes in %llu runs are not in the file, and are "
                     "replaced by zeros\n",
                     path.c_str(), static_cast<unsigned long long>(run.filledBytes),
                     static_cast<unsigned long long>(run.filledRuns));
    }
}

int run(const simulator::Options& options, simulator::Scenario scenario)
{
    const std::string problem = simulator::privateNetworkProblem();
    if (!problem.empty()) {
        return failed(noPrivateNetwork, problem);
    }
    const simulator::FileDescriptor signals = endingSignals();
    std::optional<simulator::RecordedRun> replay;
    if (!options.replay.empty()) {
        replay.emplace();
        const std::string problemInFile = simulator::readRecordedRun(options.replay, *replay);
        if (!problemInFile.empty()) {
            return failed(cannotRun, problemInFile);
        }
        printFilled(options.replay, *replay);
    }
    simulator::Simulator vehicle(options, std::move(scenario), std::move(replay));
    const std::string error = vehicle.start();
    if (!error.empty()) {
        return failed(cannotRun, error);
    }
    simulator::printLine("belun-simulator ready");
    const std::string failure = vehicle.run(signals.get());
    return failure.empty() ? 0 : failed(cannotRun, options.replay + ": " + failure);
}

int send(const simulator::Options& options)
{
    bool allFine = false;
    const std::string error =
        simulator::sendControlLines(options.controlSocket, options.lines, allFine);
    if (!error.empty()) {
        return failed(cannotRun, error);
    }
    return allFine ? 0 : cannotRun;
}

} // namespace

int main(int argc, char* argv[])
{
    openIfClosed(STDIN_FILENO, O_RDONLY);
    openIfClosed(STDOUT_FILENO, O_WRONLY);
    openIfClosed(STDERR_FILENO, O_WRONLY);
    simulator::Options options;
    const std::string error =
        simulator::parseOptions(std::vector<std::string>(argv + 1, argv + argc), options);
    if (!error.empty()) {
        return failed(wrongArguments, error + " (--help shows what there is)");
    }
    simulator::Scenario scenario;
    if (const int status = readScenario(options, scenario); status != 0) {
        return status;
    }
    for (const std::string& fault : options.faults) {
        const std::string problem = simulator::FaultTable().set(fault, simulator::Clock::now());
        if (!problem.empty()) {
            return failed(wrongArguments, problem);
        }
    }
    switch (options.action) {
    case simulator::Options::Action::Help:
        std::fputs(simulator::help(options.form).c_str(), stdout);
        return 0;
    case simulator::Options::Action::Version:
        std::puts("belun-simulator " BELUN_VERSION);
        return 0;
    case simulator::Options::Action::ListFaults:
        std::fputs(simulator::faultList(options.form).c_str(), stdout);
        return 0;
    case simulator::Options::Action::Send:
        return send(options);
    case simulator::Options::Action::WriteSample:
    case simulator::Options::Action::Run:
        break;
    }
    if (!options.sampleFolder.empty()) {
        const std::string problem = simulator::writeCard(
            simulator::sampleCard(options.sample, options.seed), options.sampleFolder);
        if (!problem.empty()) {
            return failed(cannotRun, problem);
        }
    }
    return options.action == simulator::Options::Action::WriteSample
               ? 0
               : run(options, std::move(scenario));
}
