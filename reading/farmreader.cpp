#include "farmreader.h"

#include <cstdio>
#include <exception>
#include <netdb.h>
#include <ostream>

#include "serveraddress.h"
#include "wrongmember.h"

namespace {

// "4.5 s"
std::string secondsText(SteadyClock::duration duration)
{
    const double seconds = std::chrono::duration<double>(duration).count();
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", seconds > 0.0 ? seconds : 0.0);
    return text;
}

} // namespace

FarmReader::FarmReader(std::string server, std::ostream& log, std::string program)
    : m_server(std::move(server))
    , m_address(withDefaultPort(m_server))
    , m_log(log)
    , m_logPrefix(std::move(program) + ": ")
{
    m_client.init();
}

void FarmReader::read(FarmSnapshot& out, SteadyClock::time_point deadline, Backoff::Clock::time_point now)
{
    out.up = false;
    m_client.setDeadline(deadline);
    m_budget = deadline - SteadyClock::now();
    if (!m_client.isConnected() && !connect(now))
        return;

    const Json::Value batches = request("listBatches");
    if (batches.isNull())
        return;
    try {
        ControlClient::parseBatchList(batches, out.batches);
    } catch (const std::exception& error) {
        fail("listBatches reply: " + findWrongBatchMember(batches) + " has the wrong type (" + error.what()
            + ")");
        return;
    }

    const Json::Value nodes = request("listNodes");
    if (nodes.isNull())
        return;
    try {
        ControlClient::parseNodeList(nodes, out.nodes);
    } catch (const std::exception& error) {
        fail("listNodes reply: " + findWrongNodeMember(nodes) + " has the wrong type (" + error.what() + ")");
        return;
    }

    if (!m_wasUp)
        m_log << m_logPrefix << "reading " << m_address << std::endl;
    m_wasUp = true;
    m_lastFailure.clear();
    out.up = true;
}

ControlClient* FarmReader::connection(SteadyClock::time_point deadline, Backoff::Clock::time_point now)
{
    m_client.setDeadline(deadline);
    m_budget = deadline - SteadyClock::now();
    if (!m_client.isConnected() && !connect(now))
        return nullptr;
    return &m_client;
}

ControlClient::Failure FarmReader::requestFailed(const char* method)
{
    const ControlClient::Failure failure = m_client.failure();
    if (failure != ControlClient::Failure::None)
        logFailure(method);
    return failure;
}

bool FarmReader::connect(Backoff::Clock::time_point now)
{
    if (!m_backoff.mayTry(now))
        return false;
    if (m_client.connect(m_server, DefaultServerPort)) {
        m_backoff.succeeded();
        return true;
    }
    if (m_client.failure() == ControlClient::Failure::Interrupted)
        return false; // stopping: no wait, no word
    m_backoff.failed(now);
    const std::string next = "; next attempt in " + std::to_string(m_backoff.delay().count()) + " s";
    switch (m_client.failure()) {
    case ControlClient::Failure::CannotResolve:
        fail("cannot resolve " + m_address + ": " + ::gai_strerror(m_client.lookupError()) + next);
        break;
    case ControlClient::Failure::ConnectTimedOut:
        fail("could not connect to " + m_address + " within " + secondsText(m_budget) + next);
        break;
    default:
        fail("cannot connect to " + m_address + next);
        break;
    }
    return false;
}

Json::Value FarmReader::request(const char* method)
{
    // The raw result, so that a member of the wrong type can be named.
    Json::Value result = m_client.request(method, {}, false);
    if (!result.isNull())
        return result;
    if (m_client.failure() == ControlClient::Failure::None)
        fail(m_address + " answered " + method + " without a result");
    else
        logFailure(method);
    return {};
}

void FarmReader::logFailure(const char* method)
{
    switch (m_client.failure()) {
    case ControlClient::Failure::None:
        break;
    case ControlClient::Failure::NoReply:
        fail("no reply from " + m_address + " to " + method + " within " + secondsText(m_budget));
        break;
    case ControlClient::Failure::ReplyTooSlow:
        fail("the reply from " + m_address + " to " + method + " was still arriving after "
            + secondsText(m_budget) + " (slow link?)");
        break;
    case ControlClient::Failure::Interrupted:
        break;
    default:
        fail("connection to " + m_address + " lost during " + method);
        break;
    }
}

void FarmReader::fail(const std::string& text)
{
    m_wasUp = false;
    m_lastFailure = text;
    m_log << m_logPrefix << text << std::endl;
}
