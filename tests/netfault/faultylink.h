#pragma once

#include <string>

// A server's host made for one test: a network namespace joined to this one
// by a veth pair, with static neighbour entries on both ends. Taking the
// far end down is then a silent partition: packets to it vanish without an
// answer, as on a real network whose cable was pulled, instead of failing
// at once. A token bucket on the far end makes a slow link.
//
// The subnet of the pair also gets a blackhole route here, so that while
// the link is down nothing for it leaves the machine by another way. The
// destructor kills the sockets to the subnet, removes the namespace (and
// with it the pair) and then the route, also after a failed test.
class FaultyLink final
{
public:
    FaultyLink();
    ~FaultyLink();
    FaultyLink(const FaultyLink&) = delete;
    FaultyLink& operator=(const FaultyLink&) = delete;
    FaultyLink(FaultyLink&&) = delete;
    FaultyLink& operator=(FaultyLink&&) = delete;

    // False, with the reason in error(), when the host could not be made
    // (not root, no network namespaces).
    bool ready() const { return m_ready; }
    const std::string& error() const { return m_error; }

    // Address of the far end, inside the namespace.
    const std::string& serverAddress() const { return m_serverAddress; }
    const std::string& namespaceName() const { return m_namespace; }

    void partition();
    void heal();
    // Limits what the server sends to this many kilobits per second.
    void slowDown(int kilobitsPerSecond);

private:
    bool run(const std::string& command);
    void setNeighbours();

    std::string m_namespace;
    std::string m_nearDevice;
    std::string m_farDevice;
    std::string m_subnet;
    std::string m_nearAddress;
    std::string m_serverAddress;
    std::string m_nearMac;
    std::string m_farMac;
    bool m_routeAdded = false;
    bool m_ready = false;
    std::string m_error;
};
