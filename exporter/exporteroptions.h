#pragma once

#include <string>
#include <vector>

#include "collectmode.h"
#include "webflags.h"

// listen: the default 127.0.0.1:10084 when none is given.
struct ExporterOptions : WebFlags
{
    // Given to ControlClient::connect as it is: a ":PORT" overrides the
    // default port.
    std::string server = "127.0.0.1";
    std::string telemetryPath = "/metrics";
    CollectMode collectBatches = CollectMode::Unfinished;
    int serverTimeoutSeconds = 5;
    bool help = false;
    bool version = false;

    // The server as "host:port", for log lines.
    std::string serverAddress() const;
};

// Reads the command line (without the program name). On a usage error
// returns false with a one-line reason.
bool parseExporterOptions(const std::vector<std::string>& args, ExporterOptions& options, std::string& error);

std::string exporterHelpText();
