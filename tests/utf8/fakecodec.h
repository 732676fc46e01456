#pragma once

#include "utf8.h"

// Answers every codec operation with a tagged echo of its arguments, so a test
// can tell that (and how) the library went through the installed codec.
// toNative prepends a configurable prefix, which lets a test redirect file
// operations into a directory of its own.
class FakeCodec final : public utf8::Utf8Codec
{
public:
    explicit FakeCodec(std::string nativePrefix = "native:")
        : m_nativePrefix(std::move(nativePrefix))
    {
    }

    std::string toLower(const std::string& text) const override { return "lower:" + text; }
    std::string toUpper(const std::string& text) const override { return "upper:" + text; }
    std::string toNative(const std::string& utf8Path) const override { return m_nativePrefix + utf8Path; }
    std::string fromNative(const std::string& nativePath) const override { return "utf8:" + nativePath; }
    std::string absolutePath(
        const std::string& path, const std::string& base, bool baseIsDirectory) const override
    {
        return "absolute:" + path + "|" + base + "|" + (baseIsDirectory ? "directory" : "file");
    }
    std::string relativePath(
        const std::string& path, const std::string& base, bool baseIsDirectory) const override
    {
        return "relative:" + path + "|" + base + "|" + (baseIsDirectory ? "directory" : "file");
    }

private:
    std::string m_nativePrefix;
};
