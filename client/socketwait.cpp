#include "socketwait.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>

#include "interruptevent.h"

WaitResult waitForDescriptor(int fd, short events, const Deadline& deadline, const InterruptEvent& interrupt)
{
    for (;;) {
        if (interrupt.isRaised())
            return WaitResult::Interrupted;
        int timeoutMs = -1;
        if (deadline) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - SteadyClock::now());
            if (left.count() <= 0)
                return WaitResult::TimedOut;
            timeoutMs = static_cast<int>(std::min<long long>(left.count(), 1 << 30));
        }
        pollfd descriptors[2] = {{fd, events, 0}, {interrupt.descriptor(), POLLIN, 0}};
        const int ready = ::poll(descriptors, 2, timeoutMs);
        if (ready < 0 && errno != EINTR)
            return WaitResult::Ready;
        if (ready > 0 && descriptors[0].revents != 0)
            return WaitResult::Ready;
        // Otherwise: the interruption, a signal or the end of the time;
        // the top of the loop tells which.
    }
}
