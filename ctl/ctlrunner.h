#pragma once

#include <atomic>
#include <iosfwd>
#include <string>
#include <vector>

#include "controlclient.h"
#include "ctloptions.h"

// The control tool: parses the command line, connects, runs one command and
// returns the exit code. Results go to out, each failure as one line
// "korvane-ctl: ..." to err. The client's own console lines (connect,
// disconnect, parse errors) are kept off the terminal while it runs.
class CtlRunner final
{
public:
    enum ExitCode
    {
        ExitDone = 0,
        ExitRefused = 1,
        ExitUsage = 2,
        ExitConnection = 3,
    };

    CtlRunner(std::ostream& out, std::ostream& err);
    CtlRunner(const CtlRunner&) = delete;
    CtlRunner& operator=(const CtlRunner&) = delete;

    int run(const std::vector<std::string>& args);

    // watch: milliseconds between rounds, and how many rounds (0: until stopped).
    void setWatchPace(int intervalMs, int rounds);
    // Set from a signal handler to end watch; a request cut short by the
    // interruption then counts as done.
    void setStopFlag(const std::atomic<bool>* stop) { m_stop = stop; }
    // Clear the terminal before each round of watch.
    void setClearScreen(bool clear) { m_clearScreen = clear; }
    // Cuts the connect or request under way short; for a signal handler.
    void interrupt();

private:
    // Points m_client at a client for as long as it lives.
    class ActiveClient final
    {
    public:
        ActiveClient(std::atomic<ControlClient*>& slot, ControlClient& client)
            : m_slot(slot)
        {
            m_slot = &client;
        }
        ~ActiveClient() { m_slot = nullptr; }
        ActiveClient(const ActiveClient&) = delete;
        ActiveClient& operator=(const ActiveClient&) = delete;

    private:
        std::atomic<ControlClient*>& m_slot;
    };

    void startClock(ControlClient& client, const CtlOptions& options);
    int cannotConnect(const ControlClient& client, const CtlOptions& options);
    int execute(ControlClient& client, const CtlOptions& options);
    int eachId(ControlClient& client, const CtlOptions& options, const char* verb, const char* what,
        bool (ControlClient::*request)(std::uint32_t));
    int watch(ControlClient& client, const CtlOptions& options);
    // After a request returned failure: 3 when the connection is gone, else 1.
    int failed(const ControlClient& client, const CtlOptions& options, const std::string& what);
    void printJson(const Json::Value& value, bool compact = false);
    bool stopped() const { return m_stop && m_stop->load(); }

    std::ostream& m_out;
    std::ostream& m_err;
    int m_watchIntervalMs = 1000;
    int m_watchRounds = 0;
    const std::atomic<bool>* m_stop = nullptr;
    bool m_clearScreen = false;
    std::vector<ControlClient::TaskRequest> m_tasks;
    std::atomic<ControlClient*> m_client {nullptr};
};
