#include "utf8.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace utf8 {

namespace {

Utf8Codec* g_codec = nullptr;

std::string withForwardSlashes(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

// Everything before the last "/", or empty when there is none.
std::string directoryPart(const std::string& path)
{
    const std::string::size_type slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

// Empty components (from repeated, leading or trailing separators) are dropped.
std::vector<std::string> components(const std::string& path)
{
    std::vector<std::string> result;
    std::string::size_type start = 0;
    while (start <= path.size()) {
        std::string::size_type end = path.find('/', start);
        if (end == std::string::npos)
            end = path.size();
        if (end > start)
            result.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

void appendSeparator(std::string& path)
{
    if (!path.empty() && path.back() != '/')
        path += '/';
}

} // namespace

Utf8Codec::~Utf8Codec() = default;

Utf8Codec* setCodec(Utf8Codec* codec)
{
    Utf8Codec* previous = g_codec;
    g_codec = codec;
    return previous;
}

std::string toNarrow(const std::wstring& text)
{
    // the restartable form, with a state of our own: no hidden shared state
    std::mbstate_t state {};
    const wchar_t* source = text.c_str();
    // NOLINTNEXTLINE(concurrency-mt-unsafe): own state
    const std::size_t length = std::wcsrtombs(nullptr, &source, 0, &state);
    if (length == static_cast<std::size_t>(-1))
        return std::string();
    std::vector<char> buffer(length + 1);
    state = std::mbstate_t {};
    source = text.c_str();
    // NOLINTNEXTLINE(concurrency-mt-unsafe): own state
    if (std::wcsrtombs(buffer.data(), &source, buffer.size(), &state) == static_cast<std::size_t>(-1))
        return std::string();
    return std::string(buffer.data(), length);
}

std::wstring toWide(const std::string& text)
{
    const std::size_t length = std::mbstowcs(nullptr, text.c_str(), 0);
    if (length == static_cast<std::size_t>(-1))
        return std::wstring();
    std::vector<wchar_t> buffer(length + 1);
    if (std::mbstowcs(buffer.data(), text.c_str(), buffer.size()) == static_cast<std::size_t>(-1))
        return std::wstring();
    return std::wstring(buffer.data(), length);
}

std::string toNative(const std::string& path)
{
    return g_codec ? g_codec->toNative(path) : path;
}

std::string fromNative(const std::string& path)
{
    return g_codec ? g_codec->fromNative(path) : path;
}

std::string currentDirectory()
{
    std::vector<char> buffer(256);
    for (;;) {
        if (::getcwd(buffer.data(), buffer.size()))
            return std::string(buffer.data());
        if (errno != ERANGE)
            return std::string();
        buffer.resize(buffer.size() * 2);
    }
}

std::string realPath(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
    return resolved ? std::string(resolved.get()) : path;
}

std::string absolutePath(const std::string& path, const std::string& base, bool baseIsDirectory)
{
    if (g_codec)
        return g_codec->absolutePath(path, base, baseIsDirectory);

    if (!path.empty() && path.front() == '/')
        return path;

    const std::string relative = withForwardSlashes(path);
    std::string baseDir = withForwardSlashes(base);
    if (!baseIsDirectory)
        baseDir = directoryPart(baseDir);

    std::string result;
    if (baseDir.empty() || baseDir.front() != '/') {
        result = currentDirectory();
        if (!baseDir.empty() && baseDir != ".") {
            appendSeparator(result);
            result += baseDir;
        }
    } else {
        result = baseDir;
    }

    if (!relative.empty()) {
        appendSeparator(result);
        result += relative;
    }
    return realPath(result);
}

std::string relativePath(const std::string& path, const std::string& base, bool baseIsDirectory)
{
    if (g_codec)
        return g_codec->relativePath(path, base, baseIsDirectory);

    const std::string target = withForwardSlashes(realPath(path));
    std::string baseDir = withForwardSlashes(realPath(base));
    if (!baseIsDirectory)
        baseDir = directoryPart(baseDir);

    const std::vector<std::string> targetParts = components(target);
    const std::vector<std::string> baseParts = components(baseDir);
    std::size_t shared = 0;
    while (
        shared < targetParts.size() && shared < baseParts.size() && targetParts[shared] == baseParts[shared])
        ++shared;

    std::string result;
    for (std::size_t i = shared; i < baseParts.size(); ++i)
        result += "../";
    for (std::size_t i = shared; i < targetParts.size(); ++i) {
        if (i > shared)
            result += '/';
        result += targetParts[i];
    }
    return result.empty() ? std::string(".") : result;
}

std::string toLower(const std::string& text)
{
    if (g_codec)
        return g_codec->toLower(text);
    std::string result = text;
    for (char& c : result)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

std::string toUpper(const std::string& text)
{
    if (g_codec)
        return g_codec->toUpper(text);
    std::string result = text;
    for (char& c : result)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return result;
}

bool makeDirectory(const std::string& path)
{
    return ::mkdir(toNative(path).c_str(), 0777) == 0;
}

bool removeFile(const std::string& path)
{
    return std::remove(toNative(path).c_str()) == 0;
}

} // namespace utf8
