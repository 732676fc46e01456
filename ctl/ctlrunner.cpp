#include "ctlrunner.h"

#include <chrono>
#include <cstdio>
#include <iostream>
#include <netdb.h>
#include <thread>

#include <QDate>

#include <json/writer.h>

#include "recordjson.h"
#include "tables.h"
#include "taskfile.h"
#include "version.h"

namespace {

const char* const Prefix = "korvane-ctl: ";

// "10 s", "0.5 s"
std::string seconds(int milliseconds)
{
    std::string text = std::to_string(milliseconds / 1000);
    if (milliseconds % 1000 != 0) {
        char fraction[8];
        std::snprintf(fraction, sizeof fraction, ".%03d", milliseconds % 1000);
        std::string digits = fraction;
        digits.erase(digits.find_last_not_of('0') + 1);
        text += digits;
    }
    return text + " s";
}

} // namespace

CtlRunner::CtlRunner(std::ostream& out, std::ostream& err)
    : m_out(out)
    , m_err(err)
{
}

void CtlRunner::setWatchPace(int intervalMs, int rounds)
{
    m_watchIntervalMs = intervalMs;
    m_watchRounds = rounds;
}

int CtlRunner::run(const std::vector<std::string>& args)
{
    CtlOptions options;
    std::string error;
    if (!parseCtlOptions(args, options, error)) {
        m_err << Prefix << error << " (see korvane-ctl --help)" << std::endl;
        return ExitUsage;
    }
    if (options.help) {
        m_out << ctlHelpText() << std::flush;
        return ExitDone;
    }
    if (options.version) {
        m_out << "korvane-ctl " << Version::Text << std::endl;
        return ExitDone;
    }

    // The task file is read before connecting, so that a bad one never reaches the server.
    m_tasks.clear();
    if (options.command == CtlCommand::Create && !readTaskFile(options.tasksFile, m_tasks, error)) {
        m_err << Prefix << error << std::endl;
        return ExitUsage;
    }

    ControlClient client;
    // The time limit holds for the whole command, name lookup and connect included.
    startClock(client, options);
    const ActiveClient active(m_client, client);
    if (!client.init() || !client.connect(options.host, options.port))
        return cannotConnect(client, options);
    try {
        return execute(client, options);
    } catch (const std::exception& exception) {
        m_err << Prefix << "unreadable reply from " << options.address() << ": " << exception.what()
              << std::endl;
        return ExitConnection;
    }
}

void CtlRunner::interrupt()
{
    if (ControlClient* client = m_client.load())
        client->interrupt();
}

void CtlRunner::startClock(ControlClient& client, const CtlOptions& options)
{
    if (options.timeoutMs > 0)
        client.setDeadline(SteadyClock::now() + std::chrono::milliseconds(options.timeoutMs));
}

int CtlRunner::cannotConnect(const ControlClient& client, const CtlOptions& options)
{
    switch (client.failure()) {
    case ControlClient::Failure::CannotResolve:
        m_err << Prefix << "cannot resolve " << options.address() << ": "
              << ::gai_strerror(client.lookupError()) << std::endl;
        break;
    case ControlClient::Failure::ConnectTimedOut:
        m_err << Prefix << options.address() << ": could not connect within " << seconds(options.timeoutMs)
              << std::endl;
        break;
    default:
        m_err << Prefix << "cannot connect to " << options.address() << std::endl;
        break;
    }
    return ExitConnection;
}

int CtlRunner::failed(const ControlClient& client, const CtlOptions& options, const std::string& what)
{
    if (stopped())
        return ExitDone;
    const std::string request = client.failedRequest() + " to " + options.address() + ": ";
    switch (client.failure()) {
    case ControlClient::Failure::NoReply:
        m_err << Prefix << request << "no reply within " << seconds(options.timeoutMs) << std::endl;
        return ExitConnection;
    case ControlClient::Failure::ReplyTooSlow:
        m_err << Prefix << request << "the reply was still arriving after " << seconds(options.timeoutMs)
              << " (slow link?)" << std::endl;
        return ExitConnection;
    case ControlClient::Failure::None:
        break;
    default:
        m_err << Prefix << "connection to " << options.address() << " lost" << std::endl;
        return ExitConnection;
    }
    m_err << Prefix << "the server refused " << what << std::endl;
    return ExitRefused;
}

void CtlRunner::printJson(const Json::Value& value, bool compact)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = compact ? "" : "  ";
    builder["emitUTF8"] = true;
    m_out << Json::writeString(builder, value) << std::endl;
}

int CtlRunner::eachId(ControlClient& client, const CtlOptions& options, const char* verb, const char* what,
    bool (ControlClient::*request)(std::uint32_t))
{
    int code = ExitDone;
    for (std::uint32_t id : options.ids) {
        if ((client.*request)(id))
            continue;
        code = failed(client, options, std::string("to ") + verb + " " + what + " " + std::to_string(id));
        if (code == ExitConnection)
            return code;
    }
    return code;
}

