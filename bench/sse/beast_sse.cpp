// Server-sent events fanned out by the event-driven HTTP library: one
// io_context on --threads threads (1 unless told), every stream a strand.
// One event a second goes to every stream.
//   beast_sse --port 18082 --size 4096 --threads 1
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>
#include <unistd.h>
#include <vector>

#include "beasthub.h"
#include "beastlistener.h"
#include "serveroptions.h"
#include "sseevent.h"

namespace {

void publishAt(boost::asio::steady_timer& timer, std::chrono::steady_clock::time_point start,
    std::uint64_t sequence, BeastHub& hub, std::size_t eventBytes)
{
    timer.expires_at(start + std::chrono::seconds(sequence));
    timer.async_wait([&timer, start, sequence, &hub, eventBytes](boost::system::error_code error) {
        if (error)
            return;
        hub.publish(SseEvent::make(sequence, eventBytes));
        publishAt(timer, start, sequence + 1, hub, eventBytes);
    });
}

} // namespace

int serve(int argc, char** argv)
{
    const ServerOptions options(argc, argv, 1);
    alarm(options.lifetimeSeconds);

    boost::asio::io_context context(static_cast<int>(options.threads));
    BeastHub hub;
    std::unique_ptr<BeastListener> listener;
    try {
        listener = std::make_unique<BeastListener>(context, options.port, hub, options.queueLimit);
    } catch (const boost::system::system_error& error) {
        std::fprintf(stderr, "beast: cannot listen on port %d: %s\n", options.port, error.what());
        return 1;
    }
    listener->accept();
    boost::asio::steady_timer timer(context);
    publishAt(timer, std::chrono::steady_clock::now(), 1, hub, options.eventBytes);

    std::fprintf(stderr, "beast: port %d, %zu-byte events, %zu threads, queue limit %zu bytes\n",
        options.port, options.eventBytes, options.threads, options.queueLimit);
    std::vector<std::thread> others;
    for (std::size_t i = 1; i < options.threads; ++i)
        others.emplace_back([&context] { context.run(); });
    context.run();
    for (std::thread& other : others)
        other.join();
    return 0;
}

int main(int argc, char** argv)
{
    try {
        return serve(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "beast: %s\n", error.what());
        return 1;
    }
}
