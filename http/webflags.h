#pragma once

#include <string>
#include <vector>

#include "listenaddress.h"
#include "loglevel.h"

// The flags every program that serves HTTP takes, read the same way by
// each: --web.listen-address (repeatable), --web.config.file,
// --web.max-requests and --log.level. A program's options derive from it.
struct WebFlags
{
    // The program's default when none is given.
    std::vector<ListenAddress> listen;
    std::string webConfigFile;
    int maxRequests = 40;
    LogLevel logLevel = LogLevel::Info;
};

// Whether name is one of the flags above.
bool isWebFlag(const std::string& name);

// Reads one of them; on a bad value false with a one-line reason.
bool parseWebFlag(const std::string& name, const std::string& value, WebFlags& flags, std::string& error);
