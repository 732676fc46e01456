#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A TCP relay on loopback between the web monitor and the farm's server,
// on a thread of its own, that sees every request line and every reply line
// pass. Requests are matched to replies in order, as the server answers
// each connection's requests one after the other.
class LineProxy final
{
public:
    struct Exchange
    {
        std::string method;
        // Monotonic nanoseconds: the request line handed on to the server,
        // and the reply line handed on to the client (0 while unanswered).
        std::int64_t requested = 0;
        std::int64_t answered = 0;
    };

    explicit LineProxy(int upstreamPort);
    ~LineProxy();
    LineProxy(const LineProxy&) = delete;
    LineProxy& operator=(const LineProxy&) = delete;

    // Listens on 127.0.0.1 at a free port and starts the thread.
    bool start(std::string& error);
    int port() const { return m_port; }
    void stop();

    // Every exchange so far, oldest first.
    std::vector<Exchange> exchanges() const;

private:
    struct Pair;

    void run();
    void accept();
    // False when the pair is to close.
    bool pump(Pair& pair, bool fromClient);
    bool flush(Pair& pair, bool toClient);
    void noteRequests(Pair& pair, std::size_t from);
    void noteReplies(Pair& pair, std::size_t from);

    const int m_upstreamPort;
    int m_listener = -1;
    int m_wake[2] = {-1, -1};
    int m_port = 0;
    std::thread m_thread;
    std::vector<std::unique_ptr<Pair>> m_pairs;

    mutable std::mutex m_mutex;
    std::vector<Exchange> m_exchanges;
};
