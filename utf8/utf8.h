#pragma once

#include <string>

// UTF-8 everywhere: text and file paths are held as UTF-8 in std::string.
//
// Whatever depends on the file-name encoding, on Unicode case rules or on
// path arithmetic goes through one process-wide codec (Utf8Codec). The
// application installs a Qt-based one at start-up; without a codec every
// operation falls back to a plain byte-wise C-library version.
//
// The codec pointer is read without a lock: install it once, before other
// threads exist, and keep the object alive while it is installed.
namespace utf8 {

class Utf8Codec
{
public:
    virtual ~Utf8Codec();

    virtual std::string toLower(const std::string& text) const = 0;
    virtual std::string toUpper(const std::string& text) const = 0;
    // Path in the file system's own encoding and back
    virtual std::string toNative(const std::string& utf8Path) const = 0;
    virtual std::string fromNative(const std::string& nativePath) const = 0;
    virtual std::string absolutePath(
        const std::string& path, const std::string& base, bool baseIsDirectory) const = 0;
    virtual std::string relativePath(
        const std::string& path, const std::string& base, bool baseIsDirectory) const = 0;

    Utf8Codec(const Utf8Codec&) = delete;
    Utf8Codec& operator=(const Utf8Codec&) = delete;

protected:
    Utf8Codec() = default;
};

// Installs the codec (null uninstalls) and returns the one it replaces.
Utf8Codec* setCodec(Utf8Codec* codec);

// Conversions under the current C locale (setlocale). Text the locale cannot
// convert gives an empty result.
std::string toNarrow(const std::wstring& text);
std::wstring toWide(const std::string& text);

std::string toNative(const std::string& path);
std::string fromNative(const std::string& path);

// Empty when the working directory cannot be read.
std::string currentDirectory();
// The input unchanged when it cannot be resolved (for instance a missing file).
std::string realPath(const std::string& path);

// base names a directory when baseIsDirectory is true, otherwise a file whose
// directory is used.
std::string absolutePath(const std::string& path, const std::string& base, bool baseIsDirectory);
// Without a codec: repeated and trailing separators are ignored, a path equal
// to its base gives ".", and every step up is written "../" (so an ancestor of
// the base gives "../../" with its trailing slash).
std::string relativePath(const std::string& path, const std::string& base, bool baseIsDirectory);

std::string toLower(const std::string& text);
std::string toUpper(const std::string& text);

bool makeDirectory(const std::string& path);
bool removeFile(const std::string& path);

} // namespace utf8
