#pragma once

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// A program run by a test, its standard output and error on pipes. The
// destructor ends it (SIGKILL) if the test did not.
class ChildProcess final
{
public:
    ChildProcess(const std::string& program, const std::vector<std::string>& args)
    {
        int out[2];
        int err[2];
        if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0)
            return;
        m_pid = ::fork();
        if (m_pid == 0) {
            ::dup2(out[1], STDOUT_FILENO);
            ::dup2(err[1], STDERR_FILENO);
            std::vector<char*> argv;
            argv.push_back(const_cast<char*>(program.c_str()));
            for (const std::string& arg : args)
                argv.push_back(const_cast<char*>(arg.c_str()));
            argv.push_back(nullptr);
            ::execv(program.c_str(), argv.data());
            ::_exit(127);
        }
        ::close(out[1]);
        ::close(err[1]);
        m_out = out[0];
        m_err = err[0];
    }
    ~ChildProcess()
    {
        if (m_pid > 0 && m_status == -1) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
        if (m_out != -1)
            ::close(m_out);
        if (m_err != -1)
            ::close(m_err);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }
    void signal(int number) { ::kill(m_pid, number); }

    // The next line of standard output without its line feed; empty on time-out or end.
    std::string readLine(int timeoutMs = 20000)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        for (;;) {
            const std::size_t feed = m_outText.find('\n', m_outTaken);
            if (feed != std::string::npos) {
                std::string line = m_outText.substr(m_outTaken, feed - m_outTaken);
                m_outTaken = feed + 1;
                return line;
            }
            if (std::chrono::steady_clock::now() >= end || readSome(m_out, m_outText, 50) < 0)
                return {};
        }
    }

    // The port of a first line "listening on ADDR:PORT"; 0 if it does not come.
    int listeningPort()
    {
        const std::string line = readLine();
        const std::size_t colon = line.rfind(':');
        if (line.rfind("listening on ", 0) != 0 || colon == std::string::npos)
            return 0;
        return std::stoi(line.substr(colon + 1));
    }

    // Waits for the end (at most timeoutMs, then SIGKILL); the exit code, or
    // 128 + signal for a process ended by a signal. Reads all output.
    int wait(int timeoutMs = 20000)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        while (m_status == -1) {
            int status = 0;
            if (::waitpid(m_pid, &status, WNOHANG) == m_pid) {
                m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
                break;
            }
            if (std::chrono::steady_clock::now() >= end) {
                ::kill(m_pid, SIGKILL);
                ::waitpid(m_pid, &status, 0);
                m_status = 128 + SIGKILL;
                break;
            }
            readSome(m_out, m_outText, 0);
            readSome(m_err, m_errText, 20);
        }
        while (readSome(m_out, m_outText, 0) > 0) { }
        while (readSome(m_err, m_errText, 0) > 0) { }
        return m_status;
    }

    // Standard output not yet taken by readLine, and all of standard error, read so far.
    std::string out() const { return m_outText.substr(m_outTaken); }
    std::string err()
    {
        while (readSome(m_err, m_errText, 0) > 0) { }
        return m_errText;
    }

private:
    // 1: bytes read; 0: none within the time; -1: the end of the stream.
    static int readSome(int fd, std::string& text, int timeoutMs)
    {
        pollfd descriptor {fd, POLLIN, 0};
        if (fd == -1 || ::poll(&descriptor, 1, timeoutMs) < 1)
            return 0;
        char block[65536];
        const ssize_t count = ::read(fd, block, sizeof block);
        if (count <= 0)
            return -1;
        text.append(block, static_cast<std::size_t>(count));
        return 1;
    }

    pid_t m_pid = -1;
    int m_out = -1;
    int m_err = -1;
    int m_status = -1;
    std::string m_outText;
    std::size_t m_outTaken = 0;
    std::string m_errText;
};
