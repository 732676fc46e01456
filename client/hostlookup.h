#pragma once

#include <memory>
#include <string>

#include "socketwait.h"

struct addrinfo;

// getaddrinfo() on a thread of its own, so that the wait for it can end at a
// deadline or an interruption. A lookup given up on finishes by itself and
// frees what it found.
class HostLookup final
{
public:
    enum Result
    {
        Found,
        Failed,
        TimedOut,
        Interrupted,
    };

    HostLookup() = default;
    ~HostLookup();
    HostLookup(const HostLookup&) = delete;
    HostLookup& operator=(const HostLookup&) = delete;
    HostLookup(HostLookup&&) = delete;
    HostLookup& operator=(HostLookup&&) = delete;

    // Looks host and service up as SOCK_STREAM over TCP, any family.
    Result run(const std::string& host, const std::string& service, const Deadline& deadline,
        const InterruptEvent& interrupt);

    // After Found: the list, owned by this object.
    const addrinfo* addresses() const { return m_addresses; }
    // After Failed: getaddrinfo's code.
    int errorCode() const { return m_errorCode; }

private:
    struct Shared;

    addrinfo* m_addresses = nullptr;
    int m_errorCode = 0;
};
