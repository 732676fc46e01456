// The web monitor under many browsers: its reading of the farm passes a
// counting proxy, and its event streams, memory, CPU and actions are timed.
// Started by run.sh: prints the proxy's address, reads "PORT PID" of the web
// monitor on stdin, then prints one table of figures and targets.
//   web_load --sim-port 40000 [--readings 60] [--streams 500] [--actions 20]
// Exits non-zero only when it could not set up a phase.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <unistd.h>

#include "figuretable.h"
#include "lineproxy.h"
#include "sseevent.h"
#include "webbench.h"

namespace {

struct Options
{
    int simPort = 0;
    WebBench::Settings bench;
};

bool parse(int argc, char** argv, Options& options)
{
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        const unsigned long value = std::strtoul(argv[i + 1], nullptr, 10);
        if (name == "--sim-port")
            options.simPort = static_cast<int>(value);
        else if (name == "--readings")
            options.bench.readings = value;
        else if (name == "--streams")
            options.bench.streams = value;
        else if (name == "--actions")
            options.bench.actions = value;
        else
            return false;
    }
    return argc % 2 == 1 && options.simPort > 0 && options.bench.readings > 0 && options.bench.streams > 0;
}

// "PORT PID" from run.sh once the web monitor listens.
bool readWebMonitor(WebBench::Settings& settings, int timeoutMs)
{
    std::string line;
    const std::int64_t deadline = SseEvent::monotonicNanoseconds() + std::int64_t {timeoutMs} * 1000000;
    while (line.find('\n') == std::string::npos) {
        const std::int64_t left = (deadline - SseEvent::monotonicNanoseconds()) / 1000000;
        pollfd input {STDIN_FILENO, POLLIN, 0};
        if (left <= 0 || ::poll(&input, 1, static_cast<int>(left)) <= 0)
            return false;
        char block[128];
        const ssize_t got = ::read(STDIN_FILENO, block, sizeof block);
        if (got <= 0)
            return false;
        line.append(block, static_cast<std::size_t>(got));
    }
    return std::sscanf(line.c_str(), "%d %d", &settings.webPort, &settings.webPid) == 2
        && settings.webPort > 0 && settings.webPid > 0;
}

// Until the proxy has seen two whole readings.
bool waitForReadings(const LineProxy& proxy, int timeoutMs)
{
    const std::int64_t deadline = SseEvent::monotonicNanoseconds() + std::int64_t {timeoutMs} * 1000000;
    while (SseEvent::monotonicNanoseconds() < deadline) {
        int answered = 0;
        for (const LineProxy::Exchange& exchange : proxy.exchanges())
            answered += exchange.method == "listNodes" && exchange.answered > 0;
        if (answered >= 2)
            return true;
        usleep(50000);
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!parse(argc, argv, options)) {
        std::fprintf(stderr, "usage: web_load --sim-port PORT [--readings N] [--streams N] [--actions N]\n");
        return 2;
    }
    std::signal(SIGPIPE, SIG_IGN);
    LineProxy proxy(options.simPort);
    std::string error;
    if (!proxy.start(error)) {
        std::fprintf(stderr, "web_load: %s\n", error.c_str());
        return 1;
    }
    std::printf("proxy listening on 127.0.0.1:%d\n", proxy.port());
    std::fflush(stdout);
    if (!readWebMonitor(options.bench, 60000)) {
        std::fprintf(stderr, "web_load: no \"PORT PID\" of the web monitor on stdin\n");
        return 1;
    }
    if (!waitForReadings(proxy, 30000)) {
        std::fprintf(stderr, "web_load: the web monitor did not read the farm through the proxy\n");
        return 1;
    }
    FigureTable table;
    WebBench bench(options.bench, proxy, table);
    const bool done = bench.run(error);
    table.print(stdout);
    if (!done) {
        std::fprintf(stderr, "web_load: %s\n", error.c_str());
        return 1;
    }
    return 0;
}
