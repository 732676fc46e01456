#include "crashtestsupport.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace CrashTest {

TemporaryDirectory::TemporaryDirectory()
{
    char pattern[] = "/tmp/korvane-crash-test-XXXXXX";
    if (!mkdtemp(pattern))
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

ProcessResult runProcess(
    const std::vector<std::string>& arguments, const std::map<std::string, std::string>& environment)
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
    while (waitpid(result.pid, &result.status, 0) < 0) { }
    return result;
}

bool fileExists(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0;
}

bool waitForFile(const std::string& path, int timeoutMs)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!fileExists(path)) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
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

MinidumpFile::MinidumpFile(const std::string& path)
    : m_bytes(readFile(path))
{
    m_valid = m_bytes.size() >= 32;
}

std::uint16_t MinidumpFile::u16(std::size_t offset) const
{
    std::uint16_t value = 0;
    if (offset + sizeof value <= m_bytes.size())
        std::memcpy(&value, m_bytes.data() + offset, sizeof value);
    return value;
}

std::uint32_t MinidumpFile::u32(std::size_t offset) const
{
    std::uint32_t value = 0;
    if (offset + sizeof value <= m_bytes.size())
        std::memcpy(&value, m_bytes.data() + offset, sizeof value);
    return value;
}

std::uint64_t MinidumpFile::u64(std::size_t offset) const
{
    std::uint64_t value = 0;
    if (offset + sizeof value <= m_bytes.size())
        std::memcpy(&value, m_bytes.data() + offset, sizeof value);
    return value;
}

std::vector<std::uint32_t> MinidumpFile::streamTypes() const
{
    std::vector<std::uint32_t> types;
    const std::uint32_t directory = u32(12);
    for (std::uint32_t i = 0; i < streamCount(); ++i)
        types.push_back(u32(directory + i * 12));
    return types;
}

std::pair<std::uint32_t, std::uint32_t> MinidumpFile::stream(std::uint32_t type) const
{
    const std::uint32_t directory = u32(12);
    for (std::uint32_t i = 0; i < streamCount(); ++i) {
        const std::size_t entry = directory + i * 12;
        if (u32(entry) == type)
            return {u32(entry + 8), u32(entry + 4)};
    }
    return {0, 0};
}

std::string MinidumpFile::streamBytes(std::uint32_t type) const
{
    const auto [offset, size] = stream(type);
    if (size == 0 || offset + size > m_bytes.size())
        return {};
    return m_bytes.substr(offset, size);
}

std::string MinidumpFile::string(std::size_t offset) const
{
    const std::uint32_t length = u32(offset);
    std::string text;
    for (std::uint32_t i = 0; i < length / 2; ++i)
        text += static_cast<char>(u16(offset + 4 + std::size_t {i} * 2) & 0xff);
    return text;
}

} // namespace CrashTest
