#pragma once

#include <cstdint>
#include <string>

// One HTTP/1.1 request to the web monitor on loopback, on a connection of
// its own, waited for up to a timeout.
class HttpCall final
{
public:
    struct Reply
    {
        int status = 0;
        std::string body;
        // Monotonic nanoseconds: the request's send, the reply's last byte read.
        std::int64_t sent = 0;
        std::int64_t done = 0;
        std::string error;
    };

    HttpCall() = delete;

    static Reply run(
        int port, const std::string& method, const std::string& path, const std::string& body, int timeoutMs);
};
