#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The reading side of one event stream: the response's header, the chunked
// framing, then the events, of which only the sequence number and the
// publisher's stamp at the start of the data are kept.
class StreamReader final
{
public:
    struct Event
    {
        std::uint64_t sequence;
        std::int64_t stamp;
    };

    StreamReader() = default;
    StreamReader(const StreamReader&) = delete;
    StreamReader& operator=(const StreamReader&) = delete;

    // Appends each event whose last byte is in `data`; false once the stream
    // makes no sense.
    bool feed(const char* data, std::size_t size, std::vector<Event>& events);
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
    void feedEvents(const char* data, std::size_t size, std::vector<Event>& events);
    void endEvent(std::vector<Event>& events);

    State m_state = State::Header;
    std::string m_line;
    std::size_t m_chunkLeft = 0;
    std::string m_eventStart;
    bool m_afterNewline = false;
};
