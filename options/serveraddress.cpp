#include "serveraddress.h"

#include <cstdlib>

bool parsePort(const std::string& text, int& port)
{
    if (text.empty() || text.size() > 5 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    port = std::atoi(text.c_str());
    return port <= 65535;
}

bool isServerAddress(const std::string& text)
{
    const std::size_t colon = text.find(':');
    int port = 0;
    return !text.empty() && colon != 0
        && (colon == std::string::npos || (parsePort(text.substr(colon + 1), port) && port > 0));
}

std::string badServerAddress(const std::string& text)
{
    return "not a HOST or HOST:PORT: " + text;
}

std::string withDefaultPort(const std::string& server)
{
    if (server.find(':') == std::string::npos)
        return server + ":" + std::to_string(DefaultServerPort);
    return server;
}

bool parseListenAddress(const std::string& text, std::string& host, int& port)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos)
        return false;
    std::string name = text.substr(0, colon);
    if (!name.empty() && name.front() == '[') {
        if (name.size() < 3 || name.back() != ']')
            return false;
        name = name.substr(1, name.size() - 2);
    } else if (name.find(':') != std::string::npos) {
        return false;
    }
    if (!parsePort(text.substr(colon + 1), port))
        return false;
    host = name;
    return true;
}

std::string badListenAddress(const std::string& text)
{
    return "not an ADDR:PORT: " + text;
}

std::string badPort(const std::string& text)
{
    return "not a port number: " + text;
}
