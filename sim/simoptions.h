#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "farm.h"
#include "serveraddress.h"
#include "simserver.h"

struct SimOptions
{
    std::string address = "127.0.0.1";
    std::uint16_t port = DefaultServerPort;
    FarmConfig farm;
    ServerConfig server;
    bool startTimeGiven = false;
    bool help = false;
};

// Reads the command line (without the program name). On a bad argument
// returns false with a one-line reason in error.
bool parseSimOptions(const std::vector<std::string>& args, SimOptions& options, std::string& error);

std::string simHelpText();
