#include <algorithm>
#include <chrono>
#include <httplib.h>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "exporteroptions.h"
#include "scriptedserver.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace std::chrono_literals;

// korvane-exporter as a program: arguments, exit codes, signals, and its
// real output read by Prometheus' own checker.
namespace {

const std::string Exporter = KORVANE_EXPORTER_PROGRAM;
const std::string SourceDir = KORVANE_EXPORTER_SOURCE_DIR;

std::string scrape(int port)
{
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(30, 0);
    const httplib::Result result = client.Get("/metrics");
    EXPECT_TRUE(result);
    return result ? result->body : std::string();
}

// The 1-based number of the line of text that holds what.
int lineOf(const std::string& text, const std::string& what)
{
    const std::size_t at = text.find(what);
    return at == std::string::npos ? 0 : 1 + int(std::count(text.begin(), text.begin() + long(at), '\n'));
}

} // namespace

TEST(ExporterProgram, HelpAndVersion)
{
    ChildProcess help(Exporter, {"--help"});
    EXPECT_EQ(help.wait(), 0);
    EXPECT_EQ(help.out(), exporterHelpText());
    EXPECT_EQ(help.err(), "");

    ChildProcess version(Exporter, {"--version"});
    EXPECT_EQ(version.wait(), 0);
    EXPECT_EQ(version.out(), "korvane-exporter 0.1.0\n");
}

TEST(ExporterProgram, UsageErrorsExitWithTwo)
{
    ChildProcess unknown(Exporter, {"--frobnicate"});
    EXPECT_EQ(unknown.wait(), 2);
    EXPECT_EQ(unknown.out(), "");
    EXPECT_EQ(
        unknown.err(), "korvane-exporter: unknown argument --frobnicate (see korvane-exporter --help)\n");

    ChildProcess badListen(Exporter, {"--listen", "localhost"});
    EXPECT_EQ(badListen.wait(), 2);
    EXPECT_EQ(
        badListen.err(), "korvane-exporter: not an ADDR:PORT: localhost (see korvane-exporter --help)\n");
}

TEST(ExporterProgram, AnAddressInUseExitsWithOne)
{
    ChildProcess first(Exporter, {"--listen", "127.0.0.1:0"});
    const int port = first.listeningPort();
    ASSERT_GT(port, 0);
    ChildProcess second(Exporter, {"--listen", "127.0.0.1:" + std::to_string(port)});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(second.out(), "");
    EXPECT_EQ(second.err(),
        "korvane-exporter: cannot listen on 127.0.0.1:" + std::to_string(port)
            + ": Address already in use\n");
    first.signal(SIGTERM);
    EXPECT_EQ(first.wait(), 0);
}

TEST(ExporterProgram, SigtermAndSigintEndItCleanly)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        ChildProcess exporter(Exporter, {"--listen", "127.0.0.1:0", "--server", "127.0.0.1:1"});
        const int port = exporter.listeningPort();
        ASSERT_GT(port, 0);
        // The server is away: the exporter answers all the same and goes on.
        EXPECT_NE(scrape(port).find("\nkorvane_up 0\n"), std::string::npos);
        exporter.signal(signal);
        EXPECT_EQ(exporter.wait(), 0) << signal;
        EXPECT_EQ(exporter.err(),
            "korvane-exporter: cannot connect to 127.0.0.1:1; next attempt in 1 s\nkorvane-exporter: "
            "stopped\n");
        // Standard output has the one line: the client library's own lines are kept off it.
        EXPECT_EQ(exporter.out(), "");
    }
}

