#include "exporteroptions.h"

#include <cstdlib>

#include "commandlineoption.h"
#include "serveraddress.h"

namespace {

bool parseNumber(const std::string& text, int& number)
{
    if (text.empty() || text.size() > 4 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    number = std::atoi(text.c_str());
    return number > 0;
}

bool parseTelemetryPath(const std::string& text)
{
    return text.size() > 1 && text.front() == '/' && text.find_first_of(" ?#") == std::string::npos;
}

} // namespace

std::string ExporterOptions::serverAddress() const
{
    return withDefaultPort(server);
}

bool parseExporterOptions(const std::vector<std::string>& args, ExporterOptions& options, std::string& error)
{
    static const char* const Valued[]
        = {"--server", "--listen", "--server-timeout", "--web.telemetry-path", "--collect.batches"};
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
            options.collectBatches = CollectMode::All;
            continue;
        }
        bool known = isWebFlag(name);
        for (const char* valued : Valued)
            known = known || name == valued;
        if (!known) {
            error = "unknown argument " + args[i];
            return false;
        }
        if (!takeCommandLineValue(option, args, i, error))
            return false;
        const std::string& value = option.value;
        if (name == "--server") {
            if (!isServerAddress(value)) {
                error = badServerAddress(value);
                return false;
            }
            options.server = value;
        } else if (isWebFlag(name) || name == "--listen") {
            if (!parseWebFlag(name == "--listen" ? "--web.listen-address" : name, value, options, error))
                return false;
        } else if (name == "--server-timeout") {
            if (!parseNumber(value, options.serverTimeoutSeconds)) {
                error = "not a number of seconds: " + value;
                return false;
            }
        } else if (name == "--web.telemetry-path") {
            if (!parseTelemetryPath(value)) {
                error = "not a path such as /metrics: " + value;
                return false;
            }
            options.telemetryPath = value;
        } else if (!parseCollectMode(value, options.collectBatches)) {
            error = "not unfinished, working, all or none: " + value;
            return false;
        }
    }
    if (options.listen.empty())
        options.listen.push_back({"127.0.0.1", 10084});
    return true;
}

std::string exporterHelpText()
{
    return R"(Usage: korvane-exporter [--server HOST[:PORT]] [--web.listen-address ADDR:PORT]...
                        [--web.config.file FILE] [--collect.batches MODE]
Serves the state of a processing server's farm to Prometheus, as metrics in
the text exposition format at http://ADDR:PORT/metrics (https:// with TLS in
the web configuration file).

Options:
  --server HOST[:PORT]    the processing server to watch (default 127.0.0.1;
                          port 5840 unless given)
  --web.listen-address ADDR:PORT
                          where to serve the metrics (default 127.0.0.1:10084,
                          loopback only); repeat it for several addresses.
                          :PORT is every address of this host; an IPv6
                          address goes in brackets: [::1]:10084; port 0 takes
                          a free port. Each address gives one line
                          "listening on ADDR:PORT" on standard output.
  --listen ADDR:PORT      the same as --web.listen-address
  --web.telemetry-path PATH
                          the path of the metrics (default /metrics)
  --web.config.file FILE  TLS and basic authentication, in the YAML format of
                          Prometheus' exporters (tls_server_config,
                          basic_auth_users with bcrypt hashes); read once at
                          the start, a bad file ends the exporter with exit
                          code 2
  --web.max-requests N    scrapes served at the same time (default 40); more
                          are answered 503
  --collect.batches MODE  which batches get series: unfinished (pending,
                          working or paused; the default), working, all or
                          none
  --all-batches           the same as --collect.batches=all
  --server-timeout SECS   longest time for one reading of the server, name
                          lookup and connect included (default 5); a scrape
                          that says how long it waits
                          (X-Prometheus-Scrape-Timeout-Seconds) gets that
                          less half a second, if it is shorter
  --log.level LEVEL       debug, info (the default), warn or error; at warn
                          and above only failed readings are logged
  -h, --help              show this text and exit
  --version               show the version and exit

A scrape reads the batch list and the node list once; a scrape within one
second of the last one is answered from it. Server errors, and a reading
that runs out of time, give korvane_up 0 and a line on standard error that
says why; the exporter keeps running. After a lost connection it connects
again at the next scrape, waiting 1, 2, 4, 8, then 16 seconds between
attempts while the server stays away.

SIGINT or SIGTERM ends the exporter. Exit codes: 0 stopped, 1 cannot listen,
2 usage error or a bad web configuration file.
)";
}
