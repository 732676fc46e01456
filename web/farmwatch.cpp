#include "farmwatch.h"

#include <exception>
#include <ostream>

#include "recordjson.h"
#include "rowdelta.h"
#include "streamhub.h"

namespace {

using SteadyTime = std::chrono::steady_clock::time_point;

const char* const Program = "korvane-web";

std::int64_t unixSeconds()
{
    return std::chrono::duration_cast<std::chrono::seconds>(
        std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::uint64_t unixMilliseconds()
{
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now().time_since_epoch())
                                          .count());
}

} // namespace

FarmWatch::FarmWatch(Settings settings, StreamHub& hub, std::ostream& log)
    : m_settings(std::move(settings))
    , m_hub(hub)
    , m_log(log)
    , m_reader(m_settings.server, log, Program)
    , m_state(hub.state())
{
}

FarmState FarmWatch::initialState()
{
    FarmState state;
    state.seq = unixMilliseconds();
    state.farm.since = unixSeconds();
    state.farm.reason = "not read yet";
    state.farm.nextTry = state.farm.since;
    return state;
}

void FarmWatch::run()
{
    m_nextReading = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        if (!m_commands.empty()) {
            FarmCommand command = std::move(m_commands.front());
            m_commands.pop_front();
            lock.unlock();
            execute(command);
            lock.lock();
            continue;
        }
        const SteadyTime now = std::chrono::steady_clock::now();
        if (now < m_nextReading) {
            m_wake.wait_until(lock, m_nextReading);
            continue;
        }
        lock.unlock();
        const SteadyTime start = std::chrono::steady_clock::now();
        // The next reading is due one interval after this one began; a
        // reading that took longer is followed at once.
        m_nextReading = start + m_settings.interval;
        readOnce();
        const double seconds
            = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        lock.lock();
        m_readingSeconds = seconds;
    }
    // Commands still waiting are answered, so that no request hangs.
    std::deque<FarmCommand> left;
    left.swap(m_commands);
    lock.unlock();
    for (FarmCommand& command : left) {
        std::vector<FarmCommand::Result> results;
        for (std::uint32_t id : command.ids)
            results.push_back({id, FarmCommand::Outcome::Unreachable, "the web monitor is stopping", {}});
        command.done(std::move(results));
    }
}

void FarmWatch::stop()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_reader.interrupt();
    m_wake.notify_all();
}

bool FarmWatch::submit(FarmCommand command)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stopping || m_commands.size() >= m_settings.maxQueued)
            return false;
        m_commands.push_back(std::move(command));
    }
    m_wake.notify_all();
    return true;
}

double FarmWatch::lastReadingSeconds() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_readingSeconds;
}

void FarmWatch::readOnce()
{
    const SteadyTime deadline = std::chrono::steady_clock::now() + m_settings.timeout;
    m_reader.read(m_snapshot, deadline);

    FarmStatus status = m_state.farm;
    if (m_snapshot.up) {
        if (!status.connected)
            status = {true, unixSeconds(), {}, 0};
    } else {
        if (status.connected) {
            status.connected = false;
            status.since = unixSeconds();
        }
        if (!m_reader.lastFailure().empty())
            status.reason = m_reader.lastFailure();
        status.nextTry = nextTry(m_nextReading);
    }
    // The next attempt's time moves with every reading while the farm is
    // away; the reason says when it changes ("next attempt in 4 s").
    if (status.connected != m_state.farm.connected || status.reason != m_state.farm.reason)
        publishFarm(status);
    if (!m_snapshot.up)
        return;

    auto batches = std::make_shared<const BatchRows>(batchRows(std::move(m_snapshot.batches)));
    auto nodes = std::make_shared<const NodeRows>(nodeRows(std::move(m_snapshot.nodes)));
    m_snapshot.batches.clear();
    m_snapshot.nodes.clear();
    Json::Value delta(Json::objectValue);
    delta["batches"] = batchDelta(*m_state.batches, *batches);
    delta["nodes"] = nodeDelta(*m_state.nodes, *nodes);
    if (!deltaIsEmpty(delta["batches"]) || !deltaIsEmpty(delta["nodes"])) {
        m_state.seq += 1;
        m_state.batches = std::move(batches);
        m_state.nodes = std::move(nodes);
        delta["seq"] = Json::UInt64(m_state.seq);
        m_hub.publish(m_state, makeEventFrame("delta", m_state.seq, delta));
    }
    // Every good reading says when it was made, changes or not: a page shows
    // how old its data is, and notices a stream that has gone quiet.
    Json::Value reading(Json::objectValue);
    reading["time"] = Json::UInt64(unixMilliseconds());
    reading["interval"] = Json::Int64(m_settings.interval.count());
    m_hub.publishTransient(makeEventFrame("reading", m_state.seq, reading));
    followBatches(deadline);
}

