#include "controlclient.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <locale>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sstream>
#include <string_view>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <json/reader.h>
#include <json/writer.h>

#include "clientconsole.h"
#include "hostlookup.h"
#include "paramjson.h"
#include "wideconsolebuffer.h"

namespace {

constexpr std::size_t ReadBlock = 4096;

// Set up before main() runs, so that whatever later swaps std::wcout's buffer
// and puts it back puts back this one.
[[maybe_unused]] const bool wideConsoleInstalled = (WideConsoleBuffer::installOnStandardOutput(), true);

} // namespace

ControlClient::ControlClient() = default;

ControlClient::~ControlClient()
{
    disconnect();
}

bool ControlClient::init()
{
    m_initialized = true;
    return true;
}

bool ControlClient::connect(const std::string& address, int port)
{
    if (m_socket != -1)
        disconnect();
    m_failure = Failure::None;
    m_lookupError = 0;

    std::string host = address;
    const std::string::size_type colon = host.find(':');
    if (colon != std::string::npos) {
        port = std::atoi(host.c_str() + colon + 1);
        host.erase(colon);
    }

    std::ostringstream portText;
    portText.imbue(std::locale::classic());
    portText << port;
    const std::string service = portText.str();

    HostLookup lookup;
    const HostLookup::Result looked = lookup.run(host, service, m_deadline, m_interrupt);
    switch (looked) {
    case HostLookup::Found:
        break;
    case HostLookup::Failed:
        m_failure = Failure::CannotResolve;
        m_lookupError = lookup.errorCode();
        // The wide stream, as ever; its buffer (above) keeps stdout narrow.
        ClientConsole::wide() << ::gai_strerror(lookup.errorCode()) << std::endl;
        return false;
    case HostLookup::TimedOut:
    case HostLookup::Interrupted:
        m_failure = looked == HostLookup::Interrupted ? Failure::Interrupted : Failure::ConnectTimedOut;
        ClientConsole::narrow() << "can't connect to " << address << ":" << service << std::endl;
        return false;
    }

    for (const addrinfo* entry = lookup.addresses(); entry; entry = entry->ai_next) {
        const int fd = connectOne(entry);
        if (fd == -1) {
            if (m_failure == Failure::CannotConnect)
                continue;
            break; // out of time, or interrupted: the other addresses wait the same
        }
        m_socket = fd;
        ClientConsole::narrow() << "connected to "
                                << peerText(entry->ai_addr, entry->ai_addrlen, address, service) << std::endl;
        break;
    }

    if (m_socket == -1) {
        if (m_failure == Failure::None)
            m_failure = Failure::CannotConnect;
        ClientConsole::narrow() << "can't connect to " << address << ":" << service << std::endl;
        return false;
    }
    m_failure = Failure::None;

    // Results ignored: a system without one of these still connects.
    const int on = 1;
    ::setsockopt(m_socket, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof(on));
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_KEEPIDLE, &KeepAliveIdleSeconds, sizeof(KeepAliveIdleSeconds));
    ::setsockopt(
        m_socket, IPPROTO_TCP, TCP_KEEPINTVL, &KeepAliveIntervalSeconds, sizeof(KeepAliveIntervalSeconds));
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_KEEPCNT, &KeepAliveProbes, sizeof(KeepAliveProbes));
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_USER_TIMEOUT, &UserTimeoutMs, sizeof(UserTimeoutMs));

    m_peerName = host + ":" + service;
    m_receiveBuffer.clear();
    return true;
}

int ControlClient::connectOne(const addrinfo* entry)
{
    if (m_interrupt.isRaised()) {
        m_failure = Failure::Interrupted; // no new attempt once interrupted
        return -1;
    }
    m_failure = Failure::CannotConnect;
    const int fd
        = ::socket(entry->ai_family, entry->ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, entry->ai_protocol);
    if (fd == -1)
        return -1;
    // Non-blocking, so that the wait for the handshake can end at the
    // deadline or an interruption; without either it waits as long as the
    // system tries.
    if (::connect(fd, entry->ai_addr, entry->ai_addrlen) != 0) {
        if (errno != EINPROGRESS) {
            ::close(fd);
            return -1;
        }
        const WaitResult waited = waitForDescriptor(fd, POLLOUT, m_deadline, m_interrupt);
        int error = 0;
        socklen_t length = sizeof error;
        if (waited != WaitResult::Ready || ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0
            || error != 0) {
            ::close(fd);
            if (waited == WaitResult::TimedOut)
                m_failure = Failure::ConnectTimedOut;
            else if (waited == WaitResult::Interrupted)
                m_failure = Failure::Interrupted;
            return -1;
        }
    }
    // Reading and writing block, as ever; the deadline is kept by waiting first.
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    m_failure = Failure::None;
    return fd;
}

