#pragma once

#include <cstddef>

// Command line shared by both fan-out servers:
//   --port N --size BYTES --threads N --queue-limit BYTES --lifetime SECONDS
class ServerOptions final
{
public:
    // Exits with a usage line on a bad argument.
    ServerOptions(int argc, char** argv, std::size_t defaultThreads);

    int port = 18080;
    std::size_t eventBytes = 4096;
    std::size_t threads;
    std::size_t queueLimit = 1 << 20;
    // The server ends itself after this long, should its driver not.
    unsigned lifetimeSeconds = 600;
};
