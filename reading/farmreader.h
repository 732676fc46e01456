#pragma once

#include <iosfwd>
#include <string>

#include <json/value.h>

#include "backoff.h"
#include "controlclient.h"
#include "farmsnapshot.h"

// Reads "listBatches" and "listNodes" over one kept connection. A lost
// connection is made again at the next read, spaced by a Backoff while the
// server stays away. Every failure is one line on the log stream that says
// why; the reader itself never gives up. Members of the wrong JSON type are
// caught here and named in the log line.
//
// read() belongs to one thread; interrupt() may be called from any other.
class FarmReader final
{
public:
    // server: "host" or "host:port" (default port 5840). program opens
    // each log line: "program: text".
    FarmReader(std::string server, std::ostream& log, std::string program);
    FarmReader(const FarmReader&) = delete;
    FarmReader& operator=(const FarmReader&) = delete;
    FarmReader(FarmReader&&) = delete;
    FarmReader& operator=(FarmReader&&) = delete;

    // Fills out (reusing its storage); out.up tells whether both requests
    // succeeded. The deadline bounds all of it: name lookup, connect and
    // both replies.
    void read(FarmSnapshot& out, SteadyClock::time_point deadline,
        Backoff::Clock::time_point now = Backoff::Clock::now());

    // Ends a read under way and every later one at once; for stopping.
    void interrupt() { m_client.interrupt(); }

    const Backoff& backoff() const { return m_backoff; }

private:
    bool connect(Backoff::Clock::time_point now);
    // One request; the "result" member, or null after a logged failure.
    Json::Value request(const char* method);
    // One log line for a failed read.
    void fail(const std::string& text);

    std::string m_server;
    std::string m_address;
    std::ostream& m_log;
    const std::string m_logPrefix;
    ControlClient m_client;
    Backoff m_backoff;
    // The time the current read was given, for the log lines.
    SteadyClock::duration m_budget {};
    bool m_wasUp = false;
};
