#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <httplib.h>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "eventreader.h"
#include "faultylink.h"
#include "simprocess.h"
#include "testpaths.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

struct Scrape
{
    int status = 0; // 0: no answer
    std::string body;
    Clock::duration took {};

    bool up() const { return status == 200 && body.find("\nkorvane_up 1\n") != std::string::npos; }
    bool down() const { return status == 200 && body.find("\nkorvane_up 0\n") != std::string::npos; }
};

// One scrape as Prometheus makes it, with its time-out in the header.
Scrape scrape(int port, const char* timeoutSeconds = "5")
{
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(120, 0);
    httplib::Headers headers;
    if (timeoutSeconds)
        headers.emplace("X-Prometheus-Scrape-Timeout-Seconds", timeoutSeconds);
    const auto start = Clock::now();
    const httplib::Result result = client.Get("/metrics", headers);
    Scrape out;
    out.took = Clock::now() - start;
    if (result) {
        out.status = result->status;
        out.body = result->body;
    }
    return out;
}

double seconds(Clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

// The figures for the README's table, one line each.
void report(const char* what, Clock::duration took)
{
    std::printf("[ figure   ] %s: %.1f s\n", what, seconds(took));
}

// A program of the build, or the one named in the environment (to measure
// another build of the same programs).
std::string program(const char* variable, const char* built)
{
    const char* given = std::getenv(variable);
    return given && *given ? given : built;
}

class NetworkFaults : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_link.ready()) << "cannot make the test's network namespace: " << m_link.error();
    }

    std::string server() const { return m_link.serverAddress() + ":5840"; }

    // korvane-sim inside the namespace, listening on the far end.
    std::unique_ptr<SimProcess> startSim(std::vector<std::string> extra = {})
    {
        std::vector<std::string> options = {"--listen", server(), "--seed", "1"};
        options.insert(options.end(), extra.begin(), extra.end());
        auto sim = std::make_unique<SimProcess>(
            options, std::vector<std::string> {"/usr/sbin/ip", "netns", "exec", m_link.namespaceName()});
        EXPECT_EQ(sim->firstLine().rfind("listening on ", 0), 0u);
        return sim;
    }

    // korvane-exporter watching the far end; port: where it listens.
    std::unique_ptr<ChildProcess> startExporter(int& port, std::vector<std::string> extra = {})
    {
        std::vector<std::string> args = {"--server", server(), "--listen", "127.0.0.1:0"};
        args.insert(args.end(), extra.begin(), extra.end());
        auto exporter
            = std::make_unique<ChildProcess>(program("KORVANE_EXPORTER", KORVANE_EXPORTER_PROGRAM), args);
        port = exporter->listeningPort();
        EXPECT_NE(port, 0);
        return exporter;
    }

    // Runs korvane-ctl; its exit code and how long it took.
    std::pair<int, Clock::duration> ctl(const std::vector<std::string>& args, std::string* err = nullptr)
    {
        const auto start = Clock::now();
        ChildProcess child(program("KORVANE_CTL", KORVANE_CTL_PROGRAM), args);
        const int code = child.wait(60000);
        if (err)
            *err = child.err();
        return {code, Clock::now() - start};
    }

    // Declared first: removed last, after every program that uses it ended.
    FaultyLink m_link;
    int m_exporterPort = 0;
};

// A page is shared by the scrapes of one second; the next scrape reads anew.
void nextReading()
{
    std::this_thread::sleep_for(1100ms);
}

} // namespace

