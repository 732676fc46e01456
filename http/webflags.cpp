#include "webflags.h"

#include <cstdlib>

#include "serveraddress.h"

bool isWebFlag(const std::string& name)
{
    return name == "--web.listen-address" || name == "--web.config.file" || name == "--web.max-requests"
        || name == "--log.level";
}

bool parseWebFlag(const std::string& name, const std::string& value, WebFlags& flags, std::string& error)
{
    if (name == "--web.listen-address") {
        ListenAddress address;
        if (!parseListenAddress(value, address.host, address.port)) {
            error = badListenAddress(value);
            return false;
        }
        flags.listen.push_back(address);
    } else if (name == "--web.config.file") {
        if (value.empty()) {
            error = "--web.config.file needs a file name";
            return false;
        }
        flags.webConfigFile = value;
    } else if (name == "--web.max-requests") {
        if (value.empty() || value.size() > 4 || value.find_first_not_of("0123456789") != std::string::npos
            || std::atoi(value.c_str()) == 0) {
            error = "not a number of requests from 1 to 9999: " + value;
            return false;
        }
        flags.maxRequests = std::atoi(value.c_str());
    } else if (!parseLogLevel(value, flags.logLevel)) {
        error = "not debug, info, warn or error: " + value;
        return false;
    }
    return true;
}
