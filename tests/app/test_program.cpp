#include <clocale>
#include <locale.h>
#include <netdb.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include "qtprinters.h"
#include "scriptedserver.h"
#include "testpaths.h"

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
    process.start(QStringLiteral(KORVANE_MONITOR_PROGRAM), arguments);
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

// The monitor with a throw-away configuration on the offscreen platform.
void startMonitor(QProcess& process, const QTemporaryDir& config, const QStringList& arguments,
    const QProcessEnvironment& extra = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(extra);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KORVANE_MONITOR_PROGRAM), arguments);
}

// What the probe reports from inside a monitor started with this
// "main/language" (no key when null) and these extra environment variables.
QString probeStartUp(const QString& language, const QProcessEnvironment& extra = {})
{
    QTemporaryDir config;
    if (!language.isNull()) {
        QSettings settings(
            QDir(config.path()).filePath(QStringLiteral("Korvane/Monitor.conf")), QSettings::IniFormat);
        settings.setValue(QStringLiteral("main/language"), language);
    }
    QProcessEnvironment environment = extra;
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(KORVANE_PROBE_PLUGINS_DIR));
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("korvaneprobe"));
    environment.insert(QStringLiteral("KORVANE_PROBE"), QStringLiteral("startup"));
    QProcess process;
    startMonitor(process, config, {}, environment);
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
        return QStringLiteral("no report");
    }
    QString out = QString::fromUtf8(process.readAllStandardOutput());
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return out + QStringLiteral("exit %1: ").arg(process.exitCode()) + process.readAllStandardError();
    return out;
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
        process.start(QStringLiteral(KORVANE_MONITOR_PROGRAM), {QString::fromLatin1(option)});
        ASSERT_TRUE(process.waitForFinished(30000)) << option;
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << option;
        EXPECT_EQ(process.exitCode(), 0) << option;
        const QString out = QString::fromUtf8(process.readAllStandardOutput());
        if (option[1] == 'v' || option[2] == 'v')
            EXPECT_EQ(out, QStringLiteral("Korvane Monitor 0.1.0 build 2834\n")) << option;
        else
            EXPECT_TRUE(
                out.startsWith(QStringLiteral("Usage: " KORVANE_MONITOR_PROGRAM " [options]\n"
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
    startMonitor(
        process, config, {QStringLiteral("--connect"), QStringLiteral("127.0.0.1:%1").arg(server.port())});
    // The panel's settings object writes its file when it goes, just after
    // the worker's thread has started: both are waited for.
    const QString file = QDir(config.path()).filePath(QStringLiteral("Korvane/Monitor.conf"));
    QElapsedTimer clock;
    clock.start();
    while ((server.received().find("listNodes") == std::string::npos
               || QSettings(file, QSettings::IniFormat).value(QStringLiteral("main/network_port")).isNull())
        && clock.elapsed() < 10000)
        QThread::msleep(20);
    process.terminate();
    process.waitForFinished(5000);
    server.finish();

    EXPECT_EQ(server.received().substr(0, 62),
        "{\"id\":0,\"method\":\"listBatches\"}\n{\"id\":1,\"method\":\"listNodes\"}\n");
    QSettings stored(file, QSettings::IniFormat);
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

TEST(Program, ConsoleLinesAfterAFailedLookupStillReachThePipe)
{
    const char* host = "no-such-host.invalid";
    addrinfo hints {};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* addresses = nullptr;
    const int code = ::getaddrinfo(host, "5840", &hints, &addresses);
    ASSERT_NE(code, 0);
    const QByteArray expected = QByteArray(::gai_strerror(code)) + "\ncan't connect to server\n";

    // standard output is a pipe here, as under a service manager or a pager
    QTemporaryDir config;
    QProcess process;
    startMonitor(process, config, {QStringLiteral("--connect"), QString::fromLatin1(host) + ":5840"});
    QByteArray out;
    QElapsedTimer clock;
    clock.start();
    while (out.size() < expected.size() && clock.elapsed() < 20000) {
        process.waitForReadyRead(100);
        out += process.readAllStandardOutput();
    }
    // the warning box is up now; nothing else is to come
    process.kill();
    process.waitForFinished(5000);
    out += process.readAllStandardOutput();
    EXPECT_EQ(out, expected);
}

TEST(Program, NumbersUseADotUnderAGermanLocale)
{
    // present, asked without touching this process's own locale
    const locale_t present = newlocale(LC_ALL_MASK, "de_DE.UTF-8", locale_t {});
    ASSERT_NE(present, locale_t {}) << "the de_DE.UTF-8 locale is missing; scripts/setup.sh generates it";
    freelocale(present);
    QProcessEnvironment german;
    german.insert(QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8"));
    german.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    EXPECT_EQ(probeStartUp(QString(), german),
        QStringLiteral(
            "decimal: 1234.5\nprintf: 2.5\ncatalogues: monitor_en.qm qt_en.qm\nbutton: Connect\n"));
}

TEST(Program, WithNoLanguageKeyTheEnglishCataloguesAreLoaded)
{
    EXPECT_EQ(probeStartUp(QString()),
        QStringLiteral(
            "decimal: 1234.5\nprintf: 2.5\ncatalogues: monitor_en.qm qt_en.qm\nbutton: Connect\n"));
}

TEST(Program, AnEmptyLanguageLoadsNoCatalogue)
{
    EXPECT_EQ(probeStartUp(QStringLiteral("")),
        QStringLiteral("decimal: 1234.5\nprintf: 2.5\ncatalogues: \nbutton: Connect\n"));
}

TEST(Program, TheStoredLanguageIsLoaded)
{
    EXPECT_EQ(probeStartUp(QStringLiteral("de")),
        QStringLiteral("decimal: 1234.5\nprintf: 2.5\n"
                       "catalogues: monitor_de.qm qt_de.qm qtbase_de.qm qtmultimedia_de.qm\n"
                       "button: Verbinden\n"));
}

TEST(Program, ALanguageWithARegionButNoCataloguesOfItsOwnLoadsNothing)
{
    EXPECT_EQ(probeStartUp(QStringLiteral("de_AT")),
        QStringLiteral("decimal: 1234.5\nprintf: 2.5\ncatalogues: \nbutton: Connect\n"));
}
