#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QTcpServer>
#include <QUrl>

// A crash-report collector for the tests: HTTP on 127.0.0.1, one request
// per connection, multipart/form-data bodies taken apart into fields and
// files, and a reply chosen by the test.
class TestCollector final : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        QByteArray method;
        QByteArray path;
        QMap<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;
        QMap<QString, QByteArray> fields;
        QMap<QString, QPair<QString, QByteArray>> files; // name -> (file name, bytes)
    };

    explicit TestCollector(QObject* parent = nullptr);
    ~TestCollector() override;

    bool listen();
    QUrl url() const;
    void setReply(int status, const QByteArray& body);
    const QList<Request>& requests() const { return m_requests; }
    // Runs the event loop until a request has arrived.
    bool waitForRequests(int count, int timeoutMs = 20000);

    static void parseMultipart(Request& request);

private:
    Q_DISABLE_COPY_MOVE(TestCollector)

    void onNewConnection();

    QTcpServer m_server;
    QList<Request> m_requests;
    int m_status = 200;
    QByteArray m_reply;
};
