// Takes the place of CaptureReader.cpp in a build without libpcap.
#include "simulator/RecordedRun.h"

namespace simulator {

std::string readCapture(const std::string& path, std::vector<ObservedEvent>&, RecordedRun&)
{
    return path + ": this build reads no packet captures, since libpcap was missing";
}

} // namespace simulator
