#include "crashtestsupport.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tempdirectory.h"
#include "testpaths.h"

extern char** environ;

namespace CrashTest {

ProcessResult runProcess(const std::vector<std::string>& arguments,
    const std::map<std::string, std::string>& environment, int timeoutMs)
{
    std::map<std::string, std::string> merged;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string::npos)
            merged[text.substr(0, equals)] = text.substr(equals + 1);
    }
    for (const auto& [key, value] : environment)
        merged[key] = value;
    std::vector<std::string> environmentTexts;
    environmentTexts.reserve(merged.size());
    for (const auto& [key, value] : merged)
        environmentTexts.push_back(std::string(key).append("=").append(value));

    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> envp;
    envp.reserve(environmentTexts.size() + 1);
    for (const std::string& text : environmentTexts)
        envp.push_back(const_cast<char*>(text.c_str()));
    envp.push_back(nullptr);

    ProcessResult result;
    if (posix_spawn(&result.pid, argv[0], nullptr, nullptr, argv.data(), envp.data()) != 0)
        throw std::runtime_error("cannot start " + arguments.front());
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        const pid_t ended = waitpid(result.pid, &result.status, timeoutMs > 0 ? WNOHANG : 0);
        if (ended == result.pid)
            return result;
        if (ended < 0 && errno != EINTR)
            throw std::runtime_error("waitpid failed");
        if (timeoutMs > 0 && std::chrono::steady_clock::now() > deadline) {
            kill(result.pid, SIGKILL);
            while (waitpid(result.pid, &result.status, 0) < 0 && errno == EINTR) { }
            return result;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

ReporterRecord readReporterRecord(const std::string& path)
{
    ReporterRecord record;
    std::istringstream in(readFile(path));
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("argv=", 0) == 0)
            record.arguments.push_back(line.substr(5));
        else if (line.rfind("data=", 0) == 0)
            record.dataDirectory = line.substr(5);
    }
    return record;
}

std::string commandOutput(const std::vector<std::string>& arguments)
{
    int pipeFds[2];
    if (pipe(pipeFds) != 0)
        throw std::runtime_error("pipe failed");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    std::string output;
    if (spawned == 0) {
        char buffer[65536];
        ssize_t n;
        while ((n = read(pipeFds[0], buffer, sizeof buffer)) > 0 || (n < 0 && errno == EINTR))
            if (n > 0)
                output.append(buffer, static_cast<std::size_t>(n));
        while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) { }
    }
    close(pipeFds[0]);
    if (spawned != 0)
        throw std::runtime_error("cannot start " + arguments.front());
    return output;
}

int DumpThread::frameOf(const std::string& function) const
{
    for (std::size_t i = 0; i < frames.size(); ++i)
        if (frames[i].function.rfind(function, 0) == 0)
            return static_cast<int>(i);
    return -1;
}

bool ProcessedDump::hasStream(const std::string& name) const
{
    return std::find(streams.begin(), streams.end(), name) != streams.end();
}

namespace {

std::vector<std::string> splitFields(const std::string& line)
{
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (;;) {
        const std::size_t bar = line.find('|', start);
        fields.push_back(line.substr(start, bar == std::string::npos ? std::string::npos : bar - start));
        if (bar == std::string::npos)
            return fields;
        start = bar + 1;
    }
}

// "  name = value" lines of minidump_dump
bool fieldValue(const std::string& line, const std::string& name, std::string& value)
{
    const std::size_t at = line.find_first_not_of(' ');
    if (at == std::string::npos || line.compare(at, name.size(), name) != 0)
        return false;
    const std::size_t equals = line.find("= ", at + name.size());
    if (equals == std::string::npos || line.find_first_not_of(' ', at + name.size()) != equals)
        return false;
    value = line.substr(equals + 2);
    return true;
}

} // namespace

