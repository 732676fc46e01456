#include "httpcall.h"

#include <arpa/inet.h>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

#include "sseevent.h"

namespace {

// Content-Length of a header already lower-cased; -1 when absent.
long long contentLength(const std::string& header)
{
    const std::size_t at = header.find("\r\ncontent-length:");
    return at == std::string::npos ? -1 : std::strtoll(header.c_str() + at + 17, nullptr, 10);
}

} // namespace

HttpCall::Reply HttpCall::run(
    int port, const std::string& method, const std::string& path, const std::string& body, int timeoutMs)
{
    Reply reply;
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        reply.error = std::generic_category().message(errno);
        return reply;
    }
    const int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        reply.error = std::string("connect: ") + std::generic_category().message(errno);
        ::close(fd);
        return reply;
    }
    std::string request = method + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n";
    if (method == "POST")
        request
            += "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    request += "\r\n" + body;

    reply.sent = SseEvent::monotonicNanoseconds();
    const std::int64_t deadline = reply.sent + static_cast<std::int64_t>(timeoutMs) * 1000000;
    if (::send(fd, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size())) {
        reply.error = std::string("send: ") + std::generic_category().message(errno);
        ::close(fd);
        return reply;
    }
    std::string text;
    std::size_t headerEnd = std::string::npos;
    long long length = -1;
    char block[65536];
    for (;;) {
        const std::int64_t left = (deadline - SseEvent::monotonicNanoseconds()) / 1000000;
        pollfd polled {fd, POLLIN, 0};
        if (left <= 0 || ::poll(&polled, 1, static_cast<int>(left)) <= 0) {
            reply.error = "no full reply in " + std::to_string(timeoutMs) + " ms";
            break;
        }
        const ssize_t got = ::recv(fd, block, sizeof block, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got > 0)
            text.append(block, static_cast<std::size_t>(got));
        if (headerEnd == std::string::npos && (headerEnd = text.find("\r\n\r\n")) != std::string::npos) {
            std::string header = text.substr(0, headerEnd + 2);
            for (char& c : header)
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            length = contentLength(header);
            reply.status = std::atoi(text.c_str() + 9);
        }
        const bool complete = headerEnd != std::string::npos && length >= 0
            && text.size() >= headerEnd + 4 + static_cast<std::size_t>(length);
        if (complete || got <= 0) {
            reply.done = SseEvent::monotonicNanoseconds();
            if (headerEnd != std::string::npos)
                reply.body = text.substr(headerEnd + 4);
            else
                reply.error = "connection closed before the reply's header";
            break;
        }
    }
    ::close(fd);
    return reply;
}
