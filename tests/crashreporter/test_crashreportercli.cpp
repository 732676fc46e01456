#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "reportfiles.h"
#include "testcollector.h"
#include "testpaths.h"

namespace {

struct ReporterRun
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// Runs the real reporter, serving the event loop (the collector lives in
// this process) until it ends.
ReporterRun runReporter(const QStringList& arguments, const QMap<QString, QString>& environment)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (auto it = environment.begin(); it != environment.end(); ++it)
        env.insert(it.key(), it.value());
    process.setProcessEnvironment(env);
    process.start(KORVANE_CRASHREPORTER_PROGRAM, arguments);
    QDeadlineTimer deadline(30000);
    while (process.state() != QProcess::NotRunning && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        process.waitForFinished(20);
    }
    ReporterRun run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

class ReporterProgram : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_collector.listen());
        m_dump = ReportFiles::make(m_crashed.path(), "0f1e2d3c");
    }

    QMap<QString, QString> environment() const
    {
        return {{"HOME", m_home.path()}, {"MOZ_CRASHREPORTER_DATA_DIRECTORY", data()},
            {"KORVANE_CRASHREPORTER_URL", m_collector.url().toString()}};
    }

    QString data() const { return m_home.path() + "/.korvane/monitor/Crash Reports"; }

    QTemporaryDir m_home;
    QTemporaryDir m_crashed;
    TestCollector m_collector;
    QString m_dump;
};

} // namespace

TEST(ReporterProgramHelp, NamesTheOptionsAndTheEnvironment)
{
    const ReporterRun run = runReporter({"--help"}, {});
    EXPECT_EQ(run.exitCode, 0);
    const QString help = QString::fromUtf8(run.out);
    EXPECT_TRUE(help.startsWith("Usage: ")) << run.out.toStdString();
    for (const char* text :
        {"--submit", "dump", "MOZ_CRASHREPORTER_DATA_DIRECTORY", "KORVANE_CRASHREPORTER_URL",
            "KORVANE_CRASHREPORTER_SUBMIT=1", "pending/", "submitted/<id>.txt", "upload_file_minidump"})
        EXPECT_TRUE(help.contains(text)) << text;
}

TEST_F(ReporterProgram, SubmitSendsMovesAndKeepsTheCrashId)
{
    m_collector.setReply(200, "CrashID=bp-77\n");
    const ReporterRun run = runReporter({"--submit", m_dump}, environment());
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("CrashID=bp-77")) << run.out.toStdString();
    ASSERT_EQ(m_collector.requests().size(), 1);
    EXPECT_EQ(m_collector.requests().first().fields.value("ProductName"), "Monitor");
    EXPECT_EQ(
        m_collector.requests().first().files.value("upload_file_minidump").second, ReportFiles::DumpBytes);
    EXPECT_EQ(ReportFiles::read(data() + "/submitted/bp-77.txt"), "CrashID=bp-77\n");
    EXPECT_FALSE(QFileInfo::exists(m_dump));
    EXPECT_FALSE(QFileInfo::exists(data() + "/pending/0f1e2d3c.dmp"));
    EXPECT_FALSE(QFileInfo::exists(data() + "/pending/0f1e2d3c.extra"));
}

// The collector's host is known only to the proxy, which here is the test
// collector itself: it sees the request in proxy form and answers it.
TEST_F(ReporterProgram, SubmitGoesThroughTheProxyOfTheEnvironment)
{
    m_collector.setReply(200, "CrashID=bp-proxied\n");
    auto env = environment();
    env.insert("KORVANE_CRASHREPORTER_URL", "http://crash-collector.invalid/submit");
    env.insert("http_proxy", QStringLiteral("http://127.0.0.1:%1").arg(m_collector.url().port()));
    const ReporterRun run = runReporter({"--submit", m_dump}, env);
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    ASSERT_EQ(m_collector.requests().size(), 1);
    const TestCollector::Request& request = m_collector.requests().first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "http://crash-collector.invalid/submit");
    EXPECT_EQ(request.headers.value("host"), "crash-collector.invalid");
    EXPECT_EQ(request.fields.value("ProductName"), "Monitor");
    EXPECT_EQ(request.files.value("upload_file_minidump").second, ReportFiles::DumpBytes);
    EXPECT_TRUE(QFileInfo::exists(data() + "/submitted/bp-proxied.txt"));
}

