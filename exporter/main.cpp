#include <atomic>
#include <chrono>
#include <csignal>
#include <iostream>
#include <pthread.h>
#include <thread>
#include <unistd.h>

#include "clientconsole.h"
#include "exporter.h"
#include "exporteroptions.h"
#include "logfilter.h"
#include "metricsserver.h"
#include "tlscontext.h"
#include "version.h"
#include "webconfig.h"

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

    MetricsServer::Settings http;
    http.telemetryPath = options.telemetryPath;
    http.maxRequests = options.maxRequests;
    http.webConfigFile = options.webConfigFile;
    if (!options.webConfigFile.empty() && !loadWebConfig(options.webConfigFile, http.web, error)) {
        std::cerr << Prefix << error << std::endl;
        return ExitUsage;
    }

    // Blocked before any thread starts, so that every thread inherits the
    // mask and only the waiting thread below takes the signals.
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGINT);
    sigaddset(&endSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    LogFilter filter(std::cerr.rdbuf(), options.logLevel);
    std::ostream log(&filter);
    Exporter::Settings settings;
    settings.server = options.server;
    settings.collectBatches = options.collectBatches;
    settings.serverTimeoutSeconds = options.serverTimeoutSeconds;
    Exporter exporter(settings, log);
    MetricsServer server(exporter, options.serverAddress(), http);
    for (const ListenAddress& address : options.listen) {
        if (!server.bind(address.host, address.port, error)) {
            std::cerr << Prefix << error << std::endl;
            return ExitCannotListen;
        }
    }
    for (std::size_t i = 0; i < options.listen.size(); ++i)
        std::cout << "listening on " << options.listen[i].text(server.port(i)) << std::endl;
    // The client library's console lines would repeat with every reading (a
    // line per skipped parameter object); this program logs on standard error.
    ClientConsole::discard();

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
    log << Prefix << "stopped" << std::endl;
    return ok ? ExitStopped : ExitCannotListen;
}
