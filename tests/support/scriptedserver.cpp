#include "scriptedserver.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

ScriptedServer::ScriptedServer()
{
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_listener == -1)
        throw std::runtime_error("scripted server: socket failed");
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(m_listener, 4) != 0)
        throw std::runtime_error("scripted server: bind/listen failed");
    socklen_t length = sizeof(address);
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
    m_port = ntohs(address.sin_port);

    int pipeEnds[2];
    if (::pipe2(pipeEnds, O_CLOEXEC) != 0)
        throw std::runtime_error("scripted server: pipe failed");
    m_wakeRead = pipeEnds[0];
    m_wakeWrite = pipeEnds[1];
}

ScriptedServer::~ScriptedServer()
{
    m_stop = true;
    const char wake = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_wakeWrite, &wake, 1);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const int connection = m_connection.load();
        if (connection != -1)
            ::shutdown(connection, SHUT_RDWR); // releases a blocked send
    }
    if (m_thread.joinable())
        m_thread.join();
    closeConnectionNow(false);
    ::close(m_listener);
    ::close(m_wakeRead);
    ::close(m_wakeWrite);
}

ScriptedServer& ScriptedServer::acceptConnection()
{
    m_steps.push_back({Step::Accept, {}, 0});
    return *this;
}

ScriptedServer& ScriptedServer::waitForLine()
{
    m_steps.push_back({Step::WaitLine, {}, 0});
    return *this;
}

ScriptedServer& ScriptedServer::waitForBytes(std::size_t count)
{
    m_steps.push_back({Step::WaitBytes, {}, count});
    return *this;
}

ScriptedServer& ScriptedServer::write(const std::string& bytes, std::size_t pieceSize)
{
    m_steps.push_back({Step::Write, bytes, pieceSize});
    return *this;
}

ScriptedServer& ScriptedServer::reply(const std::string& line)
{
    waitForLine();
    return write(line + "\n");
}

ScriptedServer& ScriptedServer::pause(int milliseconds)
{
    m_steps.push_back({Step::Pause, {}, static_cast<std::size_t>(milliseconds)});
    return *this;
}

ScriptedServer& ScriptedServer::closeConnection()
{
    m_steps.push_back({Step::Close, {}, 0});
    return *this;
}

ScriptedServer& ScriptedServer::resetConnection()
{
    m_steps.push_back({Step::Reset, {}, 0});
    return *this;
}

ScriptedServer& ScriptedServer::waitForClose()
{
    m_steps.push_back({Step::WaitClose, {}, 0});
    return *this;
}

ScriptedServer& ScriptedServer::answerEveryLine(const std::string& bytes, std::size_t pieceSize)
{
    m_steps.push_back({Step::AnswerEveryLine, bytes, pieceSize});
    return *this;
}

ScriptedServer& ScriptedServer::answerByMethod(
    const std::map<std::string, std::string>& replies, const std::string& fallback)
{
    Step step {Step::AnswerByMethod, fallback};
    step.replies = replies;
    m_steps.push_back(step);
    return *this;
}

void ScriptedServer::start()
{
    m_thread = std::thread([this] { run(); });
}

bool ScriptedServer::finish()
{
    if (m_thread.joinable())
        m_thread.join();
    return m_ok;
}

std::string ScriptedServer::received() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_received;
}

void ScriptedServer::run()
{
    for (const Step& step : m_steps) {
        if (m_stop || !runStep(step)) {
            m_ok = false;
            return;
        }
        ++m_stepsDone;
    }
}

