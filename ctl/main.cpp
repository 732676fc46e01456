#include <atomic>
#include <csignal>
#include <iostream>
#include <unistd.h>

#include <QCoreApplication>

#include "ctlrunner.h"
#include "taskdisplaynames.h"

namespace {

std::atomic<bool> interrupted {false};

void onInterrupt(int)
{
    interrupted = true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    initTaskDisplayNames();

    // Our own stream on standard output: std::cout itself is silenced while
    // the client runs.
    std::ostream out(std::cout.rdbuf());
    CtlRunner runner(out, std::cerr);
    runner.setClearScreen(::isatty(STDOUT_FILENO) == 1);
    runner.setStopFlag(&interrupted);

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
