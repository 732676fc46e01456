#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

// A program run by a test, its standard output and error on pipes. The
// destructor ends it (SIGKILL) if the test did not.
class ChildProcess final
{
public:
    ChildProcess(const std::string& program, const std::vector<std::string>& args);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }
    void signal(int number);

    // The next line of standard output without its line feed; empty on time-out or end.
    std::string readLine(int timeoutMs = 20000);

    // The port of a first line "listening on ADDR:PORT"; 0 if it does not come.
    int listeningPort();

    // Waits for the end (at most timeoutMs, then SIGKILL); the exit code, or
    // 128 + signal for a process ended by a signal. Reads all output.
    int wait(int timeoutMs = 20000);

    // Standard output not yet taken by readLine, and all of standard error, read so far.
    std::string out() const { return m_outText.substr(m_outTaken); }
    std::string err();

private:
    pid_t m_pid = -1;
    int m_out = -1;
    int m_err = -1;
    int m_status = -1;
    std::string m_outText;
    std::size_t m_outTaken = 0;
    std::string m_errText;
};

// "ADDR:PORT" of a line "listening on ADDR:PORT"; empty for any other line.
std::string listeningAddress(const std::string& line);

// Runs a shell command; its exit code and what it printed on both streams.
int runCommand(const std::string& command, std::string& output);
