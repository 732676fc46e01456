// Load for the fan-out servers: opens --streams event streams on loopback,
// waits until all have their response header, then times --events events on
// every stream, from the server's stamp at publish to the read that brought
// the event's last byte. Prints one row: latencies, and the server's memory,
// CPU and threads (--pid). With --slow, one more stream, with a small receive
// buffer, reads one byte a second; it is not counted in the latencies.
//   sse_load --port 18081 --pid 1234 --streams 500 --events 30 --label httplib
#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <string>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "procstats.h"
#include "sseevent.h"
#include "streamreader.h"

namespace {

struct Options
{
    int port = 18080;
    pid_t pid = 0;
    std::size_t streams = 500;
    std::uint64_t events = 30;
    bool slow = false;
    bool header = false;
    std::string label = "server";
    // Beyond the events themselves, for connecting and for late events.
    int graceSeconds = 60;
};

struct Stream
{
    int fd = -1;
    bool sent = false;
    bool closed = false;
    std::uint64_t lastSequence = 0;
    StreamReader reader;
};

constexpr const char* Request
    = "GET /api/v1/events HTTP/1.1\r\nHost: 127.0.0.1\r\nAccept: text/event-stream\r\n\r\n";
// Connections under way at once: one server listens with a backlog of a few.
constexpr std::size_t ConnectWindow = 16;

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "sse_load: %s: %s\n", what, std::generic_category().message(errno).c_str());
    std::exit(1); // NOLINT(concurrency-mt-unsafe): the load has one thread
}

Options parse(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--slow") {
            options.slow = true;
            continue;
        }
        if (name == "--header") {
            options.header = true;
            continue;
        }
        if (i + 1 >= argc) {
            std::fprintf(stderr, "sse_load: %s wants a value\n", name.c_str());
            std::exit(2); // NOLINT(concurrency-mt-unsafe): reading the command line, before any thread
        }
        const char* value = argv[++i];
        if (name == "--port")
            options.port = std::atoi(value);
        else if (name == "--pid")
            options.pid = std::atoi(value);
        else if (name == "--streams")
            options.streams = std::strtoul(value, nullptr, 10);
        else if (name == "--events")
            options.events = std::strtoull(value, nullptr, 10);
        else if (name == "--label")
            options.label = value;
        else if (name == "--grace")
            options.graceSeconds = std::atoi(value);
        else {
            std::fprintf(stderr, "sse_load: unknown option %s\n", name.c_str());
            std::exit(2); // NOLINT(concurrency-mt-unsafe): reading the command line, before any thread
        }
    }
    return options;
}

int connectTo(int port, int receiveBuffer)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0)
        fail("socket");
    // Before connecting, so that the window offered stays small.
    if (receiveBuffer > 0)
        ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0
        && errno != EINPROGRESS)
        fail("connect");
    return fd;
}

double seconds(std::int64_t nanoseconds)
{
    return static_cast<double>(nanoseconds) / 1e9;
}

// Nearest rank, in milliseconds.
double percentile(const std::vector<std::int64_t>& sorted, double fraction)
{
    if (sorted.empty())
        return NAN;
    const std::size_t rank
        = static_cast<std::size_t>(std::ceil(fraction * static_cast<double>(sorted.size())));
    return static_cast<double>(sorted[std::max<std::size_t>(rank, 1) - 1]) / 1e6;
}

double ownCpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = parse(argc, argv);
    if (options.header) {
        std::printf("%-22s %7s %7s %8s %8s %8s %8s %8s %9s %9s %7s %7s %9s %8s\n", "run", "streams",
            "samples", "missing", "p50 ms", "p90 ms", "p99 ms", "max ms", "RSS MiB", "peak MiB", "CPU %",
            "threads", "slow B", "load CPU");
        return 0;
    }
    if (options.pid <= 0) {
        std::fprintf(stderr, "sse_load: --pid of the server is needed\n");
        return 2;
    }
    const ProcStats server(options.pid);

    const int poller = epoll_create1(EPOLL_CLOEXEC);
    if (poller < 0)
        fail("epoll_create1");
    std::vector<std::unique_ptr<Stream>> streams;
    for (std::size_t i = 0; i < options.streams; ++i)
        streams.push_back(std::make_unique<Stream>());
    std::size_t opened = 0;
    std::size_t ready = 0;
    auto open = [&](std::size_t index, int receiveBuffer) {
        Stream& stream = *streams[index];
        stream.fd = connectTo(options.port, receiveBuffer);
        epoll_event interest {};
        interest.events = EPOLLOUT;
        interest.data.u64 = index;
        if (epoll_ctl(poller, EPOLL_CTL_ADD, stream.fd, &interest) < 0)
            fail("epoll_ctl");
    };

    // The slow reader's socket is outside the table and outside epoll once its request is out.
    int slow = -1;
    std::size_t slowBytes = 0;
    std::string slowEnd = "open";
    if (options.slow) {
        slow = connectTo(options.port, 2048);
        for (int tries = 0;; ++tries) {
            const ssize_t sent = ::send(slow, Request, std::strlen(Request), MSG_NOSIGNAL);
            if (sent == static_cast<ssize_t>(std::strlen(Request)))
                break;
            if (tries > 500)
                fail("slow reader's request");
            usleep(10000);
        }
    }

    const std::int64_t started = SseEvent::monotonicNanoseconds();
    const std::int64_t deadline
        = started + static_cast<std::int64_t>(options.graceSeconds + options.events) * 1000000000;
    std::int64_t nextSlowRead = started;
    std::uint64_t seenSequence = 0;
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    std::int64_t measureStart = 0;
    double serverCpuStart = 0.0;
    double ownCpuStart = 0.0;
    long peakResidentKiB = 0;
    std::int64_t nextSample = 0;
    std::size_t closed = 0;
    std::size_t done = 0;
    std::vector<std::int64_t> latencies;
    latencies.reserve(options.streams * options.events);
    // The same again by event, to tell one slow event from a slow run.
    std::vector<std::vector<std::int64_t>> byEvent(options.events);
    std::vector<StreamReader::Event> events;
    std::vector<char> buffer(1 << 20);
    std::vector<epoll_event> ready_events(256);

    while (done + closed < options.streams) {
        while (opened < options.streams && opened - ready < ConnectWindow)
            open(opened++, 0);
        std::int64_t now = SseEvent::monotonicNanoseconds();
        if (now > deadline) {
            std::fprintf(stderr, "sse_load: %s: out of time with %zu of %zu streams ready, %zu done\n",
                options.label.c_str(), ready, options.streams, done);
            break;
        }
        if (slow >= 0 && now >= nextSlowRead) {
            char byte = 0;
            const ssize_t got = ::recv(slow, &byte, 1, MSG_DONTWAIT);
            if (got == 1) {
                ++slowBytes;
            } else if (got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
                slowEnd = got == 0 ? "closed by the server" : std::generic_category().message(errno);
                ::close(slow);
                slow = -1;
            }
            nextSlowRead += 1000000000;
        }
        if (measureStart > 0 && now >= nextSample) {
            peakResidentKiB = std::max(peakResidentKiB, server.residentKiB());
            nextSample = now + 1000000000;
        }
        const int count = epoll_wait(poller, ready_events.data(), static_cast<int>(ready_events.size()), 100);
        if (count < 0 && errno != EINTR)
            fail("epoll_wait");
        for (int i = 0; i < count; ++i) {
            Stream& stream = *streams[ready_events[i].data.u64];
            if (stream.closed)
                continue;
            if (!stream.sent) {
                int error = 0;
                socklen_t length = sizeof error;
                getsockopt(stream.fd, SOL_SOCKET, SO_ERROR, &error, &length);
                if (error != 0) {
                    errno = error;
                    fail("connect");
                }
                if (::send(stream.fd, Request, std::strlen(Request), MSG_NOSIGNAL)
                    != static_cast<ssize_t>(std::strlen(Request)))
                    fail("send");
                stream.sent = true;
                epoll_event interest {};
                interest.events = EPOLLIN;
                interest.data.u64 = ready_events[i].data.u64;
                epoll_ctl(poller, EPOLL_CTL_MOD, stream.fd, &interest);
                continue;
            }
            const ssize_t got = ::recv(stream.fd, buffer.data(), buffer.size(), 0);
            now = SseEvent::monotonicNanoseconds();
            if (got <= 0) {
                if (got < 0 && (errno == EAGAIN || errno == EINTR))
                    continue;
                stream.closed = true;
                ++closed;
                ::close(stream.fd);
                continue;
            }
            const bool wasReady = stream.reader.ready();
            events.clear();
            if (!stream.reader.feed(buffer.data(), static_cast<std::size_t>(got), events)) {
                std::fprintf(stderr, "sse_load: a stream that is not an event stream\n");
                return 1;
            }
            if (!wasReady && stream.reader.ready())
                ++ready;
            for (const StreamReader::Event& event : events) {
                seenSequence = std::max(seenSequence, event.sequence);
                if (first == 0 || event.sequence < first || event.sequence > last)
                    continue;
                latencies.push_back(now - event.stamp);
                byEvent[event.sequence - first].push_back(now - event.stamp);
                if (event.sequence == last)
                    ++done;
            }
        }
        if (first == 0 && ready == options.streams) {
            // The next event may be on its way already; start with the one after.
            first = seenSequence + 2;
            last = first + options.events - 1;
            measureStart = SseEvent::monotonicNanoseconds();
            serverCpuStart = server.cpuSeconds();
            ownCpuStart = ownCpuSeconds();
        }
    }

    const std::int64_t measureEnd = SseEvent::monotonicNanoseconds();
    const double wall = seconds(measureEnd - measureStart);
    const double serverCpu = measureStart > 0 ? (server.cpuSeconds() - serverCpuStart) / wall * 100.0 : NAN;
    const double ownCpu = measureStart > 0 ? (ownCpuSeconds() - ownCpuStart) / wall * 100.0 : NAN;
    const long residentKiB = server.residentKiB();
    peakResidentKiB = std::max(peakResidentKiB, residentKiB);
    std::sort(latencies.begin(), latencies.end());
    std::vector<double> eventP99;
    std::size_t worst = 0;
    for (std::size_t i = 0; i < byEvent.size(); ++i) {
        std::sort(byEvent[i].begin(), byEvent[i].end());
        eventP99.push_back(percentile(byEvent[i], 0.99));
        if (eventP99[i] > eventP99[worst])
            worst = i;
    }
    std::vector<double> sortedP99 = eventP99;
    std::sort(sortedP99.begin(), sortedP99.end());
    const std::size_t expected = options.streams * options.events;
    std::printf("%-22s %7zu %7zu %8zu %8.3f %8.3f %8.3f %8.3f %9.1f %9.1f %7.2f %7ld %9zu %8.1f\n",
        options.label.c_str(), options.streams, latencies.size(),
        expected > latencies.size() ? expected - latencies.size() : 0, percentile(latencies, 0.50),
        percentile(latencies, 0.90), percentile(latencies, 0.99), percentile(latencies, 1.0),
        static_cast<double>(residentKiB) / 1024.0, static_cast<double>(peakResidentKiB) / 1024.0, serverCpu,
        server.threads(), slowBytes, ownCpu);
    std::fprintf(stderr,
        "sse_load: %s: events %llu..%llu over %.1f s, %zu streams closed by the server, slow reader %s, "
        "server peak RSS since start %.1f MiB; p99 by event: lowest %.3f ms, median %.3f ms, highest %.3f ms "
        "(event %llu)\n",
        options.label.c_str(), static_cast<unsigned long long>(first), static_cast<unsigned long long>(last),
        wall, closed, slowEnd.c_str(), static_cast<double>(server.peakResidentKiB()) / 1024.0,
        sortedP99.empty() ? NAN : sortedP99.front(),
        sortedP99.empty() ? NAN : sortedP99[sortedP99.size() / 2], sortedP99.empty() ? NAN : sortedP99.back(),
        static_cast<unsigned long long>(first) + worst);
    return latencies.size() == expected ? 0 : 3;
}
