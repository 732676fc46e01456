#include "ctloptions.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>

#include "commandlineoption.h"
#include "serveraddress.h"

namespace {

struct CommandName
{
    const char* name;
    CtlCommand command;
};

const CommandName Commands[] = {
    {"batches", CtlCommand::Batches},
    {"nodes", CtlCommand::Nodes},
    {"status", CtlCommand::Status},
    {"pause-batch", CtlCommand::PauseBatch},
    {"resume-batch", CtlCommand::ResumeBatch},
    {"abort-batch", CtlCommand::AbortBatch},
    {"pause-node", CtlCommand::PauseNode},
    {"resume-node", CtlCommand::ResumeNode},
    {"stop-node", CtlCommand::StopNode},
    {"batch-priority", CtlCommand::BatchPriority},
    {"node-priority", CtlCommand::NodePriority},
    {"create", CtlCommand::Create},
    {"find", CtlCommand::Find},
    {"watch", CtlCommand::Watch},
};

bool parseCommandArguments(
    const std::string& name, const std::vector<std::string>& rest, CtlOptions& options, std::string& error)
{
    auto count = [&](std::size_t wanted, const char* usage) {
        if (rest.size() == wanted)
            return true;
        error = name + " takes " + usage;
        return false;
    };
    auto id = [&](const std::string& text) {
        std::uint32_t value = 0;
        if (!parseId(text, value)) {
            error = "not an id: " + text;
            return false;
        }
        options.ids.push_back(value);
        return true;
    };

    switch (options.command) {
    case CtlCommand::Batches:
    case CtlCommand::Nodes:
    case CtlCommand::Watch:
        return count(0, "no arguments");
    case CtlCommand::Status:
        return count(1, "one batch id") && id(rest[0]);
    case CtlCommand::PauseBatch:
    case CtlCommand::ResumeBatch:
    case CtlCommand::AbortBatch:
    case CtlCommand::PauseNode:
    case CtlCommand::ResumeNode:
    case CtlCommand::StopNode:
        if (rest.empty()) {
            error = name + " takes one or more ids";
            return false;
        }
        return std::all_of(rest.begin(), rest.end(), id);
    case CtlCommand::BatchPriority:
    case CtlCommand::NodePriority:
        if (!count(2, "an id and a level") || !id(rest[0]))
            return false;
        if (!parseLevel(rest[1], options.priority)) {
            error = "not a priority level: " + rest[1] + " (highest high normal low lowest, or -2..2)";
            return false;
        }
        return true;
    case CtlCommand::Create:
        if (!count(2, "a project path and a task file"))
            return false;
        options.path = rest[0];
        options.tasksFile = rest[1];
        break;
    case CtlCommand::Find:
        if (!count(1, "a project path"))
            return false;
        options.path = rest[0];
        break;
    case CtlCommand::None:
        break;
    }
    if (options.path.empty()) {
        error = "the project path is empty";
        return false;
    }
    return true;
}

} // namespace

std::string CtlOptions::address() const
{
    const std::size_t colon = host.find(':');
    if (colon == std::string::npos)
        return host + ":" + std::to_string(port);
    return host;
}

