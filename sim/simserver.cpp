#include "simserver.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace {

using Clock = Connection::Clock;

// Ticks made up at once after the loop was held up; the rest are dropped.
constexpr long long MaxCatchUpTicks = 10;
// Requests answered per connection and round; the rest wait for the next
// round, after every other connection has had its turn.
constexpr int RequestsPerRound = 64;

bool blank(const std::string& line)
{
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

} // namespace

SimServer::SimServer(Farm& farm, const ServerConfig& config)
    : m_farm(farm)
    , m_config(config)
    , m_handler(farm)
{
    int pipeEnds[2];
    if (::pipe2(pipeEnds, O_NONBLOCK | O_CLOEXEC) == 0) {
        m_wakeRead = pipeEnds[0];
        m_wakeWrite = pipeEnds[1];
    }
}

SimServer::~SimServer()
{
    m_connections.clear();
    if (m_listener != -1)
        ::close(m_listener);
    if (m_wakeRead != -1)
        ::close(m_wakeRead);
    if (m_wakeWrite != -1)
        ::close(m_wakeWrite);
}

bool SimServer::listen(const std::string& address, std::uint16_t port, std::string& error)
{
    sockaddr_in local {};
    local.sin_family = AF_INET;
    local.sin_port = htons(port);
    if (::inet_pton(AF_INET, address.c_str(), &local.sin_addr) != 1) {
        error = "not an IPv4 address: " + address;
        return false;
    }
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (m_listener == -1) {
        error = "socket: " + std::generic_category().message(errno);
        return false;
    }
    const int on = 1;
    ::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0
        || ::listen(m_listener, SOMAXCONN) != 0) {
        error = "cannot listen on " + address + ":" + std::to_string(port) + ": "
            + std::generic_category().message(errno);
        ::close(m_listener);
        m_listener = -1;
        return false;
    }
    socklen_t length = sizeof local;
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&local), &length);
    m_port = ntohs(local.sin_port);
    m_loopbackOnly = (ntohl(local.sin_addr.s_addr) >> 24) == 127;
    return true;
}

void SimServer::stop()
{
    m_stop = true;
    const char byte = 1;
    if (m_wakeWrite != -1) {
        const ssize_t ignored = ::write(m_wakeWrite, &byte, 1);
        (void)ignored;
    }
}

void SimServer::run()
{
    m_start = Clock::now();
    m_ticks = 0;
    std::vector<pollfd> polled;
    while (!m_stop) {
        const Clock::time_point now = Clock::now();
        Clock::time_point wake = now + std::chrono::seconds(1);
        if (m_config.tickMs > 0)
            wake = std::min(wake, m_start + std::chrono::milliseconds(m_config.tickMs * (m_ticks + 1)));

        polled.clear();
        polled.push_back({m_wakeRead, POLLIN, 0});
        polled.push_back({m_listener, POLLIN, 0});
        for (const auto& connection : m_connections) {
            short events = connection->wantsInput() ? POLLIN : 0;
            if (connection->hasLine() && !connection->closing() && !connection->outputFull())
                wake = now; // requests left over from the last round
            Clock::time_point due;
            if (connection->nextDue(due)) {
                if (due <= now)
                    events |= POLLOUT;
                else
                    wake = std::min(wake, due);
            }
            polled.push_back({connection->socket(), events, 0});
        }
        const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(wake - now).count() + 1;
        const int ready
            = ::poll(polled.data(), polled.size(), static_cast<int>(std::max<long long>(0, wait)));
        if (ready < 0 && errno != EINTR)
            break;
        if (m_stop)
            break;
        if (ready > 0 && (polled[0].revents & POLLIN)) {
            char drain[64];
            while (::read(m_wakeRead, drain, sizeof drain) > 0) { }
        }

        // Connections accepted now are served from the next round on.
        const std::size_t served = m_connections.size();
        std::vector<bool> keep(served, true);
        for (std::size_t i = 0; i < served; ++i)
            keep[i] = serve(*m_connections[i], ready > 0 ? polled[i + 2].revents : short(0));
        if (ready > 0 && (polled[1].revents & POLLIN))
            acceptAll();
        for (std::size_t i = served; i-- > 0;) {
            if (!keep[i])
                m_connections.erase(m_connections.begin() + static_cast<std::ptrdiff_t>(i));
        }
        tickDue();
    }
}

void SimServer::acceptAll()
{
    for (;;) {
        const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (socket == -1) {
            if (errno == EINTR || errno == ECONNABORTED)
                continue;
            return;
        }
        if (m_connections.size() >= m_config.maxClients) {
            refuse(socket);
            continue;
        }
        const int on = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        m_connections.push_back(std::make_unique<Connection>(socket, m_config.faults, m_config.maxLineBytes));
        if (m_connections.back()->done(Clock::now()))
            m_connections.pop_back(); // closed after zero replies
    }
}

void SimServer::refuse(int socket)
{
    const std::string line = m_handler.errorLine(RpcHandler::ServerBusy,
        "Server busy: " + std::to_string(m_config.maxClients) + " clients connected, the most it serves");
    // A fresh socket's buffer takes one line; what does not fit is lost, not waited for.
    const ssize_t sent = ::send(socket, line.data(), line.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    (void)sent;
    ::close(socket);
}

bool SimServer::serve(Connection& connection, short events)
{
    if (events & (POLLERR | POLLNVAL))
        return false;
    if (events & (POLLIN | POLLHUP)) {
        if (!connection.readAvailable())
            return false;
    }
    const Clock::time_point now = Clock::now();
    std::string line;
    for (int taken = 0; taken < RequestsPerRound && !connection.closing() && !connection.outputFull()
         && connection.takeLine(line);
         ++taken) {
        if (blank(line))
            continue;
        if (!connection.answerRequest())
            continue;
        connection.queueReply(m_handler.handleLine(line), now);
    }
    if (connection.lineTooLong() && !connection.closing())
        connection.queueLastLine(
            m_handler.errorLine(RpcHandler::InvalidRequest,
                "Invalid Request: line longer than " + std::to_string(m_config.maxLineBytes) + " bytes"),
            now);
    if (!connection.writeDue(now))
        return false;
    return !connection.done(now);
}

void SimServer::tickDue()
{
    if (m_config.tickMs <= 0)
        return;
    const long long elapsedMs
        = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start).count();
    const long long due = elapsedMs / m_config.tickMs;
    const double seconds = m_config.tickMs / 1000.0 * m_config.speed;
    for (long long done = 0; m_ticks < due && done < MaxCatchUpTicks; ++done, ++m_ticks)
        m_farm.tick(seconds);
    m_ticks = std::max(m_ticks, due);
}
