#pragma once

#include <string>
#include <vector>

#include "childprocess.h"

// korvane-sim of this build as a process of its own, for the life of the
// object. It listens on a free port of 127.0.0.1 unless the options name a
// --listen of their own; a launcher ("ip netns exec NAME") runs it through
// another program.
class SimProcess final
{
public:
    explicit SimProcess(
        const std::vector<std::string>& options = {}, const std::vector<std::string>& launcher = {});
    ~SimProcess();
    SimProcess(const SimProcess&) = delete;
    SimProcess& operator=(const SimProcess&) = delete;

    // The line it starts with, "listening on ADDR:PORT", and what it names:
    // empty and 0 when the line did not come.
    const std::string& firstLine() const { return m_firstLine; }
    const std::string& address() const { return m_address; }
    int port() const { return m_port; }

    // Ends it with SIGTERM; its exit code.
    int stop();
    ChildProcess& process() { return m_process; }

private:
    ChildProcess m_process;
    std::string m_firstLine;
    std::string m_address;
    int m_port = 0;
};
