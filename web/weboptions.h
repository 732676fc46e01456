#pragma once

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "webflags.h"

// listen: the default 127.0.0.1:10085 when none is given.
struct WebOptions : WebFlags
{
    // Given to ControlClient::connect as it is: a ":PORT" overrides the
    // default port.
    std::string server = "127.0.0.1";
    std::chrono::milliseconds interval {1000};
    std::chrono::milliseconds serverTimeout {5000};
    std::set<std::string> operators;
    std::string auditFile;
    // Serve the browser application from this folder instead of the built-in copy.
    std::string assetsDir;
    int maxStreams = 256;
    // Bytes of events a stream may fall behind before it is resynced.
    long long streamBuffer = 8LL * 1024 * 1024;
    bool help = false;
    bool version = false;
};

// Reads the command line (without the program name). On a usage error
// returns false with a one-line reason. "--web.operators @FILE" reads the
// names from FILE, one a line.
bool parseWebOptions(const std::vector<std::string>& args, WebOptions& options, std::string& error);

// Whether every address the host stands for is a loopback address; an empty
// host (every address) is not.
bool isLoopbackHost(const std::string& host);

std::string webHelpText();
