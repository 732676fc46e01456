#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// A dump and its .extra as the crashed program leaves them.
namespace ReportFiles {

inline const QByteArray DumpBytes = QByteArray("MDMP\x93\xa7\0\0", 8) + QByteArray(300, '\x5a');
inline const QByteArray ExtraText = "ProductName=Monitor\n"
                                    "ServerURL=https://crash-reports.korvane.com/submit\n"
                                    "System=Linux 64bit\n"
                                    "SystemMemory=8.00 GB\n"
                                    "Vendor=Korvane\n"
                                    "Version=0.1.0.2834\n";

inline bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Writes <directory>/<id>.dmp and, unless extra is null, <id>.extra; returns
// the dump's path.
inline QString make(const QString& directory, const QString& id, const QByteArray& extra = ExtraText)
{
    write(directory + "/" + id + ".dmp", DumpBytes);
    if (!extra.isNull())
        write(directory + "/" + id + ".extra", extra);
    return directory + "/" + id + ".dmp";
}

} // namespace ReportFiles
