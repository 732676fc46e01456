#include <QProcess>

#include <gtest/gtest.h>

namespace {

struct ProcessResult
{
    int exitCode = -1;
    QString out;
    QString err;
};

ProcessResult runMonitor(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(KORVANE_MONITOR_PATH), arguments);
    ProcessResult run;
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

} // namespace

TEST(Program, VersionPrintsProductVersionAndBuild)
{
    const ProcessResult run = runMonitor({QStringLiteral("--version")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, QStringLiteral("Korvane Monitor 0.1.0 build 2834\n"));
}

TEST(Program, HelpListsTheOptions)
{
    const ProcessResult run = runMonitor({QStringLiteral("--help")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.out.startsWith(QStringLiteral("Usage: "))) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("--version"))) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("--help"))) << run.out.toStdString();
}

TEST(Program, UnknownOptionIsRefused)
{
    const ProcessResult run = runMonitor({QStringLiteral("--no-such-option")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("Unknown option 'no-such-option'.")))
        << run.err.toStdString();
}
