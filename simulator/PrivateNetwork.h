// Checks that the program runs in a private network.
#pragma once

#include <string>

namespace simulator {

/// Returns an empty text if the three device addresses are on the loopback interface and no other
/// interface is up, otherwise a text that says what is wrong and how to start the simulator
/// correctly. The addresses exist on real networks, where the simulator would be mistaken for a
/// vehicle.
std::string privateNetworkProblem();

} // namespace simulator
