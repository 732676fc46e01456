#include <csignal>
#include <ctime>
#include <iostream>

#include "simoptions.h"
#include "simserver.h"

namespace {

SimServer* runningServer = nullptr;

void onSignal(int)
{
    if (runningServer)
        runningServer->stop();
}

} // namespace

int main(int argc, char** argv)
{
    SimOptions options;
    options.farm.startTime = static_cast<std::uint32_t>(std::time(nullptr));
    std::string error;
    if (!parseSimOptions(std::vector<std::string>(argv + 1, argv + argc), options, error)) {
        std::cerr << "korvane-sim: " << error << "\n(see korvane-sim --help)" << std::endl;
        return 2;
    }
    if (options.help) {
        std::cout << simHelpText();
        return 0;
    }

    Farm farm(options.farm);
    SimServer server(farm, options.server);
    if (!server.listen(options.address, options.port, error)) {
        std::cerr << "korvane-sim: " << error << std::endl;
        return 1;
    }

    std::signal(SIGPIPE, SIG_IGN);
    runningServer = &server;
    struct sigaction action
    {
    };
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    std::cout << "listening on " << options.address << ":" << server.port() << std::endl;
    if (!server.loopbackOnly())
        std::cerr << "korvane-sim: warning: " << options.address << ":" << server.port()
                  << " can be reached from other machines, and the control port has no "
                     "authentication: anyone who reaches it can control the farm"
                  << std::endl;
    std::cerr << "korvane-sim: " << options.farm.batches << " batches, " << options.farm.nodes
              << " nodes, seed " << options.farm.seed << ", speed " << options.server.speed << std::endl;
    server.run();
    runningServer = nullptr;
    std::cerr << "korvane-sim: stopped" << std::endl;
    return 0;
}
