#include "listenaddress.h"

std::string ListenAddress::text(int boundPort) const
{
    const bool bracketed = host.find(':') != std::string::npos;
    return (bracketed ? "[" + host + "]" : host) + ":" + std::to_string(boundPort);
}
