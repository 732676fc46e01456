#include "connection.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

Connection::Connection(int socket, const FaultSwitches& faults)
    : m_socket(socket)
    , m_faults(faults)
{
}

Connection::~Connection()
{
    ::close(m_socket);
}

bool Connection::readAvailable()
{
    char block[65536];
    for (;;) {
        const ssize_t received = ::recv(m_socket, block, sizeof block, 0);
        if (received > 0) {
            m_input.append(block, static_cast<std::size_t>(received));
            if (m_input.size() - m_scanned > MaxLineBytes
                && m_input.find('\n', m_scanned) == std::string::npos)
                return false;
            continue;
        }
        if (received == 0)
            return false;
        if (errno == EINTR)
            continue;
        return errno == EAGAIN || errno == EWOULDBLOCK;
    }
}

bool Connection::takeLine(std::string& line)
{
    const std::size_t end = m_input.find('\n', m_scanned);
    if (end == std::string::npos) {
        m_scanned = m_input.size();
        return false;
    }
    line.assign(m_input, 0, end);
    m_input.erase(0, end + 1);
    m_scanned = 0;
    return true;
}

bool Connection::answerRequest()
{
    ++m_requests;
    return m_faults.muteAfterRequests < 0
        || m_requests <= static_cast<unsigned long long>(m_faults.muteAfterRequests);
}

void Connection::queueReply(std::string reply, Clock::time_point now)
{
    ++m_repliesQueued;
    const Clock::time_point due = now + std::chrono::milliseconds(m_faults.delayMs);
    if (m_faults.garbageEvery > 0 && m_repliesQueued % m_faults.garbageEvery == 0)
        m_output.push_back({GarbageLine, 0, due, false});
    if (m_repliesQueued == 1 && m_faults.bigReplyBytes > reply.size()) {
        // {...} plus ,"padding":"xxx" before the closing brace
        static const std::string empty = ",\"padding\":\"\"";
        if (reply.size() + empty.size() <= m_faults.bigReplyBytes && reply.size() >= 3
            && reply[reply.size() - 2] == '}') {
            const std::size_t fill = m_faults.bigReplyBytes - reply.size() - empty.size();
            reply.insert(reply.size() - 2, ",\"padding\":\"" + std::string(fill, 'x') + "\"");
        }
    }
    m_output.push_back({std::move(reply), 0, due, true});
    if (m_faults.closeAfterReplies >= 0
        && m_repliesQueued >= static_cast<unsigned long long>(m_faults.closeAfterReplies))
        m_closing = true;
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
        m_output.pop_front();
        if (done())
            return true;
    }
    return true;
}

bool Connection::done() const
{
    return m_faults.closeAfterReplies >= 0
        && m_repliesSent >= static_cast<unsigned long long>(m_faults.closeAfterReplies);
}
