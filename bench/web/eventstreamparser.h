#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The reading side of one GET /api/v1/events: the response's header, the
// chunked framing, then each event with the times its first and last bytes
// were read.
class EventStreamParser final
{
public:
    struct Event
    {
        std::string type;
        std::uint64_t id = 0;
        std::size_t dataBytes = 0;
        // Monotonic nanoseconds of the reads that brought the event's first and last bytes.
        std::int64_t firstByte = 0;
        std::int64_t lastByte = 0;
        // Only when the parser keeps data.
        std::string data;
    };

    explicit EventStreamParser(bool keepData);
    EventStreamParser(const EventStreamParser&) = delete;
    EventStreamParser& operator=(const EventStreamParser&) = delete;

    // Appends each event whose last byte is in `data`, read at `now`; false
    // once the stream makes no sense.
    bool feed(const char* data, std::size_t size, std::int64_t now, std::vector<Event>& events);
    bool ready() const { return m_state != State::Header; }

private:
    enum class State
    {
        Header,
        ChunkSize,
        ChunkData,
        ChunkEnd,
        Plain,
        Finished
    };

    bool endHeader();
    void feedBody(const char* data, std::size_t size, std::int64_t now, std::vector<Event>& events);
    void endLine(std::vector<Event>& events, std::int64_t now);

    const bool m_keepData;
    State m_state = State::Header;
    std::string m_text;
    std::size_t m_chunkLeft = 0;
    bool m_inEvent = false;
    bool m_hasField = false;
    Event m_event;
    std::string m_line;
    std::size_t m_lineBytes = 0;
};
