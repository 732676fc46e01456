#pragma once

#include <string>

// One --web.listen-address.
struct ListenAddress
{
    // Empty: every address of the host (":PORT").
    std::string host;
    int port = 0;

    // As "listening on" names it: [::1]:10084, 127.0.0.1:10084, :10084.
    std::string text(int boundPort) const;
};
