#include "crashreport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "crashdatadirectory.h"

CrashReport::CrashReport(const QString& dumpPath)
    : m_dumpPath(QDir::cleanPath(dumpPath))
{
}

QString CrashReport::extraPath() const
{
    QString path = m_dumpPath;
    if (path.endsWith(QLatin1String(".dmp")))
        path.chop(4);
    return path + QLatin1String(".extra");
}

QString CrashReport::minidumpId() const
{
    return QFileInfo(m_dumpPath).completeBaseName();
}

QString CrashReport::annotation(const QString& key) const
{
    for (const auto& [name, value] : m_annotations) {
        if (name == key)
            return value;
    }
    return {};
}

CrashReport::Annotations CrashReport::parseAnnotations(const QByteArray& text)
{
    Annotations annotations;
    for (const QByteArray& line : text.split('\n')) {
        if (line.isEmpty())
            continue;
        const qsizetype equals = line.indexOf('=');
        if (equals < 0)
            annotations.append({QString::fromUtf8(line), QString()});
        else
            annotations.append(
                {QString::fromUtf8(line.left(equals)), QString::fromUtf8(line.mid(equals + 1))});
    }
    return annotations;
}

void CrashReport::readAnnotations()
{
    QFile file(extraPath());
    m_annotations.clear();
    if (file.open(QIODevice::ReadOnly))
        m_annotations = parseAnnotations(file.readAll());
}

QString CrashReport::dataDirectory() const
{
    QString fromEnvironment = qEnvironmentVariable(CrashDataDirectoryVariable);
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    const QString vendor = annotation(QStringLiteral("Vendor"));
    const QString product = annotation(QStringLiteral("ProductName"));
    if (vendor.isEmpty() || product.isEmpty())
        return {};
    return QString::fromStdString(
        crashDataDirectory(QDir::homePath().toStdString(), vendor.toStdString(), product.toStdString()));
}

bool CrashReport::moveToPending(const QString& dataDirectory, QString* error)
{
    const QString pending = QDir::cleanPath(dataDirectory + QLatin1String("/pending"));
    if (!QDir().mkpath(pending)) {
        *error = QStringLiteral("cannot create %1").arg(pending);
        return false;
    }
    if (QFileInfo(m_dumpPath).absolutePath() == QFileInfo(pending).absoluteFilePath())
        return true; // sent again from pending/

    const QString oldExtra = extraPath();
    const QString newDump = pending + QLatin1Char('/') + QFileInfo(m_dumpPath).fileName();
    QFile::remove(newDump);
    if (!QFile::rename(m_dumpPath, newDump)) {
        *error = QStringLiteral("cannot move %1 to %2").arg(m_dumpPath, pending);
        return false;
    }
    m_dumpPath = newDump;
    if (QFile::exists(oldExtra)) {
        QFile::remove(extraPath());
        if (!QFile::rename(oldExtra, extraPath())) {
            *error = QStringLiteral("cannot move %1 to %2").arg(oldExtra, pending);
            return false;
        }
    }
    return true;
}

void CrashReport::remove()
{
    QFile::remove(m_dumpPath);
    QFile::remove(extraPath());
}
