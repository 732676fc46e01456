#include "childprocess.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// 1: bytes read; 0: none within the time; -1: the end of the stream.
int readSome(int fd, std::string& text, int timeoutMs)
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

} // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& args)
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

ChildProcess::~ChildProcess()
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

void ChildProcess::signal(int number)
{
    // once waited for, its number may belong to another process
    if (m_pid > 0 && m_status == -1)
        ::kill(m_pid, number);
}

std::string ChildProcess::readLine(int timeoutMs)
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

int ChildProcess::listeningPort()
{
    const std::string address = listeningAddress(readLine());
    const std::size_t colon = address.rfind(':');
    return colon == std::string::npos ? 0 : std::stoi(address.substr(colon + 1));
}

int ChildProcess::wait(int timeoutMs)
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

std::string ChildProcess::err()
{
    while (readSome(m_err, m_errText, 0) > 0) { }
    return m_errText;
}

std::string listeningAddress(const std::string& line)
{
    const std::string prefix = "listening on ";
    if (line.rfind(prefix, 0) != 0 || line.find(':', prefix.size()) == std::string::npos)
        return {};
    return line.substr(prefix.size());
}

int runCommand(const std::string& command, std::string& output)
{
    output.clear();
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe)
        return -1;
    char block[4096];
    std::size_t count;
    while ((count = std::fread(block, 1, sizeof block, pipe)) > 0)
        output.append(block, count);
    const int status = ::pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
