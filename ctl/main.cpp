#include <atomic>
#include <csignal>
#include <iostream>
#include <unistd.h>

#include <QCoreApplication>

#include "clientconsole.h"
#include "ctlrunner.h"
#include "taskdisplaynames.h"

namespace {

std::atomic<bool> interrupted {false};
CtlRunner* runnerToInterrupt = nullptr;

void onInterrupt(int)
{
    interrupted = true;
    if (runnerToInterrupt)
        runnerToInterrupt->interrupt();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    initTaskDisplayNames();

    // Standard output is korvane-ctl's own: the client's console lines
    // (connects, disconnects) are not part of it.
    ClientConsole::discard();
    // Outlives main(): the signal handler may reach the runner until the very end.
    static CtlRunner runner(std::cout, std::cerr);
    runner.setClearScreen(::isatty(STDOUT_FILENO) == 1);
    runner.setStopFlag(&interrupted);
    runnerToInterrupt = &runner;

    std::signal(SIGPIPE, SIG_IGN);
    struct sigaction action
    {
    };
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    return runner.run(std::vector<std::string>(argv + 1, argv + argc));
}
