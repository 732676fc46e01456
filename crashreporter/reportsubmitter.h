#pragma once

#include <QObject>
#include <QUrl>

#include "crashreport.h"

class QNetworkAccessManager;
class QNetworkReply;

// Sends one report as an HTTP(S) POST, multipart/form-data: every
// annotation as a field, the comment as "Comments" and the dump as the
// file "upload_file_minidump", through the desktop's proxy settings. A
// reply holding a line "CrashID=<id>", or a JSON object with an "id", is
// kept as <data directory>/submitted/<id>.txt and the pending files are
// removed; on any failure they stay where they are.
class ReportSubmitter final : public QObject
{
    Q_OBJECT

public:
    explicit ReportSubmitter(QObject* parent = nullptr);
    ~ReportSubmitter() override;

    void submit(
        const CrashReport& report, const QString& comment, const QUrl& url, const QString& dataDirectory);

    // The crash id of a reply: the "id" string of a JSON object, else the
    // value of a "CrashID=" line. Empty when there is none or it is not
    // usable as a file name.
    static QString crashIdFromReply(const QByteArray& reply);

signals:
    // crashIdOrError: the crash id on success, else what went wrong.
    void finished(bool succeeded, const QString& crashIdOrError);

private:
    Q_DISABLE_COPY_MOVE(ReportSubmitter)

    void onReplyFinished(QNetworkReply* reply, const CrashReport& report, const QString& dataDirectory);

    QNetworkAccessManager* m_network;
};
