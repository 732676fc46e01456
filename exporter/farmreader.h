#pragma once

#include <chrono>
#include <iosfwd>
#include <mutex>
#include <string>

#include <json/value.h>

#include "backoff.h"
#include "controlclient.h"
#include "farmsnapshot.h"

// Reads "listBatches" and "listNodes" over one kept connection. A lost
// connection is made again at the next read, spaced by a Backoff while the
// server stays away. Every failure is one line on the log stream; the reader
// itself never gives up. Members of the wrong JSON type are caught here and
// named in the log line.
//
// read() belongs to one thread; interrupt() may be called from any other.
class FarmReader final
{
public:
    // server: "host" or "host:port" (default port 5840).
    FarmReader(std::string server, int timeoutSeconds, std::ostream& log);
    ~FarmReader();
    FarmReader(const FarmReader&) = delete;
    FarmReader& operator=(const FarmReader&) = delete;

    // Fills out (reusing its storage); out.up tells whether both requests succeeded.
    void read(FarmSnapshot& out, Backoff::Clock::time_point now = Backoff::Clock::now());

    // Cuts a request that waits on the server short, as a lost connection.
    void interrupt();

    const Backoff& backoff() const { return m_backoff; }

private:
    bool connect(Backoff::Clock::time_point now);
    void dropConnection();
    // One request; the "result" member, or null after a logged failure.
    Json::Value request(const char* method);
    // One log line for a failed read.
    void fail(const std::string& text);

    std::string m_server;
    std::string m_address;
    int m_timeoutSeconds;
    std::ostream& m_log;
    ControlClient m_client;
    Backoff m_backoff;
    int m_nextId = 0;
    bool m_wasUp = false;

    // A duplicate of the connected socket, for interrupt().
    std::mutex m_socketMutex;
    int m_socketCopy = -1;
};
