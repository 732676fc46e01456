#pragma once

#include <httplib.h>
#include <string>
#include <vector>

#include "childprocess.h"

// korvane-web of this build as a process of its own, listening on a free
// port of 127.0.0.1, for the life of the object.
class WebProcess final
{
public:
    explicit WebProcess(const std::vector<std::string>& options);
    WebProcess(const WebProcess&) = delete;
    WebProcess& operator=(const WebProcess&) = delete;

    int port() const { return m_port; }
    ChildProcess& process() { return m_process; }
    // A client of it, with time-outs a test can wait for.
    httplib::Client client() const;

    // A POST as the program's own page sends it: JSON, from its own origin.
    httplib::Result post(
        const std::string& path, const std::string& body = "{}", const httplib::Headers& extra = {}) const;

private:
    ChildProcess m_process;
    int m_port = 0;
};

// "--server 127.0.0.1:PORT" and a listening address of its own.
std::vector<std::string> webOptions(int simPort, const std::vector<std::string>& more = {});
