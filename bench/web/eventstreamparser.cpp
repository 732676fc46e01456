#include "eventstreamparser.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

namespace {

// Enough of a line to tell its field and hold an event's name or number.
constexpr std::size_t KeptLineBytes = 64;

bool startsWith(const std::string& text, const char* prefix)
{
    return text.compare(0, std::strlen(prefix), prefix) == 0;
}

} // namespace

EventStreamParser::EventStreamParser(bool keepData)
    : m_keepData(keepData)
{
}

bool EventStreamParser::feed(const char* data, std::size_t size, std::int64_t now, std::vector<Event>& events)
{
    const char* const end = data + size;
    while (data < end) {
        switch (m_state) {
        case State::Header: {
            const std::size_t before = m_text.size();
            m_text.append(data, end);
            const std::size_t stop = m_text.find("\r\n\r\n");
            if (stop == std::string::npos) {
                if (m_text.size() > 65536)
                    return false;
                data = end;
                break;
            }
            data += stop + 4 - before;
            m_text.resize(stop + 4);
            if (!endHeader())
                return false;
            break;
        }
        case State::ChunkSize: {
            const char* newline = static_cast<const char*>(std::memchr(data, '\n', end - data));
            if (!newline) {
                m_text.append(data, end);
                data = end;
                break;
            }
            m_text.append(data, newline);
            data = newline + 1;
            char* last = nullptr;
            m_chunkLeft = std::strtoull(m_text.c_str(), &last, 16);
            if (last == m_text.c_str())
                return false;
            m_text.clear();
            m_state = m_chunkLeft == 0 ? State::Finished : State::ChunkData;
            break;
        }
        case State::ChunkData: {
            const std::size_t take = std::min<std::size_t>(m_chunkLeft, end - data);
            feedBody(data, take, now, events);
            data += take;
            m_chunkLeft -= take;
            if (m_chunkLeft == 0)
                m_state = State::ChunkEnd;
            break;
        }
        case State::ChunkEnd:
            if (*data++ == '\n')
                m_state = State::ChunkSize;
            break;
        case State::Plain:
            feedBody(data, end - data, now, events);
            data = end;
            break;
        case State::Finished:
            return false;
        }
    }
    return true;
}

bool EventStreamParser::endHeader()
{
    std::string header = m_text;
    m_text.clear();
    std::transform(header.begin(), header.end(), header.begin(),
        [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (header.compare(0, 12, "http/1.1 200") != 0 || header.find("text/event-stream") == std::string::npos)
        return false;
    m_state
        = header.find("transfer-encoding: chunked") != std::string::npos ? State::ChunkSize : State::Plain;
    return true;
}

void EventStreamParser::feedBody(
    const char* data, std::size_t size, std::int64_t now, std::vector<Event>& events)
{
    const char* const end = data + size;
    while (data < end) {
        if (!m_inEvent) {
            m_inEvent = true;
            m_event.firstByte = now;
        }
        const char* newline = static_cast<const char*>(std::memchr(data, '\n', end - data));
        const char* stop = newline ? newline : end;
        const std::size_t length = static_cast<std::size_t>(stop - data);
        if (m_keepData || m_line.size() < KeptLineBytes)
            m_line.append(data, m_keepData ? length : std::min(length, KeptLineBytes - m_line.size()));
        m_lineBytes += length;
        if (!newline)
            return;
        data = newline + 1;
        endLine(events, now);
    }
}

void EventStreamParser::endLine(std::vector<Event>& events, std::int64_t now)
{
    if (m_lineBytes == 0) {
        if (m_hasField) {
            m_event.lastByte = now;
            events.push_back(std::move(m_event));
        }
        m_event = Event();
        m_inEvent = false;
        m_hasField = false;
    } else if (startsWith(m_line, "data:")) {
        const std::size_t skip = startsWith(m_line, "data: ") ? 6 : 5;
        m_event.dataBytes += m_lineBytes - skip;
        if (m_keepData)
            m_event.data.append(m_line, skip, std::string::npos);
        m_hasField = true;
    } else if (startsWith(m_line, "event: ")) {
        m_event.type = m_line.substr(7);
        m_hasField = true;
    } else if (startsWith(m_line, "id: ")) {
        m_event.id = std::strtoull(m_line.c_str() + 4, nullptr, 10);
        m_hasField = true;
    }
    m_line.clear();
    m_lineBytes = 0;
}
