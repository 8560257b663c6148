// Whether this is the private network.
#pragma once

#include <string>

namespace simulator {

/// Empty when the three device addresses are on the loopback interface and no other interface is
/// up; else what is missing and how to get it. The addresses exist on real networks, too: playing
/// a vehicle there would be taken for one.
std::string privateNetworkProblem();

} // namespace simulator