TEST_F(ReporterProgram, JsonReplyOfTheCollectorIsAccepted)
{
    m_collector.setReply(200, "{\"id\": \"bp-81\"}");
    const ReporterRun run = runReporter({"--submit", m_dump}, environment());
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("CrashID=bp-81")) << run.out.toStdString();
    EXPECT_EQ(ReportFiles::read(data() + "/submitted/bp-81.txt"), "{\"id\": \"bp-81\"}");
    EXPECT_FALSE(QFileInfo::exists(data() + "/pending/0f1e2d3c.dmp"));
}

TEST_F(ReporterProgram, ReplyOfAnotherFormStaysPendingWithTheReasonShown)
{
    m_collector.setReply(200, "<html>thank you</html>");
    const ReporterRun run = runReporter({"--submit", m_dump}, environment());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err,
        "crashreporter: not sent: the server gave no crash id; the report stays in " + data().toUtf8()
            + "/pending\n");
    EXPECT_EQ(ReportFiles::read(data() + "/pending/0f1e2d3c.dmp"), ReportFiles::DumpBytes);
    EXPECT_EQ(ReportFiles::read(data() + "/pending/0f1e2d3c.extra"), ReportFiles::ExtraText);
}

TEST_F(ReporterProgram, EnvironmentVariableMeansSubmitWithoutAWindow)
{
    m_collector.setReply(200, "CrashID=bp-78\n");
    auto env = environment();
    env.insert("KORVANE_CRASHREPORTER_SUBMIT", "1");
    env.insert("QT_QPA_PLATFORM", "minimal-not-there"); // a window would fail to start
    const ReporterRun run = runReporter({m_dump}, env);
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(QFileInfo::exists(data() + "/submitted/bp-78.txt"));
}

TEST_F(ReporterProgram, FailedSubmitLeavesTheReportPendingAndSaysSo)
{
    m_collector.setReply(503, "busy");
    const ReporterRun run = runReporter({"--submit", m_dump}, environment());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("not sent")) << run.err.toStdString();
    EXPECT_EQ(ReportFiles::read(data() + "/pending/0f1e2d3c.dmp"), ReportFiles::DumpBytes);
    EXPECT_EQ(ReportFiles::read(data() + "/pending/0f1e2d3c.extra"), ReportFiles::ExtraText);
    EXPECT_FALSE(QFileInfo::exists(m_dump));

    // Sent again later from pending/.
    m_collector.setReply(200, "CrashID=bp-79\n");
    const ReporterRun again = runReporter({"--submit", data() + "/pending/0f1e2d3c.dmp"}, environment());
    EXPECT_EQ(again.exitCode, 0) << again.err.toStdString();
    EXPECT_TRUE(QFileInfo::exists(data() + "/submitted/bp-79.txt"));
    EXPECT_FALSE(QFileInfo::exists(data() + "/pending/0f1e2d3c.dmp"));
}

TEST_F(ReporterProgram, ServerUrlOfTheReportIsUsedWithoutOverride)
{
    // The report's own address is not reachable from a test; pointing its
    // ServerURL at the collector shows that it is the one used.
    ReportFiles::write(m_crashed.path() + "/0f1e2d3c.extra",
        "ProductName=Monitor\nServerURL=" + m_collector.url().toEncoded() + "\nVendor=Korvane\n");
    m_collector.setReply(200, "CrashID=bp-80\n");
    auto env = environment();
    env.remove("KORVANE_CRASHREPORTER_URL");
    const ReporterRun run = runReporter({"--submit", m_dump}, env);
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(m_collector.requests().size(), 1);
}

TEST_F(ReporterProgram, MissingDumpIsAnError)
{
    const ReporterRun run = runReporter({"--submit", m_crashed.path() + "/nothing.dmp"}, environment());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(m_collector.requests().isEmpty());
}

TEST_F(ReporterProgram, NoDumpArgumentIsAUsageError)
{
    const ReporterRun run = runReporter({"--submit"}, environment());
    EXPECT_EQ(run.exitCode, 2);
}
