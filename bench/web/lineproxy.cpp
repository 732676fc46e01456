#include "lineproxy.h"

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

#include "sseevent.h"

namespace {

// Input is not read from a side while this much waits for the other.
constexpr std::size_t MaxWaiting = std::size_t {4} * 1024 * 1024;
// Enough of a request line to hold its method.
constexpr std::size_t KeptRequestBytes = 512;

int loopbackSocket(int port, bool listening)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return -1;
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto* where = reinterpret_cast<const sockaddr*>(&address);
    const bool ok = listening ? ::bind(fd, where, sizeof address) == 0 && ::listen(fd, 16) == 0
                              : ::connect(fd, where, sizeof address) == 0;
    if (!ok) {
        ::close(fd);
        return -1;
    }
    return fd;
}

void makeNonBlocking(int fd)
{
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    const int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
}

std::string methodOf(const std::string& line)
{
    std::size_t at = line.find("\"method\"");
    if (at == std::string::npos)
        return "(none)";
    at += 8;
    while (at < line.size() && (line[at] == ' ' || line[at] == ':'))
        ++at;
    if (at >= line.size() || line[at] != '"')
        return "(none)";
    const std::size_t end = line.find('"', at + 1);
    return end == std::string::npos ? "(cut)" : line.substr(at + 1, end - at - 1);
}

} // namespace

struct LineProxy::Pair
{
    struct Mark
    {
        std::uint64_t position; // of a line's last byte, counted from the start of the direction
        std::size_t exchange;
    };

    // Index 0: towards the server (requests); 1: towards the client (replies).
    int fd[2] = {-1, -1};
    std::string out[2];
    std::uint64_t queued[2] = {0, 0};
    std::uint64_t sent[2] = {0, 0};
    std::deque<Mark> marks[2];
    std::string requestStart;
    std::deque<std::size_t> unanswered;

    ~Pair()
    {
        for (int socket : fd)
            if (socket >= 0)
                ::close(socket);
    }
};

LineProxy::LineProxy(int upstreamPort)
    : m_upstreamPort(upstreamPort)
{
}

LineProxy::~LineProxy()
{
    stop();
    if (m_listener >= 0)
        ::close(m_listener);
    for (int fd : m_wake)
        if (fd >= 0)
            ::close(fd);
}

bool LineProxy::start(std::string& error)
{
    m_listener = loopbackSocket(0, true);
    if (m_listener < 0 || ::pipe2(m_wake, O_CLOEXEC | O_NONBLOCK) != 0) {
        error = std::string("proxy: ") + std::generic_category().message(errno);
        return false;
    }
    sockaddr_in address {};
    socklen_t length = sizeof address;
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { run(); });
    return true;
}

void LineProxy::stop()
{
    if (!m_thread.joinable())
        return;
    const char byte = 0;
    (void)!::write(m_wake[1], &byte, 1);
    m_thread.join();
    m_pairs.clear();
}

std::vector<LineProxy::Exchange> LineProxy::exchanges() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_exchanges;
}

void LineProxy::run()
{
    std::vector<pollfd> polled;
    for (;;) {
        polled.clear();
        polled.push_back({m_wake[0], POLLIN, 0});
        polled.push_back({m_listener, POLLIN, 0});
        for (const auto& pair : m_pairs) {
            const bool roomToServer = pair->out[0].size() < MaxWaiting;
            const bool roomToClient = pair->out[1].size() < MaxWaiting;
            polled.push_back({pair->fd[1],
                static_cast<short>((roomToServer ? POLLIN : 0) | (pair->out[1].empty() ? 0 : POLLOUT)), 0});
            polled.push_back({pair->fd[0],
                static_cast<short>((roomToClient ? POLLIN : 0) | (pair->out[0].empty() ? 0 : POLLOUT)), 0});
        }
        if (::poll(polled.data(), polled.size(), 1000) < 0 && errno != EINTR)
            return;
        if (polled[0].revents)
            return;
        if (polled[1].revents & POLLIN)
            accept();
        std::size_t at = 2;
        for (auto it = m_pairs.begin(); it != m_pairs.end() && at < polled.size();) {
            Pair& pair = **it;
            bool keep = true;
            // The client's entry first, then the server's.
            for (int side = 0; side < 2 && keep; ++side) {
                const short revents = polled[at + side].revents;
                const bool client = side == 0;
                if (revents & (POLLIN | POLLHUP | POLLERR))
                    keep = pump(pair, client);
                if (keep && (revents & POLLOUT))
                    keep = flush(pair, client);
            }
            at += 2;
            it = keep ? std::next(it) : m_pairs.erase(it);
        }
    }
}

