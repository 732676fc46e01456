#pragma once

#include <string>
#include <vector>

#include "collectmode.h"
#include "listenaddress.h"
#include "loglevel.h"

struct ExporterOptions
{
    // Given to ControlClient::connect as it is: a ":PORT" overrides the
    // default port.
    std::string server = "127.0.0.1";
    // The default 127.0.0.1:10084 when none is given.
    std::vector<ListenAddress> listen;
    std::string telemetryPath = "/metrics";
    std::string webConfigFile;
    int maxRequests = 40;
    LogLevel logLevel = LogLevel::Info;
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
