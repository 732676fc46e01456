#include <csignal>
#include <iostream>
#include <pthread.h>
#include <thread>
#include <unistd.h>

#include "access.h"
#include "auditlog.h"
#include "clientconsole.h"
#include "farmwatch.h"
#include "logfilter.h"
#include "streamhub.h"
#include "tlscontext.h"
#include "version.h"
#include "webapi.h"
#include "webassets.h"
#include "webconfig.h"
#include "webmetrics.h"
#include "weboptions.h"
#include "webserver.h"

namespace {

enum ExitCode
{
    ExitStopped = 0,
    ExitCannotListen = 1,
    ExitUsage = 2,
};

const char* const Prefix = "korvane-web: ";

} // namespace

int main(int argc, char** argv)
{
    WebOptions options;
    std::string error;
    if (!parseWebOptions(std::vector<std::string>(argv + 1, argv + argc), options, error)) {
        std::cerr << Prefix << error << " (see korvane-web --help)" << std::endl;
        return ExitUsage;
    }
    if (options.help) {
        std::cout << webHelpText() << std::flush;
        return ExitStopped;
    }
    if (options.version) {
        std::cout << "korvane-web " << Version::Text << std::endl;
        return ExitStopped;
    }

    WebServer::Settings http;
    http.maxRequests = options.maxRequests;
    http.webConfigFile = options.webConfigFile;
    if (!options.webConfigFile.empty() && !loadWebConfig(options.webConfigFile, http.web, error)) {
        std::cerr << Prefix << error << std::endl;
        return ExitUsage;
    }
    if (http.web.users.empty()) {
        for (const ListenAddress& address : options.listen) {
            if (!isLoopbackHost(address.host)) {
                std::cerr << Prefix << address.text(address.port)
                          << " is not a loopback address, and without basic_auth_users anyone who reaches it "
                             "could act on the farm: add basic_auth_users (and tls_server_config) to a file "
                             "given by --web.config.file, or listen on 127.0.0.1"
                          << std::endl;
                return ExitUsage;
            }
        }
        if (!options.operators.empty()) {
            std::cerr << Prefix << "--web.operators names users, but the web configuration has no "
                      << "basic_auth_users to sign them in" << std::endl;
            return ExitUsage;
        }
    }

    // Blocked before any thread starts, so that every thread inherits the
    // mask and only the waiting thread below takes the signals.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    LogFilter filter(std::cerr.rdbuf(), options.logLevel);
    std::ostream log(&filter);
    AuditLog audit(options.auditFile, log);
    if (!audit.open(error)) {
        std::cerr << Prefix << error << std::endl;
        return ExitUsage;
    }

    FarmWatch::Settings reading;
    reading.server = options.server;
    reading.interval = options.interval;
    reading.timeout = options.serverTimeout;
    StreamHub::Limits limits;
    limits.maxStreams = static_cast<std::size_t>(options.maxStreams);
    limits.maxQueuedBytes = static_cast<std::size_t>(options.streamBuffer);
    StreamHub hub(limits, FarmWatch::initialState());
    FarmWatch watch(reading, hub, log);

    Access access(http.web.users, options.operators);
    WebMetrics metrics(hub, watch);
    std::optional<WebAssets> assets = WebAssets::embedded();
    if (!options.assetsDir.empty()) {
        assets = WebAssets::fromDirectory(options.assetsDir, error);
        if (!assets) {
            std::cerr << Prefix << error << std::endl;
            return ExitUsage;
        }
    }
    WebApi api(hub, watch, access, audit, metrics, *assets);
    WebServer server(api, hub, http);
    if (!server.setUp(error)) {
        std::cerr << Prefix << error << std::endl;
        return ExitUsage;
    }
    for (const ListenAddress& address : options.listen) {
        if (!server.bind(address.host, address.port, error)) {
            std::cerr << Prefix << error << std::endl;
            return ExitCannotListen;
        }
    }
    for (std::size_t i = 0; i < options.listen.size(); ++i)
        std::cout << "listening on " << options.listen[i].text(server.port(i)) << std::endl;
    // The client library's console lines would repeat with every reading;
    // this program logs on standard error.
    ClientConsole::discard();

    std::thread reader([&] { watch.run(); });
    std::thread signalWaiter([&] {
        for (;;) {
            int signal = 0;
            sigwait(&signals, &signal);
            if (signal == SIGHUP) {
                audit.reopen();
                continue;
            }
            break;
        }
        watch.stop();
        hub.shutDown();
        server.stop();
    });

    server.run();
    ::kill(::getpid(), SIGTERM); // wakes the waiter if serving ended by itself
    signalWaiter.join();
    reader.join();
    log << Prefix << "stopped" << std::endl;
    return ExitStopped;
}
