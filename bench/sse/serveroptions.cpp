#include "serveroptions.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

[[noreturn]] void usage(const char* program)
{
    std::fprintf(stderr,
        "usage: %s [--port N] [--size BYTES] [--threads N] [--queue-limit BYTES] [--lifetime SECONDS]\n",
        program);
    std::exit(2); // NOLINT(concurrency-mt-unsafe): reading the command line, before any thread
}

} // namespace

ServerOptions::ServerOptions(int argc, char** argv, std::size_t defaultThreads)
    : threads(defaultThreads)
{
    for (int i = 1; i < argc; ++i) {
        if (i + 1 >= argc)
            usage(argv[0]);
        const char* name = argv[i];
        char* end = nullptr;
        const unsigned long long value = std::strtoull(argv[++i], &end, 10);
        if (*end != '\0')
            usage(argv[0]);
        if (std::strcmp(name, "--port") == 0)
            port = static_cast<int>(value);
        else if (std::strcmp(name, "--size") == 0)
            eventBytes = value;
        else if (std::strcmp(name, "--threads") == 0 && value > 0)
            threads = value;
        else if (std::strcmp(name, "--queue-limit") == 0)
            queueLimit = value;
        else if (std::strcmp(name, "--lifetime") == 0)
            lifetimeSeconds = static_cast<unsigned>(value);
        else
            usage(argv[0]);
    }
}
