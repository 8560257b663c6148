#include "tests/http/SendPlan.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <sys/socket.h>

namespace {

thread_local std::deque<int> planned;

} // namespace

SendPlan::SendPlan(std::deque<int> results)
{
    planned = std::move(results);
}

SendPlan::~SendPlan()
{
    planned.clear();
}

bool SendPlan::used() const
{
    return planned.empty();
}

extern "C" ssize_t send(int descriptor, const void* data, size_t length, int flags)
{
    if (!planned.empty()) {
        const int result = planned.front();
        planned.pop_front();
        if (result < 0) {
            errno = EPIPE;
        }
        if (result < 1) {
            return result;
        }
        length = std::min(length, static_cast<size_t>(result));
    }
    return ::sendto(descriptor, data, length, flags, nullptr, 0);
}