void FarmWatch::followBatches(SteadyTime deadline)
{
    const std::set<std::uint32_t> followed = m_hub.followedBatches();
    for (auto it = m_followed.begin(); it != m_followed.end();)
        it = followed.count(it->first) ? std::next(it) : m_followed.erase(it);
    for (std::uint32_t id : followed) {
        if (!hasBatch(*m_state.batches, id))
            continue;
        ControlClient* client = m_reader.connection(deadline);
        if (!client)
            return;
        ControlClient::BatchStatus status;
        bool ok = false;
        try {
            ok = client->getBatchStatus(id, status);
        } catch (const std::exception& error) {
            m_log << Program << ": getBatchStatus reply for batch " << id
                  << " has a member of the wrong type (" << error.what() << ")" << std::endl;
            continue;
        }
        if (!ok) {
            if (m_reader.requestFailed("getBatchStatus") != ControlClient::Failure::None)
                return;
            continue;
        }
        Json::Value data = batchStatusToJson(status);
        data["batch_id"] = Json::UInt(id);
        Json::Value& last = m_followed[id];
        if (last != data) {
            m_hub.publishBatch(id, makeEventFrame("batch", m_state.seq, data));
            last = std::move(data);
        }
    }
}

void FarmWatch::execute(FarmCommand& command)
{
    std::vector<FarmCommand::Result> results;
    const SteadyTime deadline = std::chrono::steady_clock::now() + m_settings.timeout;
    for (std::uint32_t id : command.ids) {
        ControlClient* client = m_reader.connection(deadline);
        if (!client) {
            results.push_back({id, FarmCommand::Outcome::Unreachable, m_reader.lastFailure(), {}});
            continue;
        }
        results.push_back(runOne(*client, command, id));
    }
    command.done(std::move(results));
}

FarmCommand::Result FarmWatch::runOne(ControlClient& client, const FarmCommand& command, std::uint32_t id)
{
    using Action = FarmCommand::Action;
    const bool batch = command.target == FarmCommand::Target::Batch;
    FarmCommand::Result result;
    result.id = id;
    bool ok = false;
    const char* method = "";
    try {
        switch (command.action) {
        case Action::Pause:
            method = batch ? "pauseBatch" : "pauseNode";
            ok = batch ? client.pauseBatch(id) : client.pauseNode(id);
            break;
        case Action::Resume:
            method = batch ? "resumeBatch" : "resumeNode";
            ok = batch ? client.resumeBatch(id) : client.resumeNode(id);
            break;
        case Action::Abort:
            method = "abortBatch";
            ok = client.abortBatch(id);
            break;
        case Action::Stop:
            // The abort goes out even when the pause was refused; a lost
            // connection ends it.
            method = "pauseNode";
            ok = client.stopNode(id, [&](ControlClient::StopStep step) {
                method = step == ControlClient::StopStep::Pause ? "pauseNode" : "abortNode";
                return client.failure() == ControlClient::Failure::None;
            });
            break;
        case Action::Priority:
            method = batch ? "setBatchPriority" : "setNodePriority";
            ok = batch ? client.setBatchPriority(id, command.priority)
                       : client.setNodePriority(id, command.priority);
            break;
        case Action::Status: {
            method = "getBatchStatus";
            ControlClient::BatchStatus status;
            ok = client.getBatchStatus(id, status);
            if (ok) {
                result.status = batchStatusToJson(status);
                result.status["batch_id"] = Json::UInt(id);
            }
            break;
        }
        }
    } catch (const std::exception& error) {
        result.outcome = FarmCommand::Outcome::Refused;
        result.reason = std::string(method) + " reply has a member of the wrong type (" + error.what() + ")";
        m_log << Program << ": " << result.reason << std::endl;
        return result;
    }
    if (ok) {
        result.outcome = FarmCommand::Outcome::Accepted;
        return result;
    }
    switch (m_reader.requestFailed(method)) {
    case ControlClient::Failure::None:
        result.outcome = FarmCommand::Outcome::Refused;
        result.reason = std::string("the server refused ") + method;
        break;
    case ControlClient::Failure::NoReply:
    case ControlClient::Failure::ReplyTooSlow:
        result.outcome = FarmCommand::Outcome::TimedOut;
        result.reason = m_reader.lastFailure();
        break;
    default:
        result.outcome = FarmCommand::Outcome::Unreachable;
        result.reason = m_reader.lastFailure();
        break;
    }
    return result;
}

void FarmWatch::publishFarm(const FarmStatus& status)
{
    m_state.seq += 1;
    m_state.farm = status;
    m_hub.publish(m_state, makeEventFrame("farm", m_state.seq, farmStatusJson(status)));
}

std::int64_t FarmWatch::nextTry(SteadyTime nextReading) const
{
    const SteadyTime now = std::chrono::steady_clock::now();
    const SteadyTime next = std::max(nextReading, m_reader.backoff().nextAttempt());
    return unixSeconds()
        + std::chrono::duration_cast<std::chrono::seconds>(std::max(next - now, SteadyTime::duration::zero()))
              .count();
}