void LineProxy::accept()
{
    const int client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0)
        return;
    const int server = loopbackSocket(m_upstreamPort, false);
    if (server < 0) {
        ::close(client);
        return;
    }
    makeNonBlocking(client);
    makeNonBlocking(server);
    auto pair = std::make_unique<Pair>();
    pair->fd[0] = server;
    pair->fd[1] = client;
    m_pairs.push_back(std::move(pair));
}

// Reads what the client (or the server) sent and passes it on.
bool LineProxy::pump(Pair& pair, bool fromClient)
{
    const int direction = fromClient ? 0 : 1;
    const int source = pair.fd[fromClient ? 1 : 0];
    char block[65536];
    const ssize_t got = ::recv(source, block, sizeof block, 0);
    if (got == 0)
        return false;
    if (got < 0)
        return errno == EAGAIN || errno == EINTR;
    std::string& out = pair.out[direction];
    const std::size_t from = out.size();
    out.append(block, static_cast<std::size_t>(got));
    if (fromClient)
        noteRequests(pair, from);
    else
        noteReplies(pair, from);
    pair.queued[direction] += static_cast<std::uint64_t>(got);
    return flush(pair, !fromClient);
}

bool LineProxy::flush(Pair& pair, bool toClient)
{
    const int direction = toClient ? 1 : 0;
    std::string& out = pair.out[direction];
    while (!out.empty()) {
        const ssize_t put = ::send(pair.fd[direction], out.data(), out.size(), MSG_NOSIGNAL);
        if (put < 0)
            return errno == EAGAIN || errno == EINTR;
        out.erase(0, static_cast<std::size_t>(put));
        pair.sent[direction] += static_cast<std::uint64_t>(put);
    }
    std::deque<Pair::Mark>& marks = pair.marks[direction];
    if (marks.empty() || marks.front().position >= pair.sent[direction])
        return true;
    const std::int64_t now = SseEvent::monotonicNanoseconds();
    std::lock_guard<std::mutex> lock(m_mutex);
    while (!marks.empty() && marks.front().position < pair.sent[direction]) {
        Exchange& exchange = m_exchanges[marks.front().exchange];
        (direction == 0 ? exchange.requested : exchange.answered) = now;
        marks.pop_front();
    }
    return true;
}

void LineProxy::noteRequests(Pair& pair, std::size_t from)
{
    const std::string& out = pair.out[0];
    for (std::size_t at = from; at < out.size(); ++at) {
        if (out[at] != '\n') {
            if (pair.requestStart.size() < KeptRequestBytes)
                pair.requestStart += out[at];
            continue;
        }
        std::size_t index = 0;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            index = m_exchanges.size();
            m_exchanges.push_back({methodOf(pair.requestStart), 0, 0});
        }
        pair.requestStart.clear();
        pair.unanswered.push_back(index);
        pair.marks[0].push_back({pair.queued[0] + (at - from), index});
    }
}

void LineProxy::noteReplies(Pair& pair, std::size_t from)
{
    const std::string& out = pair.out[1];
    for (std::size_t at = from; at < out.size(); ++at) {
        at = out.find('\n', at);
        if (at == std::string::npos)
            return;
        // A line with no request before it (a refusal at connect) is passed on unmarked.
        if (pair.unanswered.empty())
            continue;
        pair.marks[1].push_back({pair.queued[1] + (at - from), pair.unanswered.front()});
        pair.unanswered.pop_front();
    }
}
