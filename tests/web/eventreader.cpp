#include "eventreader.h"

#include <arpa/inet.h>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

EventReader::EventReader(
    int port, const std::string& target, const std::vector<std::string>& headerLines, int receiveBuffer)
{
    m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (receiveBuffer > 0)
        ::setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close();
        return;
    }
    std::string request = "GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n";
    for (const std::string& line : headerLines)
        request += line + "\r\n";
    request += "\r\n";
    if (::send(m_socket, request.data(), request.size(), MSG_NOSIGNAL)
        != static_cast<ssize_t>(request.size()))
        close();
}

EventReader::~EventReader()
{
    close();
}

void EventReader::close()
{
    if (m_socket != -1)
        ::close(m_socket);
    m_socket = -1;
}

bool EventReader::readSome(int timeoutMs)
{
    if (m_socket == -1 || m_ended)
        return false;
    pollfd entry {m_socket, POLLIN, 0};
    if (::poll(&entry, 1, timeoutMs) <= 0)
        return false;
    char buffer[65536];
    const ssize_t n = ::recv(m_socket, buffer, sizeof buffer, 0);
    if (n <= 0) {
        m_ended = true;
        return false;
    }
    m_raw.append(buffer, static_cast<std::size_t>(n));
    return true;
}

int EventReader::status(int timeoutMs)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (m_head.empty()) {
        const std::size_t blank = m_raw.find("\r\n\r\n");
        if (blank != std::string::npos) {
            m_head = m_raw.substr(0, blank + 4);
            m_raw.erase(0, blank + 4);
            m_chunked = m_head.find("\r\nTransfer-Encoding: chunked\r\n") != std::string::npos;
            break;
        }
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !readSome(static_cast<int>(left.count())))
            return 0;
    }
    return m_head.size() > 12 ? std::stoi(m_head.substr(9, 3)) : 0;
}

void EventReader::decodeChunks()
{
    if (!m_chunked) {
        m_body += m_raw;
        m_raw.clear();
        return;
    }
    for (;;) {
        const std::size_t lineEnd = m_raw.find("\r\n");
        if (lineEnd == std::string::npos)
            return;
        const std::size_t size = std::stoul(m_raw.substr(0, lineEnd), nullptr, 16);
        if (m_raw.size() < lineEnd + 2 + size + 2)
            return;
        m_body.append(m_raw, lineEnd + 2, size);
        m_raw.erase(0, lineEnd + 2 + size + 2);
        if (size == 0)
            m_ended = true;
    }
}

std::optional<EventReader::Event> EventReader::next(int timeoutMs)
{
    if (status(timeoutMs) == 0)
        return std::nullopt;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        decodeChunks();
        const std::size_t blank = m_body.find("\n\n");
        if (blank != std::string::npos) {
            const std::string block = m_body.substr(0, blank + 1);
            m_body.erase(0, blank + 2);
            Event event;
            bool comment = true;
            std::size_t start = 0;
            while (start < block.size()) {
                const std::size_t lineEnd = block.find('\n', start);
                const std::string line = block.substr(start, lineEnd - start);
                start = lineEnd + 1;
                if (line.rfind(':', 0) == 0)
                    continue;
                comment = false;
                if (line.rfind("event: ", 0) == 0)
                    event.name = line.substr(7);
                else if (line.rfind("id: ", 0) == 0)
                    event.id = line.substr(4);
                else if (line.rfind("data: ", 0) == 0)
                    event.data += line.substr(6);
            }
            if (comment) {
                ++m_comments;
                continue;
            }
            if (event.name == "reading") {
                ++m_readings;
                m_lastReading = event.data;
                continue;
            }
            return event;
        }
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !readSome(static_cast<int>(left.count())))
            return std::nullopt;
    }
}

std::string EventReader::body(int timeoutMs)
{
    if (status(timeoutMs) == 0)
        return {};
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    const std::size_t lengthAt = m_head.find("\r\nContent-Length: ");
    const std::size_t length = lengthAt == std::string::npos ? 0 : std::stoul(m_head.substr(lengthAt + 18));
    while (m_raw.size() < length) {
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !readSome(static_cast<int>(left.count())))
            break;
    }
    return m_raw;
}

bool EventReader::closedByPeer(int timeoutMs)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!m_ended) {
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        readSome(static_cast<int>(left.count()));
    }
    return true;
}
