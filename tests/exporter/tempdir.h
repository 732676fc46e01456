#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

// A new empty folder under /tmp, removed with everything in it at the end.
class TempDir final
{
public:
    TempDir()
    {
        char pattern[] = "/tmp/korvane-exporter-test-XXXXXX";
        if (::mkdtemp(pattern))
            m_path = pattern;
    }
    ~TempDir()
    {
        std::error_code ignored;
        if (!m_path.empty())
            std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }
    std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(file(name), std::ios::binary) << text;
        return file(name);
    }

private:
    std::string m_path;
};

// Runs a shell command; its exit code and what it printed on both streams.
inline int runCommand(const std::string& command, std::string& output)
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
