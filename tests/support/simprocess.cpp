#include "simprocess.h"

#include <algorithm>
#include <csignal>

#include "testpaths.h"

namespace {

// Either korvane-sim or the launcher that runs it, and the arguments after.
std::string program(const std::vector<std::string>& launcher)
{
    return launcher.empty() ? KORVANE_SIM_PROGRAM : launcher.front();
}

std::vector<std::string> arguments(
    const std::vector<std::string>& options, const std::vector<std::string>& launcher)
{
    std::vector<std::string> arguments;
    if (!launcher.empty()) {
        arguments.assign(launcher.begin() + 1, launcher.end());
        arguments.push_back(KORVANE_SIM_PROGRAM);
    }
    if (std::find(options.begin(), options.end(), "--listen") == options.end())
        arguments.insert(arguments.end(), {"--listen", "127.0.0.1:0"});
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
}

} // namespace

SimProcess::SimProcess(const std::vector<std::string>& options, const std::vector<std::string>& launcher)
    : m_process(program(launcher), arguments(options, launcher))
    , m_firstLine(m_process.readLine())
    , m_address(listeningAddress(m_firstLine))
{
    const std::size_t colon = m_address.rfind(':');
    if (colon != std::string::npos)
        m_port = std::stoi(m_address.substr(colon + 1));
}

SimProcess::~SimProcess()
{
    stop();
}

int SimProcess::stop()
{
    m_process.signal(SIGTERM);
    return m_process.wait();
}