TEST(ExporterProgram, SigtermEndsItWhileAScrapeWaitsOnAQuietServer)
{
    ScriptedServer quiet;
    quiet.acceptConnection().waitForLine().waitForClose();
    quiet.start();
    ChildProcess exporter(Exporter,
        {"--listen", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(quiet.port()),
            "--server-timeout", "600"});
    const int port = exporter.listeningPort();
    ASSERT_GT(port, 0);
    std::thread scraper([port] {
        httplib::Client client("127.0.0.1", port);
        client.Get("/metrics");
    });
    std::this_thread::sleep_for(500ms);
    const auto start = std::chrono::steady_clock::now();
    exporter.signal(SIGTERM);
    EXPECT_EQ(exporter.wait(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    scraper.join();
    EXPECT_TRUE(quiet.finish());
}

TEST(ExporterProgram, PromtoolFindsNoProblemInTheRealOutput)
{
    SimProcess sim({"--batches", "300", "--nodes", "40", "--speed", "60"});
    const int simPort = sim.port();
    ASSERT_GT(simPort, 0);
    std::this_thread::sleep_for(1s); // a moving farm: nodes at work, errors, batches of every status
    TempDirectory dir;
    for (const bool all : {false, true}) {
        std::vector<std::string> args {"--web.listen-address", "127.0.0.1:0", "--server",
            "127.0.0.1:" + std::to_string(simPort),
            all ? "--collect.batches=all" : "--collect.batches=unfinished"};
        ChildProcess exporter(Exporter, args);
        const int port = exporter.listeningPort();
        ASSERT_GT(port, 0);
        const std::string body = scrape(port);
        ASSERT_NE(body.find("\nkorvane_up 1\n"), std::string::npos);
        ASSERT_NE(body.find("\nkorvane_node_last_error_timestamp_seconds{"), std::string::npos);
        ASSERT_NE(body.find("korvane_batch_status{"), std::string::npos);
        ASSERT_NE(body.find("status=\"working\"} 1\n"), std::string::npos);
        ASSERT_NE(
            body.find("\nkorvane_exporter_build_info{version=\"0.1.0.2834\",revision=\""), std::string::npos);
        const std::string file = dir.path(all ? "all.txt" : "active.txt");
        dir.writeFile(all ? "all.txt" : "active.txt", body);
        std::string output;
        EXPECT_EQ(runCommand("promtool check metrics < " + file, output), 0) << output;
        EXPECT_EQ(output, "");
        exporter.signal(SIGTERM);
        EXPECT_EQ(exporter.wait(), 0);
    }
    EXPECT_EQ(sim.stop(), 0);
}

TEST(ExporterProgram, PromtoolWouldSeeAWrongCounter)
{
    // The check above can fail: the same checker on a counter without _total.
    TempDirectory dir;
    const std::string file = dir.path("wrong.txt");
    dir.writeFile("wrong.txt",
        "# HELP korvane_node_errors Errors.\n# TYPE korvane_node_errors counter\nkorvane_node_errors 1\n");
    std::string output;
    EXPECT_NE(runCommand("promtool check metrics < " + file, output), 0);
    EXPECT_NE(output.find("korvane_node_errors"), std::string::npos) << output;
}

TEST(ExporterProgram, SystemdAcceptsTheUnit)
{
    // A root with the unit and the program where the package puts them, and systemd's own units.
    TempDirectory root;
    std::string output;
    ASSERT_EQ(
        runCommand("mkdir -p " + root.path("usr/bin") + " " + root.path("usr/lib/systemd") + " && cp -r "
                + "/usr/lib/systemd/system " + root.path("usr/lib/systemd/") + " && cp " + Exporter + " "
                + root.path("usr/bin/") + " && cp " + SourceDir + "/korvane-exporter.service " + SourceDir
                + "/korvane-exporter@.service " + root.path("usr/lib/systemd/system/"),
            output),
        0)
        << output;
    // --man=no: the manual page is installed by the package, not on the build machine.
    EXPECT_EQ(runCommand("systemd-analyze verify --man=no --root=" + root.path()
                      + " korvane-exporter.service korvane-exporter@farm-a.service",
                  output),
        0)
        << output;
    EXPECT_EQ(output, "");

    // The hardening systemd asks for, to an exposure of 2.0 or lower (its
    // threshold counts in tenths); the same check refuses 0.5.
    for (const char* unit : {"korvane-exporter.service", "korvane-exporter@farm-a.service"}) {
        const std::string security = "systemd-analyze security --offline=yes --root=" + root.path() + " ";
        EXPECT_EQ(runCommand(security + "--threshold=20 " + unit, output), 0) << output;
        EXPECT_NE(
            output.find(std::string("Overall exposure level for ") + unit + ": 0.9 SAFE"), std::string::npos)
            << output;
        EXPECT_NE(runCommand(security + "--threshold=5 " + unit, output), 0) << output;
    }
    const std::string instance = readFile(SourceDir + "/korvane-exporter@.service");
    for (const char* line : {"\nEnvironmentFile=/etc/default/korvane-exporter-%i\n",
             "\nExecStart=/usr/bin/korvane-exporter $ARGS\n", "\nTimeoutStopSec=10\n", "\nDynamicUser=yes\n",
             "\nSystemCallFilter=@system-service\n", "\nProtectProc=invisible\n", "\nProcSubset=pid\n",
             "\nUMask=0077\n", "\nIPAddressDeny=any\n"})
        EXPECT_NE(instance.find(line), std::string::npos) << line;

    const std::string unit = readFile(SourceDir + "/korvane-exporter.service");
    for (const char* line : {"\nDynamicUser=yes\n", "\nNoNewPrivileges=yes\n", "\nProtectSystem=strict\n",
             "\nTimeoutStopSec=10\n", "\nEnvironmentFile=-/etc/default/korvane-exporter\n",
             "\nExecStart=/usr/bin/korvane-exporter $ARGS\n"})
        EXPECT_NE(unit.find(line), std::string::npos) << line;

    // The same check speaks up about a bad value (a warning: the setting is ignored) ...
    const std::string verify
        = "systemd-analyze verify --man=no --root=" + root.path() + " korvane-exporter.service";
    std::string broken = unit;
    broken.replace(broken.find("ProtectSystem=strict"), 20, "ProtectSystem=sometimes");
    root.writeFile("usr/lib/systemd/system/korvane-exporter.service", broken);
    runCommand(verify, output);
    // systemd words it by release ("Failed to parse protect system value,
    // ignoring: sometimes", "Failed to parse ProtectSystem=sometimes,
    // ignoring: ..."): one line names the file and the line, the value, and
    // that it is ignored.
    const std::string lineOfUnit
        = "korvane-exporter.service:" + std::to_string(lineOf(broken, "ProtectSystem=")) + ": ";
    std::istringstream lines(output);
    std::string warning;
    while (std::getline(lines, warning) && warning.find(lineOfUnit) == std::string::npos) { }
    EXPECT_NE(warning.find(lineOfUnit + "Failed to parse "), std::string::npos) << output;
    EXPECT_NE(warning.find("sometimes"), std::string::npos) << output;
    EXPECT_NE(warning.find(", ignoring"), std::string::npos) << output;
    // ... and refuses a program that is not there.
    broken = unit;
    broken.replace(broken.find("/usr/bin/korvane-exporter"), 25, "/usr/bin/korvane-exporterd");
    root.writeFile("usr/lib/systemd/system/korvane-exporter.service", broken);
    EXPECT_NE(runCommand(verify, output), 0);
    EXPECT_NE(output.find("Command /usr/bin/korvane-exporterd is not executable"), std::string::npos)
        << output;
}

TEST(ExporterProgram, DefaultArgumentsServeOnLoopback)
{
    for (const char* file : {"/korvane-exporter.default", "/korvane-exporter-instance.default"}) {
        const std::string text = readFile(SourceDir + file);
        const std::size_t start = text.find("\nARGS=\"");
        ASSERT_NE(start, std::string::npos);
        const std::size_t end = text.find("\"\n", start + 7);
        ASSERT_NE(end, std::string::npos);
        std::istringstream words(text.substr(start + 7, end - start - 7));
        std::vector<std::string> args;
        for (std::string word; words >> word;)
            args.push_back(word);
        ExporterOptions options;
        std::string error;
        ASSERT_TRUE(parseExporterOptions(args, options, error)) << error;
        EXPECT_EQ(options.serverAddress(), "127.0.0.1:5840");
        ASSERT_EQ(options.listen.size(), 1u);
        EXPECT_EQ(options.listen[0].host, "127.0.0.1");
        EXPECT_EQ(options.listen[0].port, 10084);
    }
}

TEST(ExporterProgram, SeveralAddressesEveryAddressAndATelemetryPath)
{
    ChildProcess exporter(Exporter,
        {"--web.listen-address", "127.0.0.1:0", "--listen", ":0", "--web.telemetry-path", "/farm", "--server",
            "127.0.0.1:1", "--log.level", "warn"});
    const int first = exporter.listeningPort();
    const std::string second = exporter.readLine();
    ASSERT_GT(first, 0);
    ASSERT_EQ(second.rfind("listening on :", 0), 0u) << second;
    const int every = std::stoi(second.substr(14));
    for (const int port : {first, every}) {
        httplib::Client client("127.0.0.1", port);
        const httplib::Result result = client.Get("/farm");
        ASSERT_TRUE(result) << port;
        EXPECT_EQ(result->status, 200);
        EXPECT_NE(result->body.find("\nkorvane_up 0\n"), std::string::npos);
        EXPECT_EQ(client.Get("/metrics")->status, 404);
    }
    exporter.signal(SIGTERM);
    EXPECT_EQ(exporter.wait(), 0);
    // At warn the failed reading is logged, the stop is not.
    EXPECT_EQ(exporter.err(), "korvane-exporter: cannot connect to 127.0.0.1:1; next attempt in 1 s\n");
}
