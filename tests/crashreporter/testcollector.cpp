#include "testcollector.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QTcpSocket>

TestCollector::TestCollector(QObject* parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &TestCollector::onNewConnection);
}

TestCollector::~TestCollector() = default;

bool TestCollector::listen()
{
    return m_server.listen(QHostAddress::LocalHost, 0);
}

QUrl TestCollector::url() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1/submit").arg(m_server.serverPort()));
}

void TestCollector::setReply(int status, const QByteArray& body)
{
    m_status = status;
    m_reply = body;
}

bool TestCollector::waitForRequests(int count, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (m_requests.size() < count && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    return m_requests.size() >= count;
}

void TestCollector::onNewConnection()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        auto buffer = std::make_shared<QByteArray>();
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket, buffer] {
            buffer->append(socket->readAll());
            const qsizetype headerEnd = buffer->indexOf("\r\n\r\n");
            if (headerEnd < 0)
                return;
            Request request;
            const QList<QByteArray> lines = buffer->left(headerEnd).split('\n');
            const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
            request.method = first.value(0);
            request.path = first.value(1);
            for (qsizetype i = 1; i < lines.size(); ++i) {
                const qsizetype colon = lines[i].indexOf(':');
                if (colon > 0)
                    request.headers.insert(
                        lines[i].left(colon).trimmed().toLower(), lines[i].mid(colon + 1).trimmed());
            }
            const qsizetype length = request.headers.value("content-length").toLongLong();
            if (buffer->size() < headerEnd + 4 + length)
                return;
            request.body = buffer->mid(headerEnd + 4, length);
            buffer->clear();
            parseMultipart(request);
            m_requests.append(request);
            const QByteArray reason = m_status == 200 ? "OK" : "Error";
            socket->write("HTTP/1.1 " + QByteArray::number(m_status) + " " + reason
                + "\r\nContent-Type: text/plain\r\nConnection: close\r\nContent-Length: "
                + QByteArray::number(m_reply.size()) + "\r\n\r\n" + m_reply);
            socket->disconnectFromHost();
        });
    }
}

void TestCollector::parseMultipart(Request& request)
{
    const QByteArray type = request.headers.value("content-type");
    const qsizetype at = type.indexOf("boundary=");
    if (!type.startsWith("multipart/form-data") || at < 0)
        return;
    QByteArray boundary = type.mid(at + 9);
    if (boundary.startsWith('"'))
        boundary = boundary.mid(1, boundary.indexOf('"', 1) - 1);
    const QByteArray delimiter = "--" + boundary;
    qsizetype position = request.body.indexOf(delimiter);
    static const QRegularExpression nameRe(QStringLiteral("name=\"([^\"]*)\""));
    static const QRegularExpression fileRe(QStringLiteral("filename=\"([^\"]*)\""));
    while (position >= 0) {
        const qsizetype partStart = position + delimiter.size();
        if (request.body.mid(partStart, 2) == "--")
            break;
        const qsizetype next = request.body.indexOf("\r\n" + delimiter, partStart);
        if (next < 0)
            break;
        const QByteArray part = request.body.mid(partStart + 2, next - partStart - 2);
        const qsizetype headersEnd = part.indexOf("\r\n\r\n");
        const QString headers = QString::fromUtf8(part.left(headersEnd));
        const QByteArray content = part.mid(headersEnd + 4);
        const QString name = nameRe.match(headers).captured(1);
        const auto file = fileRe.match(headers);
        if (file.hasMatch())
            request.files.insert(name, {file.captured(1), content});
        else
            request.fields.insert(name, content);
        position = next + 2;
    }
}
