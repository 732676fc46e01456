#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include "qtprinters.h"
#include "scriptedserver.h"

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

// A terminal with no display, as over ssh: help and version still answer.
TEST(Program, HelpAndVersionNeedNoDisplay)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    for (const char* option : {"--version", "-v", "--help", "-h"}) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(KORVANE_MONITOR_PATH), {QString::fromLatin1(option)});
        ASSERT_TRUE(process.waitForFinished(30000)) << option;
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << option;
        EXPECT_EQ(process.exitCode(), 0) << option;
        const QString out = QString::fromUtf8(process.readAllStandardOutput());
        if (option[1] == 'v' || option[2] == 'v')
            EXPECT_EQ(out, QStringLiteral("Korvane Monitor 0.1.0 build 2834\n")) << option;
        else
            EXPECT_TRUE(
                out.startsWith(QStringLiteral("Usage: " KORVANE_MONITOR_PATH " [options]\n"
                                              "Operator's monitor for a distributed processing server.\n")))
                << option;
        EXPECT_EQ(QString::fromUtf8(process.readAllStandardError()), QString()) << option;
    }
}

TEST(Program, UnknownOptionIsRefused)
{
    const ProcessResult run = runMonitor({QStringLiteral("--no-such-option")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("Unknown option 'no-such-option'.")))
        << run.err.toStdString();
}

TEST(Program, ConnectOptionFillsTheFieldsAndConnectsOnceTheWindowShows)
{
    ScriptedServer server;
    server.acceptConnection().answerEveryLine("{\"result\":[]}\n");
    server.start();

    QTemporaryDir config;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KORVANE_MONITOR_PATH),
        {QStringLiteral("--connect"), QStringLiteral("127.0.0.1:%1").arg(server.port())});
    QElapsedTimer clock;
    clock.start();
    while (server.received().find("listNodes") == std::string::npos && clock.elapsed() < 10000)
        QThread::msleep(20);
    process.terminate();
    process.waitForFinished(5000);
    server.finish();

    EXPECT_EQ(server.received().substr(0, 62),
        "{\"id\":0,\"method\":\"listBatches\"}\n{\"id\":1,\"method\":\"listNodes\"}\n");
    QSettings stored(
        QDir(config.path()).filePath(QStringLiteral("Korvane/Monitor.conf")), QSettings::IniFormat);
    EXPECT_EQ(stored.value(QStringLiteral("main/network_host")).toString(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(stored.value(QStringLiteral("main/network_port")).toInt(), server.port());
}

TEST(Program, ConnectOptionWithABadPortIsRefused)
{
    const ProcessResult run = runMonitor({QStringLiteral("--connect"), QStringLiteral("farm:http")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.endsWith(
        QStringLiteral("korvane-monitor: --connect: \"http\" is not a port number (0 to 65535)\n")))
        << run.err.toStdString();
}