TEST_F(NetworkFaults, ASilentPartitionIsReportedInBoundedTimeByEveryProgram)
{
    auto sim = startSim();
    auto exporter = startExporter(m_exporterPort);
    ChildProcess monitor(program("KORVANE_MONITOR", KORVANE_MONITOR_PROGRAM), {"--connect", server()});
    EXPECT_EQ(monitor.readLine(), "connected to " + server());
    ASSERT_TRUE(scrape(m_exporterPort).up());

    m_link.partition();
    const auto cut = Clock::now();
    nextReading();

    // Right after the cut: the kept connection's request gets no answer.
    const Scrape first = scrape(m_exporterPort);
    EXPECT_TRUE(first.down()) << first.status << "\n" << first.body;
    EXPECT_LT(first.took, 5500ms) << seconds(first.took);
    report("partition: exporter scrape right after the cut", first.took);

    // A control command started during the partition.
    std::string err;
    const auto [code, took] = ctl({"--host", server(), "--timeout", "5", "batches"}, &err);
    EXPECT_EQ(code, 3);
    EXPECT_LT(took, 8s) << seconds(took);
    report("partition: korvane-ctl --timeout 5", took);
    EXPECT_EQ(err, "korvane-ctl: " + server() + ": could not connect within 5 s\n");

    // An exporter whose reading hangs in connect() stops at once.
    {
        int stuckPort = 0;
        auto stuck = startExporter(stuckPort, {"--server-timeout", "60"});
        auto pending = std::async(std::launch::async, [stuckPort] { return scrape(stuckPort, nullptr); });
        std::this_thread::sleep_for(1s);
        const auto signalled = Clock::now();
        stuck->signal(SIGTERM);
        EXPECT_EQ(stuck->wait(10000), 0);
        EXPECT_LT(Clock::now() - signalled, 2s) << seconds(Clock::now() - signalled);
        report("partition: SIGTERM to an exporter in connect()", Clock::now() - signalled);
        pending.wait();
    }

    // Twenty seconds in: new connects hang now, and are bounded as well.
    std::this_thread::sleep_until(cut + 20s);
    const Scrape later = scrape(m_exporterPort);
    EXPECT_TRUE(later.down()) << later.status << "\n" << later.body;
    EXPECT_LT(later.took, 5500ms) << seconds(later.took);
    report("partition: exporter scrape 20 s in", later.took);

    // Prometheus goes on scraping every few seconds; each scrape is answered in time.
    std::atomic<bool> healing {false};
    std::vector<Scrape> scrapes;
    std::thread prometheus([&] {
        while (!healing) {
            scrapes.push_back(scrape(m_exporterPort));
            for (int i = 0; i < 40 && !healing; ++i)
                std::this_thread::sleep_for(100ms);
        }
    });

    // The monitor's request is never acknowledged: the system gives the
    // connection up, and the monitor says so.
    EXPECT_EQ(monitor.readLine(static_cast<int>(
                  std::chrono::duration_cast<std::chrono::milliseconds>(cut + 60s - Clock::now()).count())),
        "disconnected from server");
    const auto noticed = Clock::now() - cut;
    EXPECT_LT(noticed, 60s);
    report("partition: monitor says \"disconnected from server\"", noticed);

    healing = true;
    prometheus.join();
    EXPECT_GE(scrapes.size(), 2u);
    for (const Scrape& each : scrapes) {
        EXPECT_TRUE(each.down()) << each.status;
        EXPECT_LT(each.took, 5500ms) << seconds(each.took);
    }

    m_link.heal();
    const auto healed = Clock::now();
    Scrape back;
    for (int round = 0; round < 25 && !back.up(); ++round) {
        std::this_thread::sleep_for(1s);
        back = scrape(m_exporterPort);
    }
    EXPECT_TRUE(back.up());
    EXPECT_LT(Clock::now() - healed, 20s) << seconds(Clock::now() - healed);
    report("heal: exporter reads korvane_up 1 again", Clock::now() - healed);

    monitor.signal(SIGKILL);
    exporter->signal(SIGTERM);
    EXPECT_EQ(exporter->wait(), 0);
    EXPECT_NE(
        exporter->err().find("korvane-exporter: no reply from " + server() + " to listBatches within 4.5 s"),
        std::string::npos)
        << exporter->err();
    EXPECT_NE(exporter->err().find("korvane-exporter: could not connect to " + server() + " within 4.5 s"),
        std::string::npos)
        << exporter->err();
}

TEST_F(NetworkFaults, OnASlowLinkTheScrapeIsAnsweredByItsDeadline)
{
    auto sim = startSim({"--batches", "2000", "--nodes", "200"});
    m_link.slowDown(256);
    auto exporter = startExporter(m_exporterPort);
    for (int round = 0; round < 2; ++round) {
        const Scrape slow = scrape(m_exporterPort);
        EXPECT_TRUE(slow.down()) << slow.status;
        EXPECT_LT(slow.took, 5500ms) << seconds(slow.took);
        report("slow link: exporter scrape", slow.took);
        nextReading();
    }
    std::string err;
    const auto [code, took] = ctl({"--host", server(), "--timeout", "3", "batches"}, &err);
    EXPECT_EQ(code, 3);
    EXPECT_LT(took, 5s);
    report("slow link: korvane-ctl --timeout 3", took);
    EXPECT_EQ(err,
        "korvane-ctl: listBatches to " + server()
            + ": the reply was still arriving after 3 s (slow link?)\n");
    exporter->signal(SIGTERM);
    EXPECT_EQ(exporter->wait(), 0);
    EXPECT_NE(exporter->err().find("korvane-exporter: the reply from " + server()
                  + " to listBatches was still arriving after 4.5 s (slow link?)"),
        std::string::npos)
        << exporter->err();
}

