#include "tempdirectory.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <thread>

TempDirectory::TempDirectory()
{
    std::error_code error;
    std::string name = (std::filesystem::temp_directory_path(error) / "korvane-test-XXXXXX").string();
    if (error || !::mkdtemp(name.data()))
        return;
    m_path = std::filesystem::canonical(name, error).string();
    if (error)
        m_path = name;
}

TempDirectory::~TempDirectory()
{
    std::error_code ignored;
    if (!m_path.empty())
        std::filesystem::remove_all(m_path, ignored);
}

bool TempDirectory::writeFile(const std::string& relative, const std::string& content) const
{
    std::ofstream out(path(relative), std::ios_base::binary);
    out << content;
    return static_cast<bool>(out);
}

bool TempDirectory::makeDirectory(const std::string& relative) const
{
    return ::mkdir(path(relative).c_str(), 0777) == 0;
}

bool pathExists(const std::string& path)
{
    struct stat info;
    return ::stat(path.c_str(), &info) == 0;
}

bool isDirectory(const std::string& path)
{
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

long long fileSize(const std::string& path)
{
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 ? static_cast<long long>(info.st_size) : -1;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios_base::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool waitForFile(const std::string& path, int timeoutMs)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!pathExists(path)) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}
