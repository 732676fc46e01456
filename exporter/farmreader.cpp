#include "farmreader.h"

#include <exception>
#include <fcntl.h>
#include <ostream>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "wrongmember.h"

FarmReader::FarmReader(std::string server, int timeoutSeconds, std::ostream& log)
    : m_server(std::move(server))
    , m_address(m_server.find(':') == std::string::npos ? m_server + ":5840" : m_server)
    , m_timeoutSeconds(timeoutSeconds)
    , m_log(log)
{
    m_client.init();
}

FarmReader::~FarmReader()
{
    dropConnection();
}

void FarmReader::read(FarmSnapshot& out, Backoff::Clock::time_point now)
{
    out.up = false;
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
        m_log << "korvane-exporter: reading " << m_address << std::endl;
    m_wasUp = true;
    out.up = true;
}

void FarmReader::interrupt()
{
    std::lock_guard<std::mutex> lock(m_socketMutex);
    if (m_socketCopy != -1)
        ::shutdown(m_socketCopy, SHUT_RDWR);
}

bool FarmReader::connect(Backoff::Clock::time_point now)
{
    if (!m_backoff.mayTry(now))
        return false;
    if (!m_client.connect(m_server, 5840)) {
        m_backoff.failed(now);
        fail("cannot connect to " + m_address + "; next attempt in "
            + std::to_string(m_backoff.delay().count()) + " s");
        return false;
    }
    m_backoff.succeeded();

    // A server that goes quiet in the middle of a reply must not hold the scrape forever.
    const int socket = m_client.socketDescriptor();
    timeval limit {};
    limit.tv_sec = m_timeoutSeconds;
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);

    std::lock_guard<std::mutex> lock(m_socketMutex);
    m_socketCopy = ::fcntl(socket, F_DUPFD_CLOEXEC, 0);
    return true;
}

void FarmReader::dropConnection()
{
    m_client.disconnect();
    std::lock_guard<std::mutex> lock(m_socketMutex);
    if (m_socketCopy != -1)
        ::close(m_socketCopy);
    m_socketCopy = -1;
}

Json::Value FarmReader::request(const char* method)
{
    // The envelope of the client library's own requests; the raw result is
    // kept so that a member of the wrong type can be named.
    Json::Value envelope(Json::objectValue);
    envelope["method"] = method;
    envelope["id"] = m_nextId;
    m_nextId = static_cast<int>(static_cast<unsigned>(m_nextId) + 1u);

    m_client.send(envelope);
    Json::Value reply = m_client.receive(-1);
    if (!m_client.isConnected()) {
        fail("connection to " + m_address + " lost during " + method);
        dropConnection();
        return {};
    }
    if (!reply.isObject() || reply["result"].isNull()) {
        fail(m_address + " answered " + method + " without a result");
        return {};
    }
    return std::move(reply["result"]);
}

void FarmReader::fail(const std::string& text)
{
    m_wasUp = false;
    m_log << "korvane-exporter: " << text << std::endl;
}