std::string ControlClient::peerText(
    const sockaddr* peer, socklen_t length, const std::string& address, const std::string& service)
{
    char numericHost[1025];
    char numericService[32];
    if (::getnameinfo(peer, length, numericHost, sizeof(numericHost), numericService, sizeof(numericService),
            NI_NUMERICHOST | NI_NUMERICSERV)
        == 0)
        return std::string(numericHost) + ":" + numericService;
    // the address as it was given, port suffix and all
    return address + ":" + service;
}

void ControlClient::disconnect()
{
    if (m_socket == -1)
        return;
    ::close(m_socket);
    m_socket = -1;
    m_receiveBuffer.clear();
    ClientConsole::narrow() << "disconnected from server" << std::endl;
}

bool ControlClient::send(const Json::Value& message)
{
    if (m_socket == -1)
        return false;
    if (message.empty())
        return false;

    Json::FastWriter writer;
    const std::string text = writer.write(message);

    // Under a deadline a server that reads nothing may not hold the send.
    if (m_deadline) {
        const auto left
            = std::chrono::duration_cast<std::chrono::microseconds>(*m_deadline - SteadyClock::now());
        const long long micros = std::max<long long>(left.count(), 1000);
        const timeval limit {
            static_cast<time_t>(micros / 1000000), static_cast<suseconds_t>(micros % 1000000)};
        ::setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    }
    // One send for the whole line; a short write counts as a lost connection.
    // MSG_NOSIGNAL: a vanished server must not raise SIGPIPE.
    const ssize_t sent = ::send(m_socket, text.data(), text.size(), MSG_NOSIGNAL);
    const int sendError = errno;
    if (m_deadline) {
        const timeval none {};
        ::setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &none, sizeof none);
    }
    if (sent < 0 || static_cast<std::size_t>(sent) != text.size()) {
        // Cut short by the time limit: the server took too little in time.
        if (m_deadline && (sent >= 0 || sendError == EAGAIN || sendError == EWOULDBLOCK))
            m_failure = Failure::NoReply;
        disconnect();
        return false;
    }

    if (m_logTraffic)
        ClientConsole::narrow() << "[-> " << m_peerName << "] " << text << std::flush;
    return true;
}

Json::Value ControlClient::receive(int timeoutMs)
{
    if (m_socket == -1)
        return {};

    // The wait is made even when a whole line is already buffered.
    if (timeoutMs != -1) {
        if (timeoutMs < 0)
            return {}; // refused by the wait, as an invalid time-out
        pollfd descriptor {m_socket, POLLIN, 0};
        if (::poll(&descriptor, 1, timeoutMs) < 1)
            return {};
    }
    return nextMessage(false);
}

Json::Value ControlClient::nextMessage(bool bounded)
{
    std::size_t searched = 0;
    for (;;) {
        const char* start = m_receiveBuffer.data();
        const std::size_t available = m_receiveBuffer.size();
        const void* found
            = available > searched ? std::memchr(start + searched, '\n', available - searched) : nullptr;
        if (!found) {
            // Only the bytes of the new read are searched next time round.
            searched = available;
            if (bounded) {
                const WaitResult waited = waitForDescriptor(m_socket, POLLIN, m_deadline, m_interrupt);
                if (waited == WaitResult::Interrupted) {
                    m_failure = Failure::Interrupted;
                    return {};
                }
                if (waited == WaitResult::TimedOut) {
                    // Bytes of an unfinished line: the reply has begun.
                    m_failure = available > 0 ? Failure::ReplyTooSlow : Failure::NoReply;
                    return {};
                }
            }
            char* space = m_receiveBuffer.reserve(ReadBlock);
            const ssize_t received = ::recv(m_socket, space, ReadBlock, 0);
            if (received < 1) {
                disconnect();
                return {};
            }
            m_receiveBuffer.commit(static_cast<std::size_t>(received));
            continue;
        }

        const std::size_t length = static_cast<const char*>(found) - start;
        const std::string_view text(start, length);
        if (m_logTraffic)
            ClientConsole::narrow() << "[<- " << m_peerName << "] " << text << std::endl;

        // The bytes stay readable after consume() until the buffer is next grown.
        m_receiveBuffer.consume(length + 1);
        searched = 0;

        Json::Reader reader;
        Json::Value message;
        try {
            if (reader.parse(text.data(), text.data() + text.size(), message, true))
                return message;
            ClientConsole::narrow() << reader.getFormattedErrorMessages() << ": " << text << std::endl;
        } catch (const Json::Exception& error) {
            // The reader gives up on nesting deeper than its stack limit by
            // throwing; for us that is one more line that is not a message.
            ClientConsole::narrow() << error.what() << ": " << text << std::endl;
        }
    }
}

