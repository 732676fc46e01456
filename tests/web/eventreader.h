#pragma once

#include <optional>
#include <string>
#include <vector>

// A bare HTTP/1.1 client of one event stream on 127.0.0.1: sends the GET
// with the header lines given, reads the response head, undoes the chunked
// transfer coding and hands out one event at a time. Comments (heartbeats)
// are counted, not handed out; so are "reading" events, whose last data is kept.
class EventReader final
{
public:
    struct Event
    {
        std::string name;
        std::string id;
        std::string data;
    };

    // receiveBuffer: SO_RCVBUF before connecting (0: the system's), for a
    // reader that is to fall behind.
    EventReader(int port, const std::string& target, const std::vector<std::string>& headerLines = {},
        int receiveBuffer = 0);
    ~EventReader();
    EventReader(const EventReader&) = delete;
    EventReader& operator=(const EventReader&) = delete;

    // The status of the response, 0 when no head came within the time.
    int status(int timeoutMs = 10000);
    const std::string& head() const { return m_head; }
    // The next event; nothing on time-out or end of stream.
    std::optional<Event> next(int timeoutMs = 10000);
    // The body of a response that is not a stream, as far as it came.
    std::string body(int timeoutMs = 10000);
    // True when the server closed the stream within the time.
    bool closedByPeer(int timeoutMs = 10000);
    int comments() const { return m_comments; }
    int readings() const { return m_readings; }
    const std::string& lastReading() const { return m_lastReading; }
    void close();

private:
    // Reads more bytes into m_raw; false on time-out, end or error.
    bool readSome(int timeoutMs);
    // Moves whole chunks from m_raw to m_body.
    void decodeChunks();

    int m_socket = -1;
    std::string m_raw;
    std::string m_head;
    std::string m_body;
    bool m_chunked = false;
    bool m_ended = false;
    int m_comments = 0;
    int m_readings = 0;
    std::string m_lastReading;
};
