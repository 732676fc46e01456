#pragma once

#include <QtGlobal>

#include "utf8.h"

// The codec the application installs: Qt's case mapping (full Unicode, not
// byte-wise), Qt's file-name encoding and QDir's path arithmetic.
class QtUtf8Codec final : public utf8::Utf8Codec
{
public:
    QtUtf8Codec() = default;
    ~QtUtf8Codec() override = default;

    std::string toLower(const std::string& text) const override;
    std::string toUpper(const std::string& text) const override;
    std::string toNative(const std::string& utf8Path) const override;
    std::string fromNative(const std::string& nativePath) const override;
    std::string absolutePath(
        const std::string& path, const std::string& base, bool baseIsDirectory) const override;
    std::string relativePath(
        const std::string& path, const std::string& base, bool baseIsDirectory) const override;

private:
    Q_DISABLE_COPY_MOVE(QtUtf8Codec)
};
