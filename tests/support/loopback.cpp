#include "loopback.h"

#include <arpa/inet.h>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

std::uint16_t freeLoopbackPort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    const bool bound = ::bind(fd, reinterpret_cast<sockaddr*>(&address), length) == 0
        && ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0;
    ::close(fd);
    return bound ? ntohs(address.sin_port) : 0;
}

LineClient::LineClient(std::uint16_t port)
{
    m_socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        ::close(m_socket);
        m_socket = -1;
    }
}

LineClient::~LineClient()
{
    close();
}

void LineClient::close()
{
    if (m_socket != -1)
        ::close(m_socket);
    m_socket = -1;
}

bool LineClient::write(const std::string& bytes)
{
    return ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

std::string LineClient::readLine(int timeoutMs)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        const std::size_t feed = m_buffer.find('\n');
        if (feed != std::string::npos) {
            std::string line = m_buffer.substr(0, feed + 1);
            m_buffer.erase(0, feed + 1);
            return line;
        }
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now())
                  .count();
        if (left <= 0 || !readSome(static_cast<int>(left)))
            return {};
    }
}

bool LineClient::closedByPeer(int timeoutMs)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (std::chrono::steady_clock::now() < end) {
        pollfd descriptor {m_socket, POLLIN, 0};
        if (::poll(&descriptor, 1, 50) > 0) {
            char block[4096];
            const ssize_t received = ::recv(m_socket, block, sizeof block, 0);
            if (received <= 0)
                return true;
            m_buffer.append(block, static_cast<std::size_t>(received));
        }
    }
    return false;
}

bool LineClient::readSome(int timeoutMs)
{
    pollfd descriptor {m_socket, POLLIN, 0};
    if (::poll(&descriptor, 1, timeoutMs) < 1)
        return false;
    char block[65536];
    const ssize_t received = ::recv(m_socket, block, sizeof block, 0);
    if (received <= 0)
        return false;
    m_buffer.append(block, static_cast<std::size_t>(received));
    return true;
}