int CtlRunner::execute(ControlClient& client, const CtlOptions& options)
{
    const QDate today = QDate::currentDate();
    switch (options.command) {
    case CtlCommand::Batches: {
        ControlClient::BatchList batches;
        if (!client.listBatches(batches))
            return failed(client, options, "the batch list");
        if (options.json)
            printJson(batchListToJson(batches));
        else
            m_out << batchTable(batches) << std::flush;
        return ExitDone;
    }
    case CtlCommand::Nodes: {
        ControlClient::NodeList nodes;
        if (!client.listNodes(nodes))
            return failed(client, options, "the node list");
        if (options.json)
            printJson(nodeListToJson(nodes));
        else
            m_out << nodeTable(nodes, today) << std::flush;
        return ExitDone;
    }
    case CtlCommand::Status: {
        ControlClient::BatchStatus status;
        const std::uint32_t id = options.ids.front();
        if (!client.getBatchStatus(id, status))
            return failed(client, options, "the status of batch " + std::to_string(id));
        if (options.json)
            printJson(batchStatusToJson(status));
        else
            m_out << statusText(status, today) << std::flush;
        return ExitDone;
    }
    case CtlCommand::PauseBatch:
        return eachId(client, options, "pause", "batch", &ControlClient::pauseBatch);
    case CtlCommand::ResumeBatch:
        return eachId(client, options, "resume", "batch", &ControlClient::resumeBatch);
    case CtlCommand::AbortBatch:
        return eachId(client, options, "abort", "batch", &ControlClient::abortBatch);
    case CtlCommand::PauseNode:
        return eachId(client, options, "pause", "node", &ControlClient::pauseNode);
    case CtlCommand::ResumeNode:
        return eachId(client, options, "resume", "node", &ControlClient::resumeNode);
    case CtlCommand::StopNode: {
        int code = ExitDone;
        for (std::uint32_t id : options.ids) {
            client.stopNode(id, [&](ControlClient::StopStep step) {
                const char* verb = step == ControlClient::StopStep::Pause ? "to pause" : "to abort";
                code = failed(client, options, std::string(verb) + " node " + std::to_string(id));
                // a lost connection has been reported once; nothing more goes out
                return code != ExitConnection;
            });
            if (code == ExitConnection)
                return code;
        }
        return code;
    }
    case CtlCommand::BatchPriority:
    case CtlCommand::NodePriority: {
        const bool batch = options.command == CtlCommand::BatchPriority;
        const std::uint32_t id = options.ids.front();
        const bool ok = batch ? client.setBatchPriority(id, options.priority)
                              : client.setNodePriority(id, options.priority);
        if (!ok)
            return failed(client, options,
                std::string("to set the priority of ") + (batch ? "batch " : "node ") + std::to_string(id));
        return ExitDone;
    }
    case CtlCommand::Create:
    case CtlCommand::Find: {
        const bool create = options.command == CtlCommand::Create;
        std::uint32_t id = ControlClient::NoId;
        if (create) {
            id = client.createBatch(options.path, m_tasks);
        } else {
            id = client.findBatch(options.path);
        }
        if (id == ControlClient::NoId)
            return failed(client, options,
                std::string(create ? "to create" : "to find") + " a batch for " + options.path);
        if (options.json) {
            Json::Value object(Json::objectValue);
            object["batch_id"] = Json::UInt(id);
            printJson(object);
        } else {
            m_out << id << std::endl;
        }
        return ExitDone;
    }
    case CtlCommand::Watch:
        return watch(client, options);
    case CtlCommand::None:
        break;
    }
    return ExitUsage;
}

int CtlRunner::watch(ControlClient& client, const CtlOptions& options)
{
    for (int round = 0; !stopped() && (m_watchRounds == 0 || round < m_watchRounds); ++round) {
        if (round > 0) {
            // Short naps, so that an interruption ends the wait at once.
            const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(m_watchIntervalMs);
            while (!stopped() && std::chrono::steady_clock::now() < end)
                std::this_thread::sleep_for(std::chrono::milliseconds(std::min(m_watchIntervalMs, 50)));
            if (stopped())
                break;
            // Each round has the whole time limit of its own.
            startClock(client, options);
        }
        ControlClient::BatchList batches;
        ControlClient::NodeList nodes;
        if (!client.listBatches(batches))
            return failed(client, options, "the batch list");
        if (!client.listNodes(nodes))
            return failed(client, options, "the node list");

        if (options.json) {
            Json::Value both(Json::objectValue);
            both["batches"] = batchListToJson(batches);
            both["nodes"] = nodeListToJson(nodes);
            printJson(both, true);
            continue;
        }
        std::string screen;
        if (m_clearScreen)
            screen = "\x1b[H\x1b[2J";
        else if (round > 0)
            screen = "\n";
        screen += batchTable(batches) + "\n" + nodeTable(nodes, QDate::currentDate());
        m_out << screen << std::flush;
    }
    return ExitDone;
}
