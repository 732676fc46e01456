#include "weboptions.h"

#include <arpa/inet.h>
#include <cstdlib>
#include <fstream>
#include <netdb.h>
#include <netinet/in.h>

#include "commandlineoption.h"
#include "serveraddress.h"

namespace {

bool parseCount(const std::string& text, int& number, int maximum)
{
    if (text.empty() || text.size() > 6 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    number = std::atoi(text.c_str());
    return number > 0 && number <= maximum;
}

// "1", "0.5", "250ms", "2s": a time from 0.1 to 3600 seconds.
bool parseDuration(const std::string& text, std::chrono::milliseconds& duration)
{
    std::string number = text;
    double scale = 1000.0;
    if (number.size() > 2 && number.compare(number.size() - 2, 2, "ms") == 0) {
        number.resize(number.size() - 2);
        scale = 1.0;
    } else if (!number.empty() && number.back() == 's') {
        number.pop_back();
    }
    if (number.empty() || number.find_first_not_of("0123456789.") != std::string::npos
        || number.find('.') != number.rfind('.') || number == ".")
        return false;
    const double milliseconds = std::atof(number.c_str()) * scale;
    if (milliseconds < 100.0 || milliseconds > 3600.0 * 1000.0)
        return false;
    duration = std::chrono::milliseconds(static_cast<long long>(milliseconds));
    return true;
}

// "65536", "64K", "8M": bytes from 4 KiB to 1 GiB.
bool parseBytes(const std::string& text, long long& bytes)
{
    std::string number = text;
    long long scale = 1;
    if (!number.empty() && (number.back() == 'K' || number.back() == 'M')) {
        scale = number.back() == 'K' ? 1024 : 1024 * 1024;
        number.pop_back();
    }
    if (number.empty() || number.size() > 10 || number.find_first_not_of("0123456789") != std::string::npos)
        return false;
    bytes = std::stoll(number) * scale;
    return bytes >= 4096 && bytes <= 1024LL * 1024 * 1024;
}

bool isUserName(const std::string& name)
{
    return !name.empty() && name.find_first_of(":\r\n") == std::string::npos;
}

bool addOperators(const std::string& value, std::set<std::string>& operators, std::string& error)
{
    if (!value.empty() && value.front() == '@') {
        const std::string file = value.substr(1);
        std::ifstream in(file);
        if (!in) {
            error = "cannot read the operators file " + file;
            return false;
        }
        std::string line;
        while (std::getline(in, line)) {
            const std::size_t start = line.find_first_not_of(" \t");
            if (start == std::string::npos || line[start] == '#')
                continue;
            const std::size_t end = line.find_last_not_of(" \t\r");
            operators.insert(line.substr(start, end - start + 1));
        }
        return true;
    }
    std::size_t start = 0;
    while (start <= value.size()) {
        const std::size_t comma = value.find(',', start);
        const std::string name
            = value.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        if (!isUserName(name)) {
            error = "not a list of user names: " + value;
            return false;
        }
        operators.insert(name);
        if (comma == std::string::npos)
            break;
        start = comma + 1;
    }
    return true;
}

} // namespace

bool isLoopbackHost(const std::string& host)
{
    if (host.empty())
        return false;
    addrinfo hints {};
    hints.ai_flags = AI_PASSIVE;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0)
        return false;
    bool loopback = found != nullptr;
    for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
        if (entry->ai_family == AF_INET) {
            const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ai_addr);
            loopback = loopback && (ntohl(address->sin_addr.s_addr) >> 24) == 127;
        } else if (entry->ai_family == AF_INET6) {
            const auto* address = reinterpret_cast<const sockaddr_in6*>(entry->ai_addr);
            loopback = loopback && IN6_IS_ADDR_LOOPBACK(&address->sin6_addr);
        } else {
            loopback = false;
        }
    }
    ::freeaddrinfo(found);
    return loopback;
}

