#include "reportsubmitter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHttpMultiPart>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegularExpression>

namespace {

QHttpPart formField(const QString& name, const QByteArray& value)
{
    QHttpPart part;
    QString quoted = name;
    quoted.replace(QLatin1Char('"'), QLatin1String("%22"));
    part.setHeader(
        QNetworkRequest::ContentDispositionHeader, QStringLiteral("form-data; name=\"%1\"").arg(quoted));
    part.setBody(value);
    return part;
}

} // namespace

ReportSubmitter::ReportSubmitter(QObject* parent)
    : QObject(parent)
    , m_network(new QNetworkAccessManager(this))
{
    // Many farms reach the outside only through a proxy: use the desktop's
    // settings, which include http_proxy and https_proxy.
    QNetworkProxyFactory::setUseSystemConfiguration(true);
}

ReportSubmitter::~ReportSubmitter() = default;

QString ReportSubmitter::crashIdFromReply(const QByteArray& reply)
{
    QString id;
    const QJsonDocument json = QJsonDocument::fromJson(reply);
    if (json.isObject()) {
        id = json.object().value(QLatin1String("id")).toString();
    } else {
        for (const QByteArray& line : reply.split('\n')) {
            const QByteArray trimmed = line.trimmed();
            if (trimmed.startsWith("CrashID=")) {
                id = QString::fromUtf8(trimmed.mid(8));
                break;
            }
        }
    }
    // The id names the receipt file: nothing that could leave submitted/.
    static const QRegularExpression safe(QStringLiteral("^[A-Za-z0-9._-]+$"));
    return safe.match(id).hasMatch() && id != QLatin1String(".") && id != QLatin1String("..") ? id
                                                                                              : QString();
}

void ReportSubmitter::submit(
    const CrashReport& report, const QString& comment, const QUrl& url, const QString& dataDirectory)
{
    auto fail = [this](const QString& message) {
        QMetaObject::invokeMethod(
            this, [this, message] { emit finished(false, message); }, Qt::QueuedConnection);
    };
    if (!url.isValid() || (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https"))) {
        fail(tr("no valid submission address"));
        return;
    }
    auto dump = std::make_unique<QFile>(report.dumpPath());
    if (!dump->open(QIODevice::ReadOnly)) {
        fail(tr("cannot read %1").arg(report.dumpPath()));
        return;
    }

    auto multipart = std::make_unique<QHttpMultiPart>(QHttpMultiPart::FormDataType);
    for (const auto& [key, value] : report.annotations())
        multipart->append(formField(key, value.toUtf8()));
    if (!comment.isEmpty())
        multipart->append(formField(QStringLiteral("Comments"), comment.toUtf8()));
    QHttpPart file;
    file.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/octet-stream"));
    file.setHeader(QNetworkRequest::ContentDispositionHeader,
        QStringLiteral("form-data; name=\"upload_file_minidump\"; filename=\"%1\"")
            .arg(QFileInfo(report.dumpPath()).fileName()));
    file.setBodyDevice(dump.get());
    dump->setParent(multipart.get());
    (void)dump.release(); // the multipart owns it now
    multipart->append(file);

    QNetworkRequest request(url);
    request.setTransferTimeout(60000);
    QNetworkReply* reply = m_network->post(request, multipart.get());
    multipart->setParent(reply);
    (void)multipart.release(); // the reply owns it now
    connect(reply, &QNetworkReply::finished, this,
        [this, reply, report, dataDirectory] { onReplyFinished(reply, report, dataDirectory); });
}

void ReportSubmitter::onReplyFinished(
    QNetworkReply* reply, const CrashReport& report, const QString& dataDirectory)
{
    reply->deleteLater();
    const QByteArray body = reply->readAll();
    if (reply->error() != QNetworkReply::NoError) {
        emit finished(false, reply->errorString());
        return;
    }
    const QString crashId = crashIdFromReply(body);
    if (crashId.isEmpty()) {
        emit finished(false, tr("the server gave no crash id"));
        return;
    }
    const QString submitted = dataDirectory + QLatin1String("/submitted");
    QFile receipt(submitted + QLatin1Char('/') + crashId + QLatin1String(".txt"));
    if (!QDir().mkpath(submitted) || !receipt.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || receipt.write(body) != body.size()) {
        emit finished(false, tr("cannot write %1").arg(receipt.fileName()));
        return;
    }
    receipt.close();
    CrashReport sent = report;
    sent.remove();
    emit finished(true, crashId);
}
