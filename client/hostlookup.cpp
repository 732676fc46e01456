#include "hostlookup.h"

#include <cstdint>
#include <mutex>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "interruptevent.h"

// What the looking-up thread and the waiting one share; the last of the two
// to let go frees it.
struct HostLookup::Shared
{
    Shared()
        : doneEvent(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
    }
    ~Shared()
    {
        if (addresses)
            ::freeaddrinfo(addresses);
        if (doneEvent != -1)
            ::close(doneEvent);
    }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    int doneEvent;
    std::mutex mutex;
    bool done = false;
    int code = 0;
    addrinfo* addresses = nullptr;
};

HostLookup::~HostLookup()
{
    if (m_addresses)
        ::freeaddrinfo(m_addresses);
}

HostLookup::Result HostLookup::run(const std::string& host, const std::string& service,
    const Deadline& deadline, const InterruptEvent& interrupt)
{
    if (m_addresses)
        ::freeaddrinfo(m_addresses);
    m_addresses = nullptr;
    m_errorCode = 0;

    if (interrupt.isRaised())
        return Interrupted;
    auto shared = std::make_shared<Shared>();
    if (shared->doneEvent == -1) {
        m_errorCode = EAI_SYSTEM;
        return Failed;
    }
    try {
        std::thread([shared, host, service] {
            addrinfo hints {};
            hints.ai_family = AF_UNSPEC;
            hints.ai_socktype = SOCK_STREAM;
            hints.ai_protocol = IPPROTO_TCP;
            addrinfo* found = nullptr;
            const int code = ::getaddrinfo(host.c_str(), service.c_str(), &hints, &found);
            std::lock_guard<std::mutex> lock(shared->mutex);
            shared->code = code;
            shared->addresses = found;
            shared->done = true;
            const std::uint64_t one = 1;
            [[maybe_unused]] const ssize_t written = ::write(shared->doneEvent, &one, sizeof one);
        }).detach();
    } catch (const std::system_error&) {
        m_errorCode = EAI_SYSTEM;
        return Failed;
    }

    const WaitResult waited = waitForDescriptor(shared->doneEvent, POLLIN, deadline, interrupt);
    std::lock_guard<std::mutex> lock(shared->mutex);
    if (!shared->done)
        return waited == WaitResult::Interrupted ? Interrupted : TimedOut;
    if (shared->code != 0) {
        m_errorCode = shared->code;
        return Failed;
    }
    m_addresses = shared->addresses;
    shared->addresses = nullptr;
    return Found;
}
