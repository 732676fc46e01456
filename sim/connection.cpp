#include "connection.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t ReadBlock = 65536;
// Bytes taken from one connection per round of the server's loop.
constexpr std::size_t ReadShare = 4 * ReadBlock;
// Bytes thrown away per round while draining; nothing is kept of them.
constexpr std::size_t DrainShare = 16 * ReadBlock;

} // namespace

Connection::Connection(int socket, const FaultSwitches& faults, std::size_t maxLineBytes)
    : m_socket(socket)
    , m_faults(faults)
    , m_maxLine(maxLineBytes)
{
}

Connection::~Connection()
{
    ::close(m_socket);
}

bool Connection::readAvailable()
{
    if (!m_draining && m_begin > 0) {
        m_input.erase(0, m_begin);
        m_lineEnd -= m_begin;
        m_begin = 0;
    }
    return readShare(m_draining ? DrainShare : ReadShare);
}

bool Connection::readShare(std::size_t share)
{
    char block[ReadBlock];
    std::size_t taken = 0;
    while (taken < share && (m_draining || !m_tooLong)) {
        const ssize_t received = ::recv(m_socket, block, sizeof block, 0);
        if (received > 0) {
            taken += static_cast<std::size_t>(received);
            if (m_draining)
                continue;
            const std::size_t from = m_input.size();
            m_input.append(block, static_cast<std::size_t>(received));
            noteInput(from);
            continue;
        }
        if (received == 0)
            return false;
        if (errno == EINTR)
            continue;
        return errno == EAGAIN || errno == EWOULDBLOCK;
    }
    return true;
}

void Connection::noteInput(std::size_t from)
{
    for (std::size_t at = m_input.size(); at > from; --at) {
        if (m_input[at - 1] == '\n') {
            m_lineEnd = at;
            break;
        }
    }
    // The unfinished line is dropped as soon as it is too long, not kept
    // growing until its line feed comes.
    if (m_input.size() - m_lineEnd > m_maxLine) {
        m_input.resize(m_lineEnd);
        m_tooLong = true;
    }
}

bool Connection::takeLine(std::string& line)
{
    if (!hasLine())
        return false;
    const char* start = m_input.data() + m_begin;
    const auto* feed = static_cast<const char*>(std::memchr(start, '\n', m_lineEnd - m_begin));
    const std::size_t length = static_cast<std::size_t>(feed - start);
    if (length > m_maxLine) {
        // complete, but too long all the same: it and all after it go
        m_input.resize(m_begin);
        m_lineEnd = m_begin;
        m_tooLong = true;
        return false;
    }
    line.assign(start, length);
    m_begin += length + 1;
    if (m_begin == m_input.size()) {
        m_input.clear();
        m_begin = m_lineEnd = 0;
    }
    return true;
}

bool Connection::answerRequest()
{
    ++m_requests;
    return m_faults.muteAfterRequests < 0
        || m_requests <= static_cast<unsigned long long>(m_faults.muteAfterRequests);
}

bool Connection::wantsInput() const
{
    if (m_draining)
        return true;
    if (m_closing || m_tooLong)
        return false;
    // Requests already read are answered first, so input waits in the
    // system's buffers and the peer's sending stalls, not our memory.
    return !outputFull() && !hasLine();
}

void Connection::queueReply(std::string reply, Clock::time_point now)
{
    ++m_repliesQueued;
    const Clock::time_point due = now + std::chrono::milliseconds(m_faults.delayMs);
    if (m_faults.garbageEvery > 0 && m_repliesQueued % m_faults.garbageEvery == 0) {
        m_output.push_back({GarbageLine, 0, due, false});
        m_waitingBytes += m_output.back().bytes.size();
    }
    if (m_repliesQueued == 1 && m_faults.bigReplyBytes > reply.size()) {
        // {...} plus ,"padding":"xxx" before the closing brace
        static const std::string empty = ",\"padding\":\"\"";
        if (reply.size() + empty.size() <= m_faults.bigReplyBytes && reply.size() >= 3
            && reply[reply.size() - 2] == '}') {
            const std::size_t fill = m_faults.bigReplyBytes - reply.size() - empty.size();
            reply.insert(reply.size() - 2, ",\"padding\":\"" + std::string(fill, 'x') + "\"");
        }
    }
    m_waitingBytes += reply.size();
    m_output.push_back({std::move(reply), 0, due, true});
    if (m_faults.closeAfterReplies >= 0
        && m_repliesQueued >= static_cast<unsigned long long>(m_faults.closeAfterReplies))
        m_closing = true;
}

void Connection::queueLastLine(std::string line, Clock::time_point now)
{
    m_waitingBytes += line.size();
    m_output.push_back({std::move(line), 0, now, false});
    m_closing = true;
    m_lastLineQueued = true;
}

bool Connection::hasDueOutput(Clock::time_point now) const
{
    return !m_output.empty() && m_output.front().due <= now;
}

bool Connection::nextDue(Clock::time_point& due) const
{
    if (m_output.empty())
        return false;
    due = m_output.front().due;
    return true;
}

bool Connection::writeDue(Clock::time_point now)
{
    while (hasDueOutput(now)) {
        Outgoing& out = m_output.front();
        if (m_faults.trickleMs > 0) {
            // One byte now, the next one when it falls due.
            const ssize_t written = ::send(m_socket, out.bytes.data() + out.sent, 1, MSG_NOSIGNAL);
            if (written < 0)
                return errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK;
            out.sent += static_cast<std::size_t>(written);
            if (out.sent < out.bytes.size()) {
                out.due = now + std::chrono::milliseconds(m_faults.trickleMs);
                return true;
            }
        }
        // One byte per call under the byte-write switch, a handful per round
        // so that other clients get their turn.
        int rounds = m_faults.byteWrites ? 64 : 1;
        while (out.sent < out.bytes.size() && rounds-- > 0) {
            const std::size_t length = m_faults.byteWrites ? 1 : out.bytes.size() - out.sent;
            const ssize_t written = ::send(m_socket, out.bytes.data() + out.sent, length, MSG_NOSIGNAL);
            if (written < 0) {
                if (errno == EINTR)
                    continue;
                return errno == EAGAIN || errno == EWOULDBLOCK;
            }
            out.sent += static_cast<std::size_t>(written);
        }
        if (out.sent < out.bytes.size())
            return true;
        if (out.reply)
            ++m_repliesSent;
        m_waitingBytes -= out.bytes.size();
        m_output.pop_front();
        if (m_lastLineQueued && m_output.empty()) {
            ::shutdown(m_socket, SHUT_WR);
            m_draining = true;
            m_drainEnd = now + DrainTime;
            std::string().swap(m_input);
            m_begin = m_lineEnd = 0;
            return true;
        }
        if (done(now))
            return true;
    }
    return true;
}

bool Connection::done(Clock::time_point now) const
{
    if (m_draining)
        return now >= m_drainEnd;
    return m_faults.closeAfterReplies >= 0
        && m_repliesSent >= static_cast<unsigned long long>(m_faults.closeAfterReplies);
}