bool ScriptedServer::runStep(const Step& step)
{
    switch (step.kind) {
    case Step::Accept: {
        pollfd descriptors[2] = {{m_listener, POLLIN, 0}, {m_wakeRead, POLLIN, 0}};
        if (::poll(descriptors, 2, -1) < 1 || descriptors[1].revents)
            return false;
        const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection == -1)
            return false;
        closeConnectionNow(false);
        std::lock_guard<std::mutex> lock(m_mutex);
        m_connection = connection;
        m_connectionBytes = m_linesIn = m_linesTaken = 0;
        m_nextLineOffset = m_received.size();
        return true;
    }
    case Step::WaitLine:
        for (;;) {
            if (takeLine(nullptr))
                return true;
            if (!readMore())
                return false;
        }
    case Step::WaitBytes:
        for (;;) {
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                if (m_connectionBytes >= step.number)
                    return true;
            }
            if (!readMore())
                return false;
        }
    case Step::Write:
        return sendAll(step.bytes, step.number);
    case Step::Pause: {
        // ends early only when the server is being destroyed
        pollfd wake {m_wakeRead, POLLIN, 0};
        return ::poll(&wake, 1, static_cast<int>(step.number)) == 0;
    }
    case Step::Close:
        closeConnectionNow(false);
        return true;
    case Step::Reset:
        closeConnectionNow(true);
        return true;
    case Step::WaitClose:
        while (readMore()) { }
        return !m_stop;
    case Step::AnswerEveryLine:
        for (;;) {
            if (takeLine(nullptr)) {
                if (!sendAll(step.bytes, step.number))
                    return true; // the peer went away
            } else if (!readMore()) {
                return !m_stop;
            }
        }
    case Step::AnswerByMethod:
        for (;;) {
            std::string line;
            if (takeLine(&line)) {
                std::string answer = step.bytes;
                for (const auto& [method, reply] : step.replies) {
                    if (line.find("\"method\":\"" + method + "\"") != std::string::npos) {
                        answer = reply;
                        break;
                    }
                }
                if (!sendAll(answer + "\n", 0))
                    return true; // the peer went away
            } else if (!readMore()) {
                return !m_stop;
            }
        }
    }
    return false;
}

bool ScriptedServer::takeLine(std::string* line)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_linesIn <= m_linesTaken)
        return false;
    ++m_linesTaken;
    const std::size_t end = m_received.find('\n', m_nextLineOffset);
    if (line)
        *line = m_received.substr(m_nextLineOffset, end - m_nextLineOffset);
    m_nextLineOffset = end + 1;
    return true;
}

bool ScriptedServer::readMore()
{
    const int connection = m_connection.load();
    if (connection == -1)
        return false;
    pollfd descriptors[2] = {{connection, POLLIN, 0}, {m_wakeRead, POLLIN, 0}};
    if (::poll(descriptors, 2, -1) < 1 || descriptors[1].revents)
        return false;
    char block[65536];
    const ssize_t count = ::recv(connection, block, sizeof(block), 0);
    if (count < 1)
        return false;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_received.append(block, static_cast<std::size_t>(count));
    m_connectionBytes += static_cast<std::size_t>(count);
    m_linesIn += static_cast<std::size_t>(std::count(block, block + count, '\n'));
    return true;
}

bool ScriptedServer::sendAll(const std::string& bytes, std::size_t pieceSize)
{
    const int connection = m_connection.load();
    if (connection == -1)
        return false;
    const std::size_t piece = pieceSize == 0 ? bytes.size() : pieceSize;
    std::size_t offset = 0;
    while (offset < bytes.size()) {
        // One write per piece; a partial write carries on from where it stopped.
        const std::size_t length = std::min(piece, bytes.size() - offset);
        const char* start = bytes.data() + offset;
        std::size_t done = 0;
        while (done < length) {
            const ssize_t count = ::send(connection, start + done, length - done, MSG_NOSIGNAL);
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 1)
                return false;
            done += static_cast<std::size_t>(count);
        }
        offset += length;
    }
    return true;
}

void ScriptedServer::closeConnectionNow(bool reset)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const int connection = m_connection.exchange(-1);
    if (connection == -1)
        return;
    if (reset) {
        const linger abort {1, 0};
        ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &abort, sizeof(abort));
    }
    ::close(connection);
}