TEST_F(NetworkFaults, AServerThatTricklesIsAnsweredByTheDeadline)
{
    auto sim = startSim({"--trickle", "20"});
    auto exporter = startExporter(m_exporterPort);
    const Scrape trickled = scrape(m_exporterPort, "3");
    EXPECT_TRUE(trickled.down()) << trickled.status;
    EXPECT_LT(trickled.took, 3s) << seconds(trickled.took);
    report("trickling server: exporter scrape (header 3 s)", trickled.took);

    std::string err;
    const auto [code, took] = ctl({"--host", server(), "--timeout", "2", "nodes"}, &err);
    EXPECT_EQ(code, 3);
    EXPECT_LT(took, 4s);
    EXPECT_EQ(err,
        "korvane-ctl: listNodes to " + server() + ": the reply was still arriving after 2 s (slow link?)\n");
}

TEST_F(NetworkFaults, AKilledServerIsDownAtOnceAndReadAgainAfterItsRestart)
{
    auto sim = startSim();
    auto exporter = startExporter(m_exporterPort);
    ASSERT_TRUE(scrape(m_exporterPort).up());
    sim->process().signal(SIGKILL);
    sim->process().wait();
    nextReading();
    const Scrape gone = scrape(m_exporterPort);
    EXPECT_TRUE(gone.down());
    EXPECT_LT(gone.took, 1s) << seconds(gone.took);
    report("kill: exporter scrape after the server was killed", gone.took);

    sim = startSim();
    const auto restarted = Clock::now();
    Scrape back;
    for (int round = 0; round < 20 && !back.up(); ++round) {
        std::this_thread::sleep_for(500ms);
        back = scrape(m_exporterPort);
    }
    EXPECT_TRUE(back.up());
    EXPECT_LT(Clock::now() - restarted, 5s);
    report("restart: exporter reads korvane_up 1 again", Clock::now() - restarted);
}

TEST_F(NetworkFaults, ASilentPartitionIsAnEventForEveryWebStreamAndACommandIsRefusedWithItsReason)
{
    auto sim = startSim({"--speed", "0"});
    ChildProcess web(program("KORVANE_WEB", KORVANE_WEB_PROGRAM),
        {"--server", server(), "--web.listen-address", "127.0.0.1:0", "--interval", "1"});
    const int port = web.listeningPort();
    ASSERT_GT(port, 0);
    EventReader stream(port, "/api/v1/events");
    // The first reading may come after the stream's snapshot.
    std::optional<EventReader::Event> event = stream.next();
    ASSERT_TRUE(event);
    while (event && event->data.find("\"state\":\"connected\"") == std::string::npos)
        event = stream.next();
    ASSERT_TRUE(event);

    m_link.partition();
    const auto cut = Clock::now();
    do
        event = stream.next(40000);
    while (event && event->name != "farm");
    ASSERT_TRUE(event);
    const auto noticed = Clock::now() - cut;
    EXPECT_NE(event->data.find("\"state\":\"disconnected\""), std::string::npos) << event->data;
    EXPECT_NE(event->data.find("\"reason\":\"no reply from " + server() + " to list"), std::string::npos)
        << event->data;
    EXPECT_LT(noticed, 40s);
    report("partition: korvane-web streams told \"disconnected\"", noticed);

    // A command during the partition: refused in bounded time, with the reason, and audited.
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(30, 0);
    const auto sent = Clock::now();
    const httplib::Result refused = client.Post("/api/v1/batches/4/pause", "{}", "application/json");
    ASSERT_TRUE(refused);
    EXPECT_TRUE(refused->status == 503 || refused->status == 504) << refused->status << " " << refused->body;
    EXPECT_NE(refused->body.find(server()), std::string::npos) << refused->body;
    EXPECT_LT(Clock::now() - sent, 11s);
    report("partition: korvane-web refuses a command", Clock::now() - sent);

    m_link.heal();
    const auto healed = Clock::now();
    do
        event = stream.next(40000);
    while (
        event && (event->name != "farm" || event->data.find("\"state\":\"connected\"") == std::string::npos));
    ASSERT_TRUE(event);
    EXPECT_LT(Clock::now() - healed, 30s);
    report("heal: korvane-web streams told \"connected\"", Clock::now() - healed);
    web.signal(SIGTERM);
    EXPECT_EQ(web.wait(), 0);
    EXPECT_NE(web.err().find("korvane-web: audit {\"action\":\"pause\",\"ids\":[4],\"reason\":\""),
        std::string::npos)
        << web.err();
}
