#include <csignal>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "testcollector.h"
#include "testpaths.h"

namespace {

// True once the process catches SIGTRAP, the last signal the crash
// handler takes over, and its main thread waits in the event loop's poll:
// start-up, with the crash annotations, is over.
bool startedAndIdle(qint64 pid)
{
    QFile syscall(QStringLiteral("/proc/%1/syscall").arg(pid));
    if (!syscall.open(QIODevice::ReadOnly))
        return false;
    const QByteArray number = syscall.readAll().split(' ').value(0);
    if (number != "7" && number != "271") // poll, ppoll
        return false;

    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("SigCgt:")) {
            const quint64 caught = line.mid(7).trimmed().toULongLong(nullptr, 16);
            return caught & (quint64(1) << (SIGTRAP - 1));
        }
    }
    return false;
}

template <typename Condition>
bool waitFor(Condition condition, int timeoutMs = 30000)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    }
    return true;
}

} // namespace

// The real program, started through PATH as a shell or a desktop entry
// does (no directory in argv[0]) and sent SIGSEGV, leaves a dump and its
// annotations and starts the real reporter beside it, which moves both
// into pending/ and sends them to the collector.
TEST(CrashEndToEnd, MonitorStartedThroughPathLeavesReportThatTheReporterSubmits)
{
    QTemporaryDir home;
    TestCollector collector;
    ASSERT_TRUE(collector.listen());
    collector.setReply(200, "CrashID=bp-e2e-1\n");

    QProcess monitor;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PATH", QFileInfo(KORVANE_MONITOR_PROGRAM).absolutePath() + ":/usr/bin:/bin");
    environment.insert("HOME", home.path());
    environment.insert("XDG_CONFIG_HOME", home.path() + "/.config");
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("KORVANE_CRASHREPORTER_URL", collector.url().toString());
    environment.insert("KORVANE_CRASHREPORTER_SUBMIT", "1");
    monitor.setProcessEnvironment(environment);
    // exec through the shell's PATH search keeps argv[0] as typed.
    monitor.start("/bin/sh", {"-c", "exec korvane-monitor"});
    ASSERT_TRUE(monitor.waitForStarted());
    const qint64 pid = monitor.processId();
    ASSERT_TRUE(waitFor([&] { return startedAndIdle(pid); })) << monitor.readAllStandardError().toStdString();
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(pid));
    ASSERT_TRUE(commandLine.open(QIODevice::ReadOnly));
    EXPECT_EQ(commandLine.readAll(), QByteArray("korvane-monitor\0", 16));

    ASSERT_EQ(::kill(static_cast<pid_t>(pid), SIGSEGV), 0);
    ASSERT_TRUE(waitFor([&] { return monitor.state() == QProcess::NotRunning; }));
#ifdef KORVANE_SANITIZED
    // The sanitizer's own handler ends the process after ours.
    EXPECT_TRUE(monitor.exitStatus() == QProcess::CrashExit || monitor.exitCode() != 0);
#else
    EXPECT_EQ(monitor.exitStatus(), QProcess::CrashExit);
#endif

    ASSERT_TRUE(collector.waitForRequests(1, 30000));
    const TestCollector::Request& request = collector.requests().first();
    EXPECT_EQ(request.fields.value("ProductName"), "Monitor");
    EXPECT_EQ(request.fields.value("Vendor"), "Korvane");
    EXPECT_EQ(request.fields.value("Version"), "0.1.0.2834");
    EXPECT_EQ(request.fields.value("ServerURL"), "https://crash-reports.korvane.com/submit");
    EXPECT_EQ(request.fields.value("System"), "Linux 64bit");
    EXPECT_TRUE(request.fields.value("SystemMemory").endsWith(" GB")
        || request.fields.value("SystemMemory").endsWith(" MB"));
    const auto dump = request.files.value("upload_file_minidump");
    EXPECT_TRUE(dump.first.endsWith(".dmp"));
    EXPECT_TRUE(dump.second.startsWith("MDMP"));
    EXPECT_TRUE(dump.second.contains("korvane-monitor"));

    // Sent from pending/: the receipt is kept, nothing is left behind.
    const QString data = home.path() + "/.korvane/monitor/Crash Reports";
    EXPECT_TRUE(waitFor([&] { return QFileInfo::exists(data + "/submitted/bp-e2e-1.txt"); }));
    EXPECT_TRUE(
        waitFor([&] { return QDir(data + "/pending").exists() && QDir(data + "/pending").isEmpty(); }));
    const QString id = QFileInfo(dump.first).completeBaseName();
    EXPECT_FALSE(QFileInfo::exists("/tmp/" + id + ".dmp"));
    EXPECT_FALSE(QFileInfo::exists("/tmp/" + id + ".extra"));
    QFile::remove("/tmp/" + id + ".dmp");
    QFile::remove("/tmp/" + id + ".extra");
}