Json::Value ControlClient::request(const char* method, Json::Value params, bool withParams)
{
    Json::Value envelope(Json::objectValue);
    envelope["method"] = method;
    if (withParams)
        envelope["params"] = std::move(params);
    envelope["id"] = m_nextId;
    // Wraps as a signed 32-bit counter, without the overflow.
    m_nextId = static_cast<int>(static_cast<unsigned>(m_nextId) + 1u);

    m_failure = Failure::None;
    m_failedRequest.clear();
    const bool sent = send(envelope);
    Json::Value reply;
    if (!m_deadline) {
        reply = receive(-1);
    } else if (sent) {
        reply = nextMessage(true);
        if (m_failure != Failure::None) {
            // A reply that comes later would be taken for the next request's.
            disconnect();
        }
    }
    if (m_failure == Failure::None && m_socket == -1)
        m_failure = Failure::ConnectionLost;
    if (m_failure != Failure::None)
        m_failedRequest = method;
    if (reply.empty())
        return {};
    return std::move(reply["result"]);
}

bool ControlClient::simpleRequest(const char* method, const char* idKey, std::uint32_t id)
{
    Json::Value params(Json::objectValue);
    params[idKey] = id;
    return !request(method, std::move(params), true).isNull();
}

bool ControlClient::listBatches(BatchList& out)
{
    const Json::Value result = request("listBatches", {}, false);
    if (result.isNull())
        return false;
    parseBatchList(result, out);
    return true;
}

bool ControlClient::listNodes(NodeList& out)
{
    const Json::Value result = request("listNodes", {}, false);
    if (result.isNull())
        return false;
    parseNodeList(result, out);
    return true;
}

bool ControlClient::getBatchStatus(std::uint32_t batchId, BatchStatus& out)
{
    Json::Value params(Json::objectValue);
    params["batch_id"] = batchId;
    const Json::Value result = request("getBatchStatus", std::move(params), true);
    if (result.isNull())
        return false;
    parseBatchStatus(result, out);
    return true;
}

bool ControlClient::pauseBatch(std::uint32_t batchId)
{
    return simpleRequest("pauseBatch", "batch_id", batchId);
}

bool ControlClient::resumeBatch(std::uint32_t batchId)
{
    return simpleRequest("resumeBatch", "batch_id", batchId);
}

bool ControlClient::abortBatch(std::uint32_t batchId)
{
    return simpleRequest("abortBatch", "batch_id", batchId);
}

bool ControlClient::pauseNode(std::uint32_t nodeId)
{
    return simpleRequest("pauseNode", "node_id", nodeId);
}

bool ControlClient::resumeNode(std::uint32_t nodeId)
{
    return simpleRequest("resumeNode", "node_id", nodeId);
}

bool ControlClient::abortNode(std::uint32_t nodeId)
{
    return simpleRequest("abortNode", "node_id", nodeId);
}

bool ControlClient::stopNode(std::uint32_t nodeId, const std::function<bool(StopStep)>& failed)
{
    const bool paused = pauseNode(nodeId);
    if (!paused && !failed(StopStep::Pause))
        return false;
    if (abortNode(nodeId))
        return paused;
    failed(StopStep::Abort);
    return false;
}

bool ControlClient::setBatchPriority(std::uint32_t batchId, int priority)
{
    Json::Value params(Json::objectValue);
    params["batch_id"] = batchId;
    params["priority"] = priority;
    return !request("setBatchPriority", std::move(params), true).isNull();
}

bool ControlClient::setNodePriority(std::uint32_t nodeId, int priority)
{
    Json::Value params(Json::objectValue);
    params["node_id"] = nodeId;
    params["priority"] = priority;
    return !request("setNodePriority", std::move(params), true).isNull();
}

std::uint32_t ControlClient::createBatch(const std::string& path, const std::vector<TaskRequest>& tasks)
{
    Json::Value taskArray(Json::arrayValue);
    for (const TaskRequest& task : tasks) {
        Json::Value object(Json::objectValue);
        object["name"] = task.name;
        object["params"] = paramsToJson(task.params);
        if (!task.chunks.empty()) {
            Json::Value chunks(Json::arrayValue);
            for (int chunk : task.chunks)
                chunks.append(chunk);
            object["chunks"] = std::move(chunks);
        }
        if (!task.frames.empty()) {
            Json::Value frames(Json::arrayValue);
            for (const auto& [key, numbers] : task.frames) {
                for (std::uint32_t frame : numbers) {
                    Json::Value pair(Json::arrayValue);
                    pair.append(key);
                    pair.append(frame);
                    frames.append(std::move(pair));
                }
            }
            object["frames"] = std::move(frames);
        }
        taskArray.append(std::move(object));
    }

    Json::Value params(Json::objectValue);
    params["path"] = path;
    params["tasks"] = std::move(taskArray);
    const Json::Value result = request("createBatch", std::move(params), true);
    if (result.isNull())
        return NoId;
    return result.asUInt();
}

std::uint32_t ControlClient::findBatch(const std::string& path)
{
    Json::Value params(Json::objectValue);
    params["path"] = path;
    const Json::Value result = request("findBatch", std::move(params), true);
    if (result.isNull())
        return NoId;
    return result.asUInt();
}
