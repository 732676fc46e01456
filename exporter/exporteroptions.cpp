#include "exporteroptions.h"

#include <cstdlib>

#include "commandlineoption.h"

namespace {

bool parsePort(const std::string& text, int& port)
{
    if (text.empty() || text.size() > 5 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    port = std::atoi(text.c_str());
    return port <= 65535;
}

bool parseSeconds(const std::string& text, int& seconds)
{
    if (text.empty() || text.size() > 4 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    seconds = std::atoi(text.c_str());
    return seconds > 0;
}

// HOST:PORT, with an IPv6 host in brackets ([::1]:10084).
bool parseListen(const std::string& text, std::string& host, int& port)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0)
        return false;
    std::string name = text.substr(0, colon);
    if (name.front() == '[') {
        if (name.size() < 3 || name.back() != ']')
            return false;
        name = name.substr(1, name.size() - 2);
    } else if (name.find(':') != std::string::npos) {
        return false;
    }
    if (!parsePort(text.substr(colon + 1), port))
        return false;
    host = name;
    return true;
}

bool parseServer(const std::string& text)
{
    const std::size_t colon = text.find(':');
    int port = 0;
    return !text.empty() && colon != 0
        && (colon == std::string::npos || (parsePort(text.substr(colon + 1), port) && port > 0));
}

} // namespace

std::string ExporterOptions::serverAddress() const
{
    if (server.find(':') == std::string::npos)
        return server + ":5840";
    return server;
}

bool parseExporterOptions(const std::vector<std::string>& args, ExporterOptions& options, std::string& error)
{
    for (std::size_t i = 0; i < args.size(); ++i) {
        CommandLineOption option = splitCommandLineOption(args[i]);
        const std::string& name = option.name;
        if ((name == "--help" || name == "-h") && !option.hasValue) {
            options.help = true;
            return true;
        }
        if (name == "--version" && !option.hasValue) {
            options.version = true;
            return true;
        }
        if (name == "--all-batches" && !option.hasValue) {
            options.allBatches = true;
            continue;
        }
        if (name != "--server" && name != "--listen" && name != "--server-timeout") {
            error = "unknown argument " + args[i];
            return false;
        }
        if (!takeCommandLineValue(option, args, i, error))
            return false;
        const std::string& value = option.value;
        if (name == "--server") {
            if (!parseServer(value)) {
                error = "not a HOST or HOST:PORT: " + value;
                return false;
            }
            options.server = value;
        } else if (name == "--listen") {
            if (!parseListen(value, options.listenHost, options.listenPort)) {
                error = "not an ADDR:PORT: " + value;
                return false;
            }
        } else if (!parseSeconds(value, options.serverTimeoutSeconds)) {
            error = "not a number of seconds: " + value;
            return false;
        }
    }
    return true;
}

std::string exporterHelpText()
{
    return R"(Usage: korvane-exporter [--server HOST[:PORT]] [--listen ADDR:PORT] [--all-batches]
Serves the state of a processing server's farm to Prometheus, as metrics in
the text exposition format at http://ADDR:PORT/metrics.

Options:
  --server HOST[:PORT]    the processing server to watch (default 127.0.0.1;
                          port 5840 unless given)
  --listen ADDR:PORT      where to serve the metrics (default 127.0.0.1:10084,
                          loopback only); port 0 takes a free port. The first
                          line on standard output is "listening on ADDR:PORT".
                          An IPv6 address goes in brackets: [::1]:10084
  --all-batches           a series for every batch; without it only batches
                          that are pending, working or paused have series
  --server-timeout SECS   longest time for one reading of the server, name
                          lookup and connect included (default 5); a scrape
                          that says how long it waits
                          (X-Prometheus-Scrape-Timeout-Seconds) gets that
                          less half a second, if it is shorter
  -h, --help              show this text and exit
  --version               show the version and exit

A scrape reads the batch list and the node list once; a scrape within one
second of the last one is answered from it. Server errors, and a reading
that runs out of time, give korvane_up 0 and a line on standard error that
says why; the exporter keeps running. After a lost
connection it connects again at the next scrape, waiting 1, 2, 4, 8, then 16
seconds between attempts while the server stays away.

SIGINT or SIGTERM ends the exporter. Exit codes: 0 stopped, 1 cannot listen,
2 usage error.
)";
}
