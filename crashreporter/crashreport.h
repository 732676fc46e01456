#pragma once

#include <QList>
#include <QPair>
#include <QString>

// One crash as the reporter sees it: the dump, the ".extra" annotations
// beside it (key=value lines) and where both are kept. A report is read
// from wherever the crashed program left it and then moved into
// <data directory>/pending/ until it is sent.
class CrashReport final
{
public:
    using Annotations = QList<QPair<QString, QString>>;

    explicit CrashReport(const QString& dumpPath);

    // Reads the ".extra" file; a missing file leaves no annotations.
    void readAnnotations();
    // Moves the dump and the ".extra" file into <dataDirectory>/pending/.
    bool moveToPending(const QString& dataDirectory, QString* error);
    // Removes the dump and the ".extra" file where they are now.
    void remove();

    const QString& dumpPath() const { return m_dumpPath; }
    QString extraPath() const;
    QString minidumpId() const;
    const Annotations& annotations() const { return m_annotations; }
    QString annotation(const QString& key) const;

    static Annotations parseAnnotations(const QByteArray& text);

    // The directory for reports: $MOZ_CRASHREPORTER_DATA_DIRECTORY, or
    // ~/.<vendor>/<product>/Crash Reports from the report's own annotations.
    QString dataDirectory() const;

private:
    QString m_dumpPath;
    Annotations m_annotations;
};
