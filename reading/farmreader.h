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
    // Why the last read or request failed, as its log line says it
    // (without the program's name); empty after a success.
    const std::string& lastFailure() const { return m_lastFailure; }

    // Other requests on the reading's connection (following a batch, the
    // commands of the web monitor): the connection, made first when needed
    // and the back-off allows, with every request bounded by the deadline;
    // null after a logged failure.
    ControlClient* connection(
        SteadyClock::time_point deadline, Backoff::Clock::time_point now = Backoff::Clock::now());
    // After a request on connection() failed: logs why, as read() does, and
    // returns the client's reason. Failure::None (answered without a
    // result) is logged only for a reading, not for a command the server refused.
    ControlClient::Failure requestFailed(const char* method);

private:
    bool connect(Backoff::Clock::time_point now);
    // One request; the "result" member, or null after a logged failure.
    Json::Value request(const char* method);
    // The log line for the client's failure in method.
    void logFailure(const char* method);
    // One log line for a failed read.
    void fail(const std::string& text);

    std::string m_server;
    std::string m_address;
    std::string m_lastFailure;
    std::ostream& m_log;
    const std::string m_logPrefix;
    ControlClient m_client;
    Backoff m_backoff;
    // The time the current read was given, for the log lines.
    SteadyClock::duration m_budget {};
    bool m_wasUp = false;
};
