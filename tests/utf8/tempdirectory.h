#pragma once

#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <sys/stat.h>

#include <QTemporaryDir>

// A fresh directory under the system's temporary directory, named by its
// resolved path (no symbolic links), removed with its contents at the end.
class TempDirectory final
{
public:
    TempDirectory()
    {
        const QByteArray raw = m_dir.path().toUtf8();
        const std::unique_ptr<char, decltype(&std::free)> resolved(
            ::realpath(raw.constData(), nullptr), &std::free);
        m_path = resolved ? resolved.get() : raw.toStdString();
    }

    bool isValid() const { return m_dir.isValid(); }
    const std::string& path() const { return m_path; }
    std::string path(const std::string& relative) const { return m_path + "/" + relative; }

    // Creates a file under the directory (parents must exist) with the given bytes.
    bool writeFile(const std::string& relative, const std::string& content = std::string()) const
    {
        std::ofstream out(path(relative), std::ios_base::binary);
        out << content;
        return static_cast<bool>(out);
    }

    bool makeDirectory(const std::string& relative) const
    {
        return ::mkdir(path(relative).c_str(), 0777) == 0;
    }

    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

private:
    QTemporaryDir m_dir;
    std::string m_path;
};

inline bool pathExists(const std::string& path)
{
    struct stat info;
    return ::stat(path.c_str(), &info) == 0;
}

inline bool isDirectory(const std::string& path)
{
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

inline long long fileSize(const std::string& path)
{
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 ? static_cast<long long>(info.st_size) : -1;
}

inline std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios_base::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
