#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "crashreport.h"
#include "reportfiles.h"
#include "reportsubmitter.h"
#include "testcollector.h"

namespace {

class ReportSubmitterTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_collector.listen());
        QDir().mkpath(pending());
        m_report = std::make_unique<CrashReport>(ReportFiles::make(pending(), "5f0c1d2e"));
        m_report->readAnnotations();
    }

    QString pending() const { return m_data.path() + "/pending"; }

    // Submits and waits for the outcome.
    QPair<bool, QString> submit(const QString& comment, const QUrl& url)
    {
        ReportSubmitter submitter;
        QSignalSpy spy(&submitter, &ReportSubmitter::finished);
        submitter.submit(*m_report, comment, url, m_data.path());
        EXPECT_TRUE(spy.wait(20000));
        if (spy.isEmpty())
            return {false, QString()};
        return {spy.first().at(0).toBool(), spy.first().at(1).toString()};
    }

    QTemporaryDir m_data;
    TestCollector m_collector;
    std::unique_ptr<CrashReport> m_report;
};

} // namespace

TEST_F(ReportSubmitterTest, PostsAnnotationsCommentAndDumpAsAForm)
{
    m_collector.setReply(
        200, "CrashID=bp-6a1e2c3d\nViewURL=https://crash-reports.korvane.com/report/bp-6a1e2c3d\n");
    const auto [ok, crashId] = submit("It crashed while I was connecting.", m_collector.url());
    ASSERT_TRUE(ok) << crashId.toStdString();
    EXPECT_EQ(crashId, "bp-6a1e2c3d");

    ASSERT_EQ(m_collector.requests().size(), 1);
    const TestCollector::Request& request = m_collector.requests().first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/submit");
    EXPECT_TRUE(request.headers.value("content-type").startsWith("multipart/form-data"));
    const QMap<QString, QByteArray> expected
        = {{"ProductName", "Monitor"}, {"ServerURL", "https://crash-reports.korvane.com/submit"},
            {"System", "Linux 64bit"}, {"SystemMemory", "8.00 GB"}, {"Vendor", "Korvane"},
            {"Version", "0.1.0.2834"}, {"Comments", "It crashed while I was connecting."}};
    EXPECT_EQ(request.fields, expected);
    ASSERT_TRUE(request.files.contains("upload_file_minidump"));
    EXPECT_EQ(request.files.value("upload_file_minidump").first, "5f0c1d2e.dmp");
    EXPECT_EQ(request.files.value("upload_file_minidump").second, ReportFiles::DumpBytes);
    EXPECT_EQ(request.files.size(), 1);
}

TEST_F(ReportSubmitterTest, CrashIdIsKeptAndPendingFilesAreRemoved)
{
    const QByteArray reply = "CrashID=bp-6a1e2c3d\n";
    m_collector.setReply(200, reply);
    ASSERT_TRUE(submit(QString(), m_collector.url()).first);
    EXPECT_EQ(ReportFiles::read(m_data.path() + "/submitted/bp-6a1e2c3d.txt"), reply);
    EXPECT_FALSE(QFileInfo::exists(pending() + "/5f0c1d2e.dmp"));
    EXPECT_FALSE(QFileInfo::exists(pending() + "/5f0c1d2e.extra"));
}

TEST_F(ReportSubmitterTest, EmptyCommentSendsNoCommentsField)
{
    m_collector.setReply(200, "CrashID=bp-1\n");
    ASSERT_TRUE(submit(QString(), m_collector.url()).first);
    ASSERT_EQ(m_collector.requests().size(), 1);
    EXPECT_FALSE(m_collector.requests().first().fields.contains("Comments"));
}

