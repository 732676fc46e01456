// Server-sent events fanned out by the thread-per-connection HTTP library:
// each open stream holds one pool thread, which waits for the next event and
// writes it. One event a second goes to every stream.
//   httplib_sse --port 18081 --size 4096 --threads 508
#include <chrono>
#include <cstdio>
#include <httplib.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "blockinghub.h"
#include "serveroptions.h"
#include "sseevent.h"

namespace {

void publishEverySecond(BlockingHub& hub, std::size_t eventBytes)
{
    const auto start = std::chrono::steady_clock::now();
    for (std::uint64_t sequence = 1;; ++sequence) {
        std::this_thread::sleep_until(start + std::chrono::seconds(sequence));
        const std::size_t drops = hub.publish(SseEvent::make(sequence, eventBytes));
        if (drops > 0)
            std::fprintf(stderr, "httplib: event %llu: %zu streams dropped their queue\n",
                static_cast<unsigned long long>(sequence), drops);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const ServerOptions options(argc, argv, 508);
    alarm(options.lifetimeSeconds);

    BlockingHub hub;
    httplib::Server server;
    server.set_socket_options([](int socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    // Every open stream keeps a pool thread for as long as it is open.
    const std::size_t threads = options.threads;
    server.new_task_queue = [threads] { return new httplib::ThreadPool(threads); };

    const std::size_t limit = options.queueLimit;
    server.Get("/api/v1/events", [&hub, limit](const httplib::Request&, httplib::Response& response) {
        auto stream = std::make_shared<BlockingStream>(limit);
        hub.add(stream);
        const auto opened = std::chrono::steady_clock::now();
        response.set_header("Cache-Control", "no-cache");
        response.set_chunked_content_provider(
            "text/event-stream",
            [stream](std::size_t, httplib::DataSink& sink) {
                const EventQueue::Event event = stream->next(std::chrono::milliseconds(1000));
                return !event || sink.write(event->data(), event->size());
            },
            [&hub, stream, opened](bool success) {
                hub.remove(stream);
                const std::chrono::duration<double> open = std::chrono::steady_clock::now() - opened;
                std::fprintf(stderr, "httplib: stream closed after %.1f s (%s), %zu queue drops\n",
                    open.count(), success ? "ended" : "failed", stream->drops());
            });
    });

    std::thread publisher(publishEverySecond, std::ref(hub), options.eventBytes);
    publisher.detach();
    std::fprintf(stderr, "httplib: port %d, %zu-byte events, %zu pool threads\n", options.port,
        options.eventBytes, threads);
    return server.listen("127.0.0.1", options.port) ? 0 : 1;
}
