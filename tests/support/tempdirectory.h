#pragma once

#include <string>

// A new empty directory under the system's temporary directory, named by its
// resolved path (no symbolic links), removed with everything in it at the end.
class TempDirectory final
{
public:
    TempDirectory();
    ~TempDirectory();
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    bool isValid() const { return !m_path.empty(); }
    const std::string& path() const { return m_path; }
    std::string path(const std::string& relative) const { return m_path + "/" + relative; }

    // Creates a file under the directory (its parents must exist) with the given bytes.
    bool writeFile(const std::string& relative, const std::string& content = std::string()) const;
    bool makeDirectory(const std::string& relative) const;

private:
    std::string m_path;
};

bool pathExists(const std::string& path);
bool isDirectory(const std::string& path);
// -1 when there is no such file.
long long fileSize(const std::string& path);
// Empty when the file cannot be read.
std::string readFile(const std::string& path);
// Waits up to timeoutMs for a path to exist.
bool waitForFile(const std::string& path, int timeoutMs = 20000);