TEST_F(ReportSubmitterTest, ServerErrorLeavesTheFilesPending)
{
    m_collector.setReply(500, "CrashID=bp-ignored\n");
    const auto [ok, message] = submit(QString(), m_collector.url());
    EXPECT_FALSE(ok);
    EXPECT_FALSE(message.isEmpty());
    EXPECT_EQ(ReportFiles::read(pending() + "/5f0c1d2e.dmp"), ReportFiles::DumpBytes);
    EXPECT_EQ(ReportFiles::read(pending() + "/5f0c1d2e.extra"), ReportFiles::ExtraText);
    EXPECT_FALSE(QFileInfo::exists(m_data.path() + "/submitted"));
}

TEST_F(ReportSubmitterTest, ReplyWithoutCrashIdLeavesTheFilesPending)
{
    m_collector.setReply(200, "thanks\n");
    const auto [ok, message] = submit(QString(), m_collector.url());
    EXPECT_FALSE(ok);
    EXPECT_EQ(message, "the server gave no crash id");
    EXPECT_TRUE(QFileInfo::exists(pending() + "/5f0c1d2e.dmp"));
}

TEST_F(ReportSubmitterTest, UnreachableCollectorLeavesTheFilesPending)
{
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const QUrl url(QStringLiteral("http://127.0.0.1:%1/submit").arg(closed.serverPort()));
    closed.close();
    const auto [ok, message] = submit(QString(), url);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(QFileInfo::exists(pending() + "/5f0c1d2e.dmp"));
    EXPECT_TRUE(QFileInfo::exists(pending() + "/5f0c1d2e.extra"));
}

TEST_F(ReportSubmitterTest, AddressThatIsNotHttpIsRefused)
{
    const auto [ok, message] = submit(QString(), QUrl("ftp://127.0.0.1/submit"));
    EXPECT_FALSE(ok);
    EXPECT_EQ(message, "no valid submission address");
    EXPECT_TRUE(m_collector.requests().isEmpty());
}

TEST_F(ReportSubmitterTest, JsonReplyWithAnIdIsAccepted)
{
    const QByteArray reply
        = "{\"id\": \"bp-7d2a\", \"url\": \"https://crash-reports.korvane.com/report/bp-7d2a\"}";
    m_collector.setReply(200, reply);
    const auto [ok, crashId] = submit(QString(), m_collector.url());
    ASSERT_TRUE(ok) << crashId.toStdString();
    EXPECT_EQ(crashId, "bp-7d2a");
    EXPECT_EQ(ReportFiles::read(m_data.path() + "/submitted/bp-7d2a.txt"), reply);
    EXPECT_FALSE(QFileInfo::exists(pending() + "/5f0c1d2e.dmp"));
}

TEST_F(ReportSubmitterTest, JsonReplyWithoutAnIdLeavesTheFilesPending)
{
    m_collector.setReply(200, "{\"status\": \"queued\"}");
    const auto [ok, message] = submit(QString(), m_collector.url());
    EXPECT_FALSE(ok);
    EXPECT_EQ(message, "the server gave no crash id");
    EXPECT_TRUE(QFileInfo::exists(pending() + "/5f0c1d2e.dmp"));
    EXPECT_TRUE(QFileInfo::exists(pending() + "/5f0c1d2e.extra"));
    EXPECT_FALSE(QFileInfo::exists(m_data.path() + "/submitted"));
}

TEST(ReportSubmitterReply, CrashIdIsTakenFromAJsonObject)
{
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("{\"id\":\"bp-json-1\"}"), "bp-json-1");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply(" {\"other\":1, \"id\":\"bp-json-2\"}\n"), "bp-json-2");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("{\"id\":42}"), "");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("{\"id\":\"../x\"}"), "");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("{\"ID\":\"bp-3\"}"), "");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("[\"bp-4\"]"), "");
}

TEST(ReportSubmitterReply, CrashIdIsTakenFromItsLine)
{
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("CrashID=bp-abc\nViewURL=x\n"), "bp-abc");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("Other=1\r\nCrashID=bp-2\r\n"), "bp-2");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("nothing"), "");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("CrashID=../../etc/passwd\n"), "");
    EXPECT_EQ(ReportSubmitter::crashIdFromReply("CrashID=\n"), "");
}
