#include "streamfleet.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

#include "sseevent.h"

namespace {

constexpr const char* Request
    = "GET /api/v1/events HTTP/1.1\r\nHost: 127.0.0.1\r\nAccept: text/event-stream\r\n\r\n";
// Connections under way at once, each with its snapshot to read.
constexpr std::size_t ConnectWindow = 16;
constexpr int SlowReceiveBuffer = 2048;

int connectTo(int port, int receiveBuffer)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return -1;
    // Before connecting, so that the window offered stays small.
    if (receiveBuffer > 0)
        ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0
        && errno != EINPROGRESS) {
        ::close(fd);
        return -1;
    }
    return fd;
}

} // namespace

struct StreamFleet::Stream
{
    explicit Stream(bool keepData)
        : parser(keepData)
    {
    }
    ~Stream()
    {
        if (fd >= 0)
            ::close(fd);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    int fd = -1;
    bool sent = false;
    bool started = false;
    EventStreamParser parser;
};

StreamFleet::StreamFleet(int port)
    : m_port(port)
    , m_poller(epoll_create1(EPOLL_CLOEXEC))
    , m_buffer(1 << 20)
{
}

StreamFleet::~StreamFleet()
{
    closeAll();
    ::close(m_poller);
}

bool StreamFleet::open(std::size_t count, std::int64_t deadline, std::string& error)
{
    const std::size_t target = m_streams.size() + count;
    while (m_started < target) {
        while (m_streams.size() < target && m_streams.size() - m_started < ConnectWindow) {
            auto stream = std::make_unique<Stream>(m_streams.empty());
            stream->fd = connectTo(m_port, 0);
            epoll_event interest {};
            interest.events = EPOLLOUT;
            interest.data.u64 = m_streams.size();
            if (stream->fd < 0 || epoll_ctl(m_poller, EPOLL_CTL_ADD, stream->fd, &interest) < 0) {
                error = std::string("opening a stream: ") + std::generic_category().message(errno);
                return false;
            }
            m_streams.push_back(std::move(stream));
        }
        if (SseEvent::monotonicNanoseconds() > deadline) {
            error = "out of time with " + std::to_string(m_started) + " of " + std::to_string(target)
                + " streams started";
            return false;
        }
        if (!readOnce(100, error))
            return false;
    }
    return true;
}

bool StreamFleet::openSlow(std::string& error)
{
    m_slow = connectTo(m_port, SlowReceiveBuffer);
    const std::size_t length = std::strlen(Request);
    for (int tries = 0; m_slow >= 0 && tries < 500; ++tries) {
        if (::send(m_slow, Request, length, MSG_NOSIGNAL) == static_cast<ssize_t>(length)) {
            m_slowEnd = "open";
            m_nextSlowRead = SseEvent::monotonicNanoseconds();
            return true;
        }
        usleep(10000);
    }
    error = "the slow reader could not send its request";
    return false;
}

bool StreamFleet::pump(std::int64_t until, std::string& error)
{
    for (;;) {
        const std::int64_t now = SseEvent::monotonicNanoseconds();
        readSlow(now);
        if (now >= until)
            return true;
        const std::int64_t left = (until - now) / 1000000;
        if (!readOnce(static_cast<int>(std::min<std::int64_t>(left + 1, 100)), error))
            return false;
    }
}

void StreamFleet::closeAll()
{
    m_streams.clear();
    m_started = 0;
    if (m_slow >= 0) {
        ::close(m_slow);
        m_slow = -1;
        m_slowEnd = "closed by the benchmark";
    }
}

void StreamFleet::clear()
{
    m_deltas.clear();
    m_kept.clear();
}

bool StreamFleet::readOnce(int timeoutMs, std::string& error)
{
    epoll_event ready[256];
    const int count = epoll_wait(m_poller, ready, 256, timeoutMs);
    if (count < 0 && errno != EINTR) {
        error = std::string("epoll_wait: ") + std::generic_category().message(errno);
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (!serve(static_cast<std::size_t>(ready[i].data.u64), ready[i].events, error))
            return false;
    }
    return true;
}

bool StreamFleet::serve(std::size_t index, std::uint32_t events, std::string& error)
{
    Stream& stream = *m_streams[index];
    if (stream.fd < 0)
        return true;
    if (!stream.sent) {
        int failure = 0;
        socklen_t length = sizeof failure;
        getsockopt(stream.fd, SOL_SOCKET, SO_ERROR, &failure, &length);
        const std::size_t size = std::strlen(Request);
        if (failure != 0 || !(events & EPOLLOUT)
            || ::send(stream.fd, Request, size, MSG_NOSIGNAL) != static_cast<ssize_t>(size)) {
            error = std::string("stream request: ")
                + std::generic_category().message(failure ? failure : errno);
            return false;
        }
        stream.sent = true;
        epoll_event interest {};
        interest.events = EPOLLIN;
        interest.data.u64 = index;
        epoll_ctl(m_poller, EPOLL_CTL_MOD, stream.fd, &interest);
        return true;
    }
    const ssize_t got = ::recv(stream.fd, m_buffer.data(), m_buffer.size(), 0);
    const std::int64_t now = SseEvent::monotonicNanoseconds();
    if (got <= 0) {
        if (got < 0 && (errno == EAGAIN || errno == EINTR))
            return true;
        ::close(stream.fd);
        stream.fd = -1;
        ++m_closedByServer;
        error = "stream " + std::to_string(index) + " closed by the server";
        return false;
    }
    m_events.clear();
    if (!stream.parser.feed(m_buffer.data(), static_cast<std::size_t>(got), now, m_events)) {
        error = "stream " + std::to_string(index) + " is not an event stream";
        return false;
    }
    for (EventStreamParser::Event& event : m_events) {
        if (!stream.started) {
            stream.started = true;
            ++m_started;
        }
        if (event.type == "delta") {
            Fanout& fanout = m_deltas[event.id];
            if (fanout.streams == 0 || event.firstByte < fanout.firstByte)
                fanout.firstByte = event.firstByte;
            if (fanout.streams == 0 || event.lastByte > fanout.lastByte)
                fanout.lastByte = event.lastByte;
            fanout.dataBytes = event.dataBytes;
            ++fanout.streams;
        }
        if (index == 0)
            m_kept.push_back(std::move(event));
    }
    return true;
}

void StreamFleet::readSlow(std::int64_t now)
{
    if (m_slow < 0 || now < m_nextSlowRead)
        return;
    char byte = 0;
    const ssize_t got = ::recv(m_slow, &byte, 1, MSG_DONTWAIT);
    if (got == 1) {
        ++m_slowBytes;
    } else if (got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
        m_slowEnd = got == 0 ? "closed by the server" : std::generic_category().message(errno);
        ::close(m_slow);
        m_slow = -1;
    }
    m_nextSlowRead += 1000000000;
}
