#include "streamreader.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

namespace {

// Enough of an event's start to hold its "seq" and "stamp".
constexpr std::size_t KeptBytes = 96;

std::int64_t numberAfter(const std::string& text, const char* key)
{
    const std::size_t at = text.find(key);
    return at == std::string::npos ? -1 : std::strtoll(text.c_str() + at + std::strlen(key), nullptr, 10);
}

} // namespace

bool StreamReader::feed(const char* data, std::size_t size, std::vector<Event>& events)
{
    const char* const end = data + size;
    while (data < end) {
        switch (m_state) {
        case State::Header: {
            const std::size_t before = m_line.size();
            m_line.append(data, end);
            const std::size_t stop = m_line.find("\r\n\r\n");
            if (stop == std::string::npos) {
                data = end;
                break;
            }
            data += stop + 4 - before;
            m_line.resize(stop + 4);
            if (!endHeader())
                return false;
            break;
        }
        case State::ChunkSize: {
            const char* newline = static_cast<const char*>(std::memchr(data, '\n', end - data));
            if (!newline) {
                m_line.append(data, end);
                data = end;
                break;
            }
            m_line.append(data, newline);
            data = newline + 1;
            char* last = nullptr;
            m_chunkLeft = std::strtoull(m_line.c_str(), &last, 16);
            if (last == m_line.c_str())
                return false;
            m_line.clear();
            m_state = m_chunkLeft == 0 ? State::Finished : State::ChunkData;
            break;
        }
        case State::ChunkData: {
            const std::size_t take = std::min<std::size_t>(m_chunkLeft, end - data);
            feedEvents(data, take, events);
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
            feedEvents(data, end - data, events);
            data = end;
            break;
        case State::Finished:
            return false;
        }
    }
    return true;
}

bool StreamReader::endHeader()
{
    std::string header = m_line;
    m_line.clear();
    std::transform(header.begin(), header.end(), header.begin(),
        [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (header.compare(0, 12, "http/1.1 200") != 0 || header.find("text/event-stream") == std::string::npos)
        return false;
    m_state
        = header.find("transfer-encoding: chunked") != std::string::npos ? State::ChunkSize : State::Plain;
    return true;
}

void StreamReader::feedEvents(const char* data, std::size_t size, std::vector<Event>& events)
{
    const char* const end = data + size;
    while (data < end) {
        const char* newline = static_cast<const char*>(std::memchr(data, '\n', end - data));
        const char* stop = newline ? newline : end;
        if (stop > data) {
            m_afterNewline = false;
            if (m_eventStart.size() < KeptBytes)
                m_eventStart.append(
                    data, std::min<std::size_t>(stop - data, KeptBytes - m_eventStart.size()));
        }
        if (!newline)
            return;
        data = newline + 1;
        if (m_afterNewline) {
            endEvent(events);
        } else {
            m_afterNewline = true;
            if (m_eventStart.size() < KeptBytes)
                m_eventStart += '\n';
        }
    }
}

void StreamReader::endEvent(std::vector<Event>& events)
{
    const std::int64_t sequence = numberAfter(m_eventStart, "\"seq\":");
    const std::int64_t stamp = numberAfter(m_eventStart, "\"stamp\":");
    if (sequence >= 0 && stamp > 0)
        events.push_back({static_cast<std::uint64_t>(sequence), stamp});
    m_eventStart.clear();
    m_afterNewline = false;
}