bool parseId(const std::string& text, std::uint32_t& id)
{
    if (text.empty() || text.size() > 10 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    const unsigned long long value = std::strtoull(text.c_str(), nullptr, 10);
    if (value > 0xFFFFFFFFull)
        return false;
    id = static_cast<std::uint32_t>(value);
    return true;
}

bool parseLevel(const std::string& text, int& priority)
{
    std::string word = text;
    std::transform(word.begin(), word.end(), word.begin(), [](unsigned char c) { return std::tolower(c); });
    static const char* const Words[] = {"lowest", "low", "normal", "high", "highest"};
    for (int level = -2; level <= 2; ++level) {
        if (word == Words[level + 2]) {
            priority = level;
            return true;
        }
    }
    static const char* const Numbers[] = {"-2", "-1", "0", "1", "2"};
    for (int level = -2; level <= 2; ++level) {
        if (word == Numbers[level + 2] || (level > 0 && word == std::string("+") + Numbers[level + 2])) {
            priority = level;
            return true;
        }
    }
    return false;
}

bool parseTimeout(const std::string& text, int& timeoutMs)
{
    if (text.empty() || text.find_first_not_of("0123456789.") != std::string::npos)
        return false;
    char* end = nullptr;
    const double seconds = std::strtod(text.c_str(), &end);
    if (*end != '\0' || !(seconds >= 0.0 && seconds <= 86400.0))
        return false;
    const long milliseconds = std::lround(seconds * 1000.0);
    timeoutMs = milliseconds == 0 ? -1 : static_cast<int>(milliseconds);
    return seconds == 0.0 || milliseconds > 0;
}

bool parseCtlOptions(const std::vector<std::string>& args, CtlOptions& options, std::string& error)
{
    std::size_t i = 0;
    for (; i < args.size(); ++i) {
        if (args[i].rfind('-', 0) != 0 || args[i] == "-")
            break;
        if (args[i] == "--") {
            ++i;
            break;
        }
        CommandLineOption option = splitCommandLineOption(args[i]);
        const std::string& name = option.name;
        if (name == "--help" || name == "-h") {
            options.help = true;
            return true;
        }
        if (name == "--version") {
            options.version = true;
            return true;
        }
        if (name == "--json" && !option.hasValue) {
            options.json = true;
            continue;
        }
        if (name != "--host" && name != "--port" && name != "--timeout") {
            error = "unknown option " + args[i];
            return false;
        }
        if (!takeCommandLineValue(option, args, i, error))
            return false;
        const std::string& value = option.value;
        if (name == "--port") {
            if (!parsePort(value, options.port)) {
                error = badPort(value);
                return false;
            }
            continue;
        }
        if (name == "--timeout") {
            if (!parseTimeout(value, options.timeoutMs)) {
                error = "not a time-out in seconds (0 to 86400): " + value;
                return false;
            }
            continue;
        }
        if (!isServerAddress(value)) {
            error = badServerAddress(value);
            return false;
        }
        options.host = value;
    }

    if (i == args.size()) {
        error = "no command given";
        return false;
    }
    const std::string& name = args[i];
    for (const CommandName& command : Commands) {
        if (name == command.name)
            options.command = command.command;
    }
    if (options.command == CtlCommand::None) {
        error = "unknown command " + name;
        return false;
    }
    const std::vector<std::string> rest(args.begin() + static_cast<std::ptrdiff_t>(i) + 1, args.end());
    return parseCommandArguments(name, rest, options, error);
}

std::string ctlHelpText()
{
    return R"(Usage: korvane-ctl [--host HOST[:PORT]] [--port N] [--timeout SECONDS] [--json]
                   COMMAND [ARGS]
Control tool for the processing server's control port.

Commands:
  batches                      list the batches
  nodes                        list the worker nodes
  status BATCH_ID              a batch's path, tasks and last error
  pause-batch ID...            pause batches
  resume-batch ID...           resume batches
  abort-batch ID...            abort batches
  pause-node ID...             pause nodes
  resume-node ID...            resume nodes
  stop-node ID...              stop nodes (pause, then abort)
  batch-priority ID LEVEL      set a batch's priority
  node-priority ID LEVEL       set a node's priority
                               LEVEL: highest high normal low lowest, or -2..2
  create PATH TASKS.json       queue a new batch; prints its id. TASKS.json is
                               an array of {"name", "params", optional "chunks"
                               (integers), optional "frames" ([key, frame]
                               pairs)}
  find PATH                    print the id of the batch with this project path
  watch                        redraw batches and nodes every second until
                               interrupted

Options:
  --host HOST[:PORT]  server address (default 127.0.0.1); a port given here
                      overrides --port
  --port N            server port (default 5840)
  --timeout SECONDS   longest time for the whole command, name lookup and
                      connect included; for watch, for the connect and for
                      each round (default 10; 0 waits without limit)
  --json              print records as JSON with the protocol's keys
  -h, --help          show this text and exit
  --version           show the version and exit

Exit codes: 0 done; 1 the server refused a request; 2 usage error; 3 cannot
resolve or connect, the connection was lost, or no usable reply came in time.
)";
}
