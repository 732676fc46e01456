#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "eventstreamparser.h"

// Event streams of the web monitor, all read on one epoll, with the times
// each delta's first and last bytes reached them. The first stream keeps its
// events' data. One more stream may read one byte a second and is counted
// apart.
class StreamFleet final
{
public:
    struct Fanout
    {
        std::size_t streams = 0;
        std::size_t dataBytes = 0;
        // Earliest first byte and latest last byte over the streams, monotonic ns.
        std::int64_t firstByte = 0;
        std::int64_t lastByte = 0;
    };

    explicit StreamFleet(int port);
    ~StreamFleet();
    StreamFleet(const StreamFleet&) = delete;
    StreamFleet& operator=(const StreamFleet&) = delete;

    // Opens `count` more streams and reads until each has had its first
    // event, or until `deadline` (monotonic ns).
    bool open(std::size_t count, std::int64_t deadline, std::string& error);
    // The reader of one byte a second, with a small receive buffer.
    bool openSlow(std::string& error);
    // Reads whatever comes until `until`; false when a stream breaks.
    bool pump(std::int64_t until, std::string& error);
    void closeAll();

    std::size_t size() const { return m_streams.size(); }
    std::size_t closedByServer() const { return m_closedByServer; }
    // Deltas by event number since the last clear.
    const std::map<std::uint64_t, Fanout>& deltas() const { return m_deltas; }
    // The first stream's events since the last clear, with their data.
    const std::vector<EventStreamParser::Event>& keptEvents() const { return m_kept; }
    void clear();

    std::size_t slowBytes() const { return m_slowBytes; }
    const std::string& slowEnd() const { return m_slowEnd; }

private:
    struct Stream;

    bool readOnce(int timeoutMs, std::string& error);
    bool serve(std::size_t index, std::uint32_t events, std::string& error);
    void readSlow(std::int64_t now);

    const int m_port;
    const int m_poller;
    std::vector<std::unique_ptr<Stream>> m_streams;
    std::size_t m_closedByServer = 0;
    std::size_t m_started = 0; // streams that had their first event
    std::map<std::uint64_t, Fanout> m_deltas;
    std::vector<EventStreamParser::Event> m_kept;
    std::vector<EventStreamParser::Event> m_events;
    std::vector<char> m_buffer;

    int m_slow = -1;
    std::int64_t m_nextSlowRead = 0;
    std::size_t m_slowBytes = 0;
    std::string m_slowEnd = "not opened";
};
