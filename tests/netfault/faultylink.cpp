#include "faultylink.h"

#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

FaultyLink::FaultyLink()
{
    // Names and subnet from the process id and a count, so that tests
    // running side by side, and one after the other, each have their own.
    static int made = 0;
    const int count = made++;
    const int id = static_cast<int>(::getpid() % 10000) * 10 + count % 10;
    const int octet = static_cast<int>((::getpid() + count) % 250) + 1;
    char mac[32];
    m_namespace = "kvfault" + std::to_string(id);
    m_nearDevice = "kvn" + std::to_string(id);
    m_farDevice = "kvf" + std::to_string(id);
    m_subnet = "10.213." + std::to_string(octet) + ".0/24";
    m_nearAddress = "10.213." + std::to_string(octet) + ".1";
    m_serverAddress = "10.213." + std::to_string(octet) + ".2";
    std::snprintf(mac, sizeof mac, "02:6b:76:%02x:%02x:01", (id >> 8) & 0xff, id & 0xff);
    m_nearMac = mac;
    std::snprintf(mac, sizeof mac, "02:6b:76:%02x:%02x:02", (id >> 8) & 0xff, id & 0xff);
    m_farMac = mac;

    if (::geteuid() != 0) {
        m_error = "making a network namespace needs root";
        return;
    }
    // Left over from a test of the same process id that was killed.
    std::system(("ip netns del " + m_namespace + " 2>/dev/null").c_str());
    std::system(("ip route del blackhole " + m_subnet + " 2>/dev/null").c_str());
    std::system(("ip link del " + m_nearDevice + " 2>/dev/null").c_str());

    m_routeAdded = run("ip route add blackhole " + m_subnet);
    m_ready = m_routeAdded && run("ip netns add " + m_namespace)
        && run("ip link add " + m_nearDevice + " address " + m_nearMac + " type veth peer name " + m_farDevice
            + " address " + m_farMac + " netns " + m_namespace)
        && run("ip addr add " + m_nearAddress + "/30 dev " + m_nearDevice)
        && run("ip link set " + m_nearDevice + " up")
        && run("ip -n " + m_namespace + " addr add " + m_serverAddress + "/30 dev " + m_farDevice)
        && run("ip -n " + m_namespace + " link set " + m_farDevice + " up")
        && run("ip -n " + m_namespace + " link set lo up");
    if (m_ready)
        setNeighbours();
}

FaultyLink::~FaultyLink()
{
    std::system(("ss -K dst " + m_subnet + " >/dev/null 2>&1").c_str());
    std::system(("ip netns del " + m_namespace + " 2>/dev/null").c_str());
    std::system(("ip link del " + m_nearDevice + " 2>/dev/null").c_str());
    if (m_routeAdded) {
        // Only once no socket to the subnet is left.
        std::system(("ss -K dst " + m_subnet + " >/dev/null 2>&1").c_str());
        std::system(("ip route del blackhole " + m_subnet + " 2>/dev/null").c_str());
    }
}

void FaultyLink::partition()
{
    run("ip -n " + m_namespace + " link set " + m_farDevice + " down");
}

void FaultyLink::heal()
{
    run("ip -n " + m_namespace + " link set " + m_farDevice + " up");
    // Taking a device down drops its neighbours, static ones too.
    setNeighbours();
}

void FaultyLink::slowDown(int kilobitsPerSecond)
{
    run("ip netns exec " + m_namespace + " tc qdisc replace dev " + m_farDevice + " root tbf rate "
        + std::to_string(kilobitsPerSecond) + "kbit burst 4kb latency 2s");
}

void FaultyLink::setNeighbours()
{
    run("ip neigh replace " + m_serverAddress + " lladdr " + m_farMac + " dev " + m_nearDevice
        + " nud permanent");
    run("ip -n " + m_namespace + " neigh replace " + m_nearAddress + " lladdr " + m_nearMac + " dev "
        + m_farDevice + " nud permanent");
}

bool FaultyLink::run(const std::string& command)
{
    const int status = std::system((command + " 2>&1").c_str());
    if (status == 0)
        return true;
    if (m_error.empty())
        m_error = "\"" + command + "\" failed (status " + std::to_string(status) + ")";
    return false;
}
