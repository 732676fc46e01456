#include "simoptions.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "commandlineoption.h"
#include "serveraddress.h"

namespace {

bool toUnsigned(const std::string& text, unsigned long long max, unsigned long long& out)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    errno = 0;
    out = std::strtoull(text.c_str(), nullptr, 10);
    return errno == 0 && out <= max;
}

bool toReal(const std::string& text, double& out)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    out = std::strtod(text.c_str(), &end);
    return *end == '\0' && std::isfinite(out);
}

} // namespace

bool parseSimOptions(const std::vector<std::string>& args, SimOptions& options, std::string& error)
{
    for (std::size_t i = 0; i < args.size(); ++i) {
        CommandLineOption option = splitCommandLineOption(args[i]);
        const std::string& name = option.name;
        if (name == "--help" || name == "-h") {
            options.help = true;
            continue;
        }
        if (name == "--byte-writes") {
            options.server.faults.byteWrites = true;
            continue;
        }
        static const char* const valued[] = {"--listen", "--seed", "--speed", "--batches", "--nodes",
            "--tick-ms", "--start-time", "--failure-rate", "--object-params", "--close-after", "--mute-after",
            "--garbage-every", "--delay", "--trickle", "--big-reply", "--max-line", "--max-clients"};
        bool known = false;
        for (const char* option : valued)
            known = known || name == option;
        if (!known) {
            error = "unknown option " + args[i];
            return false;
        }
        if (!takeCommandLineValue(option, args, i, error))
            return false;
        const std::string& value = option.value;

        unsigned long long number = 0;
        double real = 0.0;
        std::string bad = "bad value for ";
        bad.append(name).append(": ").append(value);
        if (name == "--listen") {
            // The simulator needs an address of its own: an empty host is refused too.
            int port = 0;
            if (!parseListenAddress(value, options.address, port) || options.address.empty()) {
                error = badListenAddress(value);
                return false;
            }
            options.port = static_cast<std::uint16_t>(port);
        } else if (name == "--speed" || name == "--failure-rate") {
            if (!toReal(value, real) || real < 0.0) {
                error = bad;
                return false;
            }
            (name == "--speed" ? options.server.speed : options.farm.failuresPerNodeHour) = real;
        } else if (name == "--object-params") {
            if (!toReal(value, real) || real < 0.0 || real > 1.0) {
                error = "--object-params needs a share from 0 to 1, got " + value;
                return false;
            }
            options.farm.objectParamRate = real;
        } else if (name == "--max-line" || name == "--max-clients") {
            if (!toUnsigned(value, name == "--max-line" ? (1ull << 30) : 0x7FFFFFFFull, number)
                || number == 0) {
                error = bad;
                return false;
            }
            (name == "--max-line" ? options.server.maxLineBytes : options.server.maxClients)
                = static_cast<std::size_t>(number);
        } else {
            const unsigned long long max = name == "--seed" ? ~0ull
                : name == "--start-time"                    ? 0xFFFFFFFFull
                : name == "--big-reply"                     ? (1ull << 30)
                                                            : 0x7FFFFFFFull;
            if (!toUnsigned(value, max, number)) {
                error = bad;
                return false;
            }
            if (name == "--seed")
                options.farm.seed = number;
            else if (name == "--batches")
                options.farm.batches = static_cast<int>(number);
            else if (name == "--nodes")
                options.farm.nodes = static_cast<int>(number);
            else if (name == "--tick-ms")
                options.server.tickMs = static_cast<int>(number);
            else if (name == "--start-time") {
                options.farm.startTime = static_cast<std::uint32_t>(number);
                options.startTimeGiven = true;
            } else if (name == "--close-after")
                options.server.faults.closeAfterReplies = static_cast<long long>(number);
            else if (name == "--mute-after")
                options.server.faults.muteAfterRequests = static_cast<long long>(number);
            else if (name == "--garbage-every")
                options.server.faults.garbageEvery = number;
            else if (name == "--delay")
                options.server.faults.delayMs = static_cast<int>(number);
            else if (name == "--trickle")
                options.server.faults.trickleMs = static_cast<int>(number);
            else if (name == "--big-reply")
                options.server.faults.bigReplyBytes = static_cast<std::size_t>(number);
        }
    }
    return true;
}

std::string simHelpText()
{
    return R"(Usage: korvane-sim [OPTIONS]
A simulated processing server: serves the control protocol (one JSON object
per line over TCP) for a made-up farm of worker nodes and batches of tasks.

Farm:
  --listen ADDR:PORT   address to listen on (default 127.0.0.1:5840); port 0
                       takes a free port. The first line on standard output
                       is always "listening on ADDR:PORT".
  --nodes M            number of worker nodes (default 12)
  --batches N          number of batches at the start (default 30)
  --seed S             seed of the farm's chance; the same seed, start time
                       and ticks give the same farm (default 1)
  --speed X            simulated seconds per real second (default 1; 0 stops
                       the clock, commands still take effect)
  --tick-ms MS         real milliseconds between ticks (default 100; 0: the
                       farm never moves)
  --start-time T       simulated clock at the start, Unix seconds (default:
                       now)
  --failure-rate R     failures per working node and simulated hour
                       (default 6)
  --object-params R    share of tasks, 0 to 1, given a parameter whose value
                       is an object, which a client may not take (default 0)

Limits (the port has no authentication, so a peer is not trusted):
  --max-line BYTES     longest request line (default 1048576); a longer one
                       is answered with error -32600 and the connection closed
  --max-clients N      clients served at once (default 64); the next one is
                       told so in one line and closed

Fault switches (each connection counts for itself; all off by default):
  --close-after N      close the connection after N replies
  --mute-after N       answer N requests, then read and ignore the rest,
                       keeping the connection open
  --byte-writes        send replies in 1-byte writes
  --garbage-every N    put a line that is not JSON before every Nth reply
  --delay MS           hold every reply back MS milliseconds
  --trickle MS         send replies one byte every MS milliseconds
  --big-reply BYTES    pad the first reply of each connection to a line of
                       BYTES bytes (line feed included)

  -h, --help           show this text and exit

SIGINT or SIGTERM ends the server. Exit codes: 0 stopped, 1 cannot listen,
2 bad arguments.
)";
}
