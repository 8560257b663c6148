// One call into the system that fails, in a program linked for it: CMakeLists.txt has the linker
// send the calls below that stand in our own objects here first. Qt's own calls are not touched.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace calls {

/// The calls that can fail, in the order of their counts.
constexpr std::array<const char*, 10> names = {
    "socket", "bind", "connect", "send", "recv", "read", "write", "open", "mkdir", "getsockname"};

/// From now on the `number`-th call of that name, counted from 1, fails with `error`. Each of its
/// errors has a kind of descriptor that it can come from; on another one the call is left alone.
/// False when there is no such call, or no such error known.
bool failFromNowOn(const std::string& name, int number, const std::string& error);

/// Whether that call has come and failed.
bool hasFailed();

/// How often each call was made so far.
std::array<int, names.size()> counts();

/// The paths that open or mkdir were given so far.
std::vector<std::string> paths();

} // namespace calls
