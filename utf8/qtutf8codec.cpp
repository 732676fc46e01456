#include "qtutf8codec.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace {

QString fromUtf8(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string toStdString(const QByteArray& bytes)
{
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

std::string toUtf8(const QString& text)
{
    return toStdString(text.toUtf8());
}

QDir baseDirectory(const std::string& base, bool baseIsDirectory)
{
    return baseIsDirectory ? QDir(fromUtf8(base)) : QFileInfo(fromUtf8(base)).dir();
}

} // namespace

std::string QtUtf8Codec::toLower(const std::string& text) const
{
    return toUtf8(fromUtf8(text).toLower());
}

std::string QtUtf8Codec::toUpper(const std::string& text) const
{
    return toUtf8(fromUtf8(text).toUpper());
}

std::string QtUtf8Codec::toNative(const std::string& utf8Path) const
{
    return toStdString(QFile::encodeName(fromUtf8(utf8Path)));
}

std::string QtUtf8Codec::fromNative(const std::string& nativePath) const
{
    return toUtf8(
        QFile::decodeName(QByteArray(nativePath.data(), static_cast<qsizetype>(nativePath.size()))));
}

std::string QtUtf8Codec::absolutePath(
    const std::string& path, const std::string& base, bool baseIsDirectory) const
{
    return toUtf8(QDir::cleanPath(baseDirectory(base, baseIsDirectory).absoluteFilePath(fromUtf8(path))));
}

std::string QtUtf8Codec::relativePath(
    const std::string& path, const std::string& base, bool baseIsDirectory) const
{
    return toUtf8(QDir::cleanPath(baseDirectory(base, baseIsDirectory).relativeFilePath(fromUtf8(path))));
}
