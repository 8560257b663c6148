// Fault injection: in a program linked with the options in CMakeLists.txt, the linker redirects the
// calls below to this code if our own objects make them. Qt's own calls are not affected.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace calls {

/// The calls that can fail, in the order of the numbers that counts() returns.
constexpr std::array<const char*, 10> names = {
    "socket", "bind", "connect", "send", "recv", "read", "write", "open", "mkdir", "getsockname"};

/// Makes the `number`-th call of that name, counted from 1, fail with `error`. Some errors come
/// only from sockets or only from files: a call on the other kind of descriptor does not fail.
/// Returns false for an unknown call or error.
bool failFromNowOn(const std::string& name, int number, const std::string& error);

/// Returns whether the call chosen with failFromNowOn() has been made and has failed.
bool hasFailed();

/// Returns how often each call has been made so far.
std::array<int, names.size()> counts();

/// Returns the paths passed to open or mkdir so far.
std::vector<std::string> paths();

} // namespace calls
