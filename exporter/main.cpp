#include <atomic>
#include <chrono>
#include <csignal>
#include <iostream>
#include <pthread.h>
#include <thread>
#include <unistd.h>

#include "exporter.h"
#include "exporteroptions.h"
#include "metricsserver.h"
#include "version.h"

namespace {

enum ExitCode
{
    ExitStopped = 0,
    ExitCannotListen = 1,
    ExitUsage = 2,
};

const char* const Prefix = "korvane-exporter: ";

} // namespace

int main(int argc, char** argv)
{
    ExporterOptions options;
    std::string error;
    if (!parseExporterOptions(std::vector<std::string>(argv + 1, argv + argc), options, error)) {
        std::cerr << Prefix << error << " (see korvane-exporter --help)" << std::endl;
        return ExitUsage;
    }
    if (options.help) {
        std::cout << exporterHelpText() << std::flush;
        return ExitStopped;
    }
    if (options.version) {
        std::cout << "korvane-exporter " << Version::Text << std::endl;
        return ExitStopped;
    }

    // Blocked before any thread starts, so that every thread inherits the
    // mask and only the waiting thread below takes the signals.
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGINT);
    sigaddset(&endSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    Exporter::Settings settings;
    settings.server = options.server;
    settings.allBatches = options.allBatches;
    settings.serverTimeoutSeconds = options.serverTimeoutSeconds;
    Exporter exporter(settings, std::cerr);
    MetricsServer server(exporter, options.serverAddress());
    if (!server.bind(options.listenHost, options.listenPort, error)) {
        std::cerr << Prefix << error << std::endl;
        return ExitCannotListen;
    }
    const bool bracketed = options.listenHost.find(':') != std::string::npos;
    std::cout << "listening on " << (bracketed ? "[" : "") << options.listenHost << (bracketed ? "]" : "")
              << ":" << server.port() << std::endl;
    // The client library's console lines would repeat with every reading (a
    // line per skipped parameter object); this program logs on standard error.
    std::cout.rdbuf(nullptr);
    std::wcout.rdbuf(nullptr);

    std::atomic<bool> served {false};
    std::thread signalWaiter([&] {
        int signal = 0;
        sigwait(&endSignals, &signal);
        exporter.stop();
        // The server may not have begun to listen yet; stop it until it has ended.
        while (!served) {
            server.stop();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });

    const bool ok = server.run();
    served = true;
    ::kill(::getpid(), SIGTERM); // wakes the waiter if serving ended by itself
    signalWaiter.join();
    std::cerr << Prefix << "stopped" << std::endl;
    return ok ? ExitStopped : ExitCannotListen;
}