bool parseWebOptions(const std::vector<std::string>& args, WebOptions& options, std::string& error)
{
    static const char* const Valued[] = {"--server", "--interval", "--server-timeout", "--web.operators",
        "--audit.file", "--web.max-streams", "--web.stream-buffer", "--web.assets-dir"};
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
        } else if (name == "--interval" || name == "--server-timeout") {
            if (!parseDuration(value, name == "--interval" ? options.interval : options.serverTimeout)) {
                error = "not a time from 0.1 to 3600 seconds (such as 1, 0.5 or 250ms): " + value;
                return false;
            }
        } else if (isWebFlag(name)) {
            if (!parseWebFlag(name, value, options, error))
                return false;
        } else if (name == "--audit.file") {
            if (value.empty()) {
                error = "--audit.file needs a file name";
                return false;
            }
            options.auditFile = value;
        } else if (name == "--web.assets-dir") {
            if (value.empty()) {
                error = "--web.assets-dir needs a folder";
                return false;
            }
            options.assetsDir = value;
        } else if (name == "--web.operators") {
            if (!addOperators(value, options.operators, error))
                return false;
        } else if (name == "--web.max-streams") {
            if (!parseCount(value, options.maxStreams, 100000)) {
                error = "not a number of streams from 1 to 100000: " + value;
                return false;
            }
        } else if (name == "--web.stream-buffer") {
            if (!parseBytes(value, options.streamBuffer)) {
                error = "not a number of bytes from 4096 to 1073741824 (such as 65536, 64K or 8M): " + value;
                return false;
            }
        }
    }
    if (options.listen.empty())
        options.listen.push_back({"127.0.0.1", 10085});
    return true;
}

std::string webHelpText()
{
    return R"(Usage: korvane-web [--server HOST[:PORT]] [--web.listen-address ADDR:PORT]...
                   [--web.config.file FILE] [--web.operators NAMES]...
                   [--audit.file FILE]
Shows a processing server's farm in any browser: one reading of the farm
every interval, sent to every open page as live changes, and the operators'
actions on batches and nodes, each written to an audit trail.

Options:
  --server HOST[:PORT]    the processing server (default 127.0.0.1; port 5840
                          unless given)
  --interval TIME         time between readings (default 1 s): 2, 0.5, 250ms
  --server-timeout TIME   longest time for one reading or one action, name
                          lookup and connect included (default 5 s)
  --web.listen-address ADDR:PORT
                          where to serve (default 127.0.0.1:10085, loopback
                          only); repeat it for several addresses. :PORT is
                          every address of this host; an IPv6 address goes in
                          brackets: [::1]:10085; port 0 takes a free port.
                          Each address gives one line "listening on
                          ADDR:PORT" on standard output. Any address that is
                          not loopback needs basic_auth_users in the web
                          configuration file.
  --web.config.file FILE  TLS and basic authentication, in the YAML format of
                          Prometheus' exporters (tls_server_config,
                          basic_auth_users with bcrypt hashes); read once at
                          the start, a bad file ends the program with exit
                          code 2
  --web.operators NAMES   users who may act on the farm (pause, resume, abort,
                          stop, priority), separated by commas; repeatable.
                          @FILE reads the names from FILE, one a line. Every
                          other user may only look. Without basic_auth_users
                          every client (on loopback) may act.
  --audit.file FILE       appends one JSON line per action, allowed or
                          refused, before the action is answered; reopened
                          on SIGHUP. Without it the lines go to the log only.
                          An action whose line cannot be written is refused.
  --web.max-streams N     event streams open at the same time (default 256);
                          more are answered 503
  --web.stream-buffer BYTES
                          how far a stream may fall behind (default 8M)
                          before its waiting events are dropped and it gets
                          one snapshot instead: 65536, 64K, 8M
  --web.assets-dir DIR    serve the browser application from DIR (as the build
                          writes it: index.html, assets/) instead of the copy
                          built into the program; for developing the page
  --web.max-requests N    other requests served at the same time (default
                          40); more are answered 503
  --log.level LEVEL       debug, info (the default), warn or error
  -h, --help              show this text and exit
  --version               show the version and exit

The page and the API are served under http://ADDR:PORT/ (https:// with TLS);
the API is described at /api/v1/openapi.json, the program's own metrics are
at /metrics. While the farm cannot be read the last known state is kept,
every page is told why, and the program connects again, waiting 1, 2, 4, 8,
then 16 seconds between attempts.

SIGINT or SIGTERM ends the program; SIGHUP reopens the audit file. Exit codes:
0 stopped, 1 cannot listen, 2 usage error, a bad web configuration file, or
an address other than loopback without basic authentication.
)";
}