ProcessedDump processDump(const std::string& dumpPath, const std::vector<std::string>& symbolPaths)
{
    ProcessedDump dump;
    std::vector<std::string> arguments = {KORVANE_MINIDUMP_STACKWALK_PROGRAM, "-m", dumpPath};
    arguments.insert(arguments.end(), symbolPaths.begin(), symbolPaths.end());
    dump.stackwalk = commandOutput(arguments);

    std::istringstream walked(dump.stackwalk);
    std::string line;
    while (std::getline(walked, line)) {
        const std::vector<std::string> fields = splitFields(line);
        if (fields[0] == "OS" && fields.size() >= 3) {
            dump.os = fields[1];
            dump.osVersion = fields[2];
        } else if (fields[0] == "CPU" && fields.size() >= 3) {
            dump.cpu = fields[1];
            dump.cpuInfo = fields[2];
        } else if (fields[0] == "Crash" && fields.size() >= 4) {
            dump.crashReason = fields[1];
            dump.crashAddress = fields[2];
            dump.crashingThread = fields[3].empty() ? -1 : std::stoi(fields[3]);
        } else if (fields.size() >= 7 && !fields[0].empty()
            && std::isdigit(static_cast<unsigned char>(fields[0][0]))) {
            const std::size_t thread = std::stoul(fields[0]);
            if (dump.threads.size() <= thread)
                dump.threads.resize(thread + 1);
            dump.threads[thread].frames.push_back({fields[2], fields[3]});
        }
    }

    std::istringstream dumped(commandOutput({KORVANE_MINIDUMP_DUMP_PROGRAM, dumpPath}));
    std::size_t thread = 0;
    std::string section;
    while (std::getline(dumped, line)) {
        std::string value;
        if (!line.empty() && line[0] != ' ') {
            section = line;
        } else if (fieldValue(line, "stream_type", value)) {
            const std::size_t open = value.find('(');
            const std::size_t close = value.find(')', open);
            if (open != std::string::npos && close != std::string::npos)
                dump.streams.push_back(value.substr(open + 1, close - open - 1));
        } else if (section == "MDRawThread" && fieldValue(line, "thread_id", value)) {
            if (dump.threads.size() <= thread)
                dump.threads.resize(thread + 1);
            dump.threads[thread++].id = static_cast<std::uint32_t>(std::stoul(value, nullptr, 16));
        } else if (section == "MDException" && fieldValue(line, "thread_id", value)) {
            dump.exceptionThreadId = static_cast<std::uint32_t>(std::stoul(value, nullptr, 16));
        } else if (section == "MDRawModule" && fieldValue(line, "(code_file)", value)) {
            if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
                value = value.substr(1, value.size() - 2);
            dump.modules.push_back(value);
        }
    }
    return dump;
}

void writeSystemSymbols(const std::string& dumpPath, const std::string& store)
{
    const ProcessedDump dump = processDump(dumpPath, {});
    for (const std::string& module : dump.modules) {
        const bool library = module.find(".so") != std::string::npos
            && (module.rfind("/usr/lib/", 0) == 0 || module.rfind("/lib/", 0) == 0);
        if (!library)
            continue;
        const std::filesystem::path name = std::filesystem::path(module).filename();
        if (std::filesystem::exists(std::filesystem::path(store) / name))
            continue;
        const std::string symbols = commandOutput({KORVANE_DUMP_SYMS_PROGRAM, module});
        // MODULE <os> <cpu> <id> <name>
        std::istringstream header(symbols.substr(0, symbols.find('\n')));
        std::string word, os, cpu, id, moduleName;
        if (!(header >> word >> os >> cpu >> id >> moduleName) || word != "MODULE")
            continue;
        const std::filesystem::path directory = std::filesystem::path(store) / moduleName / id;
        std::filesystem::create_directories(directory);
        // written aside and renamed, so that a parallel test never reads half a file
        std::filesystem::path partial = directory / moduleName;
        partial += ".sym." + std::to_string(getpid());
        std::ofstream(partial, std::ios::binary) << symbols;
        std::filesystem::rename(partial, directory / (moduleName + ".sym"));
    }
}

} // namespace CrashTest
