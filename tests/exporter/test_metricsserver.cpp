#include <atomic>
#include <chrono>
#include <httplib.h>
#include <openssl/evp.h>
#include <sstream>
#include <thread>
#include <zlib.h>

#include <gtest/gtest.h>

#include "buildinfo.h"
#include "consolecapture.h"
#include "exporter.h"
#include "loopback.h"
#include "metricsserver.h"
#include "runningsim.h"
#include "scriptedserver.h"

using namespace std::chrono_literals;

namespace {

std::string gunzip(const std::string& bytes)
{
    z_stream stream {};
    if (inflateInit2(&stream, 15 + 16) != Z_OK)
        return "(no zlib)";
    std::string out;
    char block[65536];
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef*>(block);
        stream.avail_out = sizeof block;
        result = inflate(&stream, Z_NO_FLUSH);
        out.append(block, sizeof block - stream.avail_out);
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END ? out : "(not gzip)";
}

// The body without its last family, korvane_scrape_duration_seconds, whose value changes.
std::string withoutDuration(const std::string& body)
{
    const std::size_t at = body.find("# HELP korvane_scrape_duration_seconds ");
    return at == std::string::npos ? body + "(no duration)" : body.substr(0, at);
}

const std::string DownBody
    = "# HELP korvane_up 1 when this scrape's requests to the processing server succeeded, "
      "else 0.\n# TYPE korvane_up gauge\nkorvane_up 0\n"
      "# HELP korvane_exporter_build_info The exporter's version, source revision and compiler; the value is "
      "always 1.\n# TYPE korvane_exporter_build_info gauge\n"
      "korvane_exporter_build_info{version=\"0.1.0.2834\",revision=\""
    + std::string(BuildInfo::revision()) + "\",compiler=\"" + BuildInfo::compiler() + "\"} 1\n";

// The simulator's farm of seed 1, its clock standing still.
const std::string FrozenFarmCounts = R"(korvane_batches{status="pending"} 16
korvane_batches{status="working"} 0
korvane_batches{status="completed"} 10
korvane_batches{status="paused"} 3
korvane_batches{status="aborted"} 1
korvane_batches{status="ready"} 0
# HELP korvane_nodes Worker nodes of the processing server, by status.
# TYPE korvane_nodes gauge
korvane_nodes{status="pending"} 1
korvane_nodes{status="working"} 0
korvane_nodes{status="completed"} 0
korvane_nodes{status="paused"} 2
korvane_nodes{status="aborted"} 1
korvane_nodes{status="ready"} 8
)";

// An exporter and its HTTP side on a free loopback port, serving from a thread of their own.
class Served final
{
public:
    Served(const std::string& server, std::chrono::milliseconds reuseFor = 1000ms, int serverTimeout = 5,
        const MetricsServer::Settings& http = MetricsServer::Settings())
        : m_exporter(settings(server, reuseFor, serverTimeout), m_log)
        , m_http(m_exporter, server, http)
    {
        std::string error;
        EXPECT_TRUE(m_http.bind("127.0.0.1", 0, error)) << error;
        m_thread = std::thread([this] {
            m_http.run();
            m_ended = true;
        });
    }
    ~Served()
    {
        m_exporter.stop();
        m_http.stop();
        // stop() before the server has begun to listen does nothing: ask until it ends.
        while (!m_ended) {
            m_http.stop();
            std::this_thread::sleep_for(10ms);
        }
        m_thread.join();
    }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    // The body as it travels. Without an Accept-Encoding of the caller's,
    // the request says identity: cpp-httplib 0.18's client asks for br and
    // gzip by itself, as no plain client does.
    httplib::Result get(const std::string& path, httplib::Headers headers = {})
    {
        if (headers.find("Accept-Encoding") == headers.end())
            headers.emplace("Accept-Encoding", "identity");
        httplib::Client client("127.0.0.1", m_http.port());
        client.set_connection_timeout(5, 0);
        client.set_decompress(false);
        client.set_read_timeout(30, 0);
        return client.Get(path.c_str(), headers);
    }
    std::string metrics()
    {
        const httplib::Result result = get("/metrics");
        EXPECT_TRUE(result);
        if (!result)
            return {};
        EXPECT_EQ(result->status, 200);
        return result->body;
    }

    Exporter& exporter() { return m_exporter; }
    std::string log() { return taken(m_log); }

private:
    static Exporter::Settings settings(
        const std::string& server, std::chrono::milliseconds reuseFor, int timeout)
    {
        Exporter::Settings settings;
        settings.server = server;
        settings.reuseFor = reuseFor;
        settings.serverTimeoutSeconds = timeout;
        return settings;
    }

    ConsoleCapture m_console;
    std::ostringstream m_log;
    Exporter m_exporter;
    MetricsServer m_http;
    std::atomic<bool> m_ended {false};
    std::thread m_thread;
};

} // namespace

TEST(MetricsServer, MetricsInTheTextFormat)
{
    RunningSim sim;
    Served served(sim.address());
    const httplib::Result result = served.get("/metrics");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 200);
    EXPECT_EQ(result->get_header_value("Content-Type"), "text/plain; version=0.0.4; charset=utf-8");
    EXPECT_EQ(result->get_header_value("Content-Encoding"), "");
    EXPECT_EQ(result->body.rfind("# HELP korvane_up 1 when this scrape's requests to the processing server "
                                 "succeeded, else 0.\n# TYPE korvane_up gauge\nkorvane_up 1\n",
                  0),
        0u);
    EXPECT_NE(result->body.find(FrozenFarmCounts), std::string::npos) << result->body.substr(0, 1500);
    EXPECT_NE(
        result->body.find("\n# TYPE korvane_scrape_duration_seconds gauge\nkorvane_scrape_duration_seconds "),
        std::string::npos);
    EXPECT_EQ(result->body.back(), '\n');
}

TEST(MetricsServer, IndexPageAndNotFound)
{
    RunningSim sim;
    Served served(sim.address());
    const httplib::Result index = served.get("/");
    ASSERT_TRUE(index);
    EXPECT_EQ(index->status, 200);
    EXPECT_EQ(index->get_header_value("Content-Type"), "text/html; charset=utf-8");
    EXPECT_EQ(index->body,
        "<!DOCTYPE html>\n<html><head><title>Korvane Exporter</title></head><body>\n<h1>Korvane "
        "Exporter</h1>\n"
        "<p>Watching the processing server at "
            + sim.address() + ".</p>\n<p><a href=\"/metrics\">Metrics</a></p>\n</body></html>\n");

    for (const char* path : {"/nope", "/metrics/", "/metrics/extra", "/index.html", "/favicon.ico"}) {
        const httplib::Result missing = served.get(path);
        ASSERT_TRUE(missing) << path;
        EXPECT_EQ(missing->status, 404) << path;
        EXPECT_EQ(missing->body, "404 page not found; the metrics are at /metrics\n") << path;
    }
    // Nothing here reads the server.
    EXPECT_EQ(served.exporter().readings(), 0u);
}

TEST(MetricsServer, GzipWhenTheScraperAcceptsIt)
{
    RunningSim sim;
    Served served(sim.address(), 60s);
    const std::string plain = served.metrics();
    for (const char* accepted : {"gzip", "deflate, gzip", "gzip;q=1.0, identity;q=0.5, *;q=0"}) {
        const httplib::Result zipped = served.get("/metrics", {{"Accept-Encoding", accepted}});
        ASSERT_TRUE(zipped);
        EXPECT_EQ(zipped->get_header_value("Content-Encoding"), "gzip") << accepted;
        EXPECT_LT(zipped->body.size(), plain.size() / 3);
        EXPECT_EQ(gunzip(zipped->body), plain);
    }
    for (const char* refused : {"identity", "gzip;q=0", "br"}) {
        const httplib::Result asIs = served.get("/metrics", {{"Accept-Encoding", refused}});
        ASSERT_TRUE(asIs);
        EXPECT_EQ(asIs->get_header_value("Content-Encoding"), "") << refused;
        EXPECT_EQ(asIs->body, plain);
    }
    EXPECT_EQ(served.exporter().readings(), 1u);
}

TEST(MetricsServer, ScrapesWithinOneSecondReuseTheReading)
{
    RunningSim sim;
    Served served(sim.address());
    const std::string first = served.metrics();
    const std::string second = served.metrics();
    EXPECT_EQ(second, first);
    EXPECT_EQ(served.exporter().readings(), 1u);
    std::this_thread::sleep_for(1100ms);
    served.metrics();
    EXPECT_EQ(served.exporter().readings(), 2u);
}

TEST(MetricsServer, TwentyConcurrentScrapesShareOneReading)
{
    // Each reply held back, so that all twenty arrive while the reading is under way.
    FaultSwitches slow;
    slow.delayMs = 300;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(slow));
    // The page stays fresh long enough for a scraper that a busy machine
    // starts late: what counts here is that no reading runs twice.
    Served served(sim.address(), 10000ms);

    std::vector<std::string> bodies(20);
    std::vector<int> statuses(20, 0);
    std::atomic<int> ready {0};
    std::vector<std::thread> scrapers;
    scrapers.reserve(bodies.size());
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        scrapers.emplace_back([&, i] {
            ++ready;
            while (ready < 20)
                std::this_thread::yield();
            const httplib::Result result = served.get("/metrics");
            if (result) {
                statuses[i] = result->status;
                bodies[i] = result->body;
            }
        });
    }
    for (std::thread& scraper : scrapers)
        scraper.join();
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        EXPECT_EQ(statuses[i], 200) << i;
        EXPECT_EQ(bodies[i], bodies[0]) << i;
    }
    EXPECT_NE(bodies[0].find("korvane_up 1\n"), std::string::npos);
    // Nor is a second reading queued behind the first: long enough for one to finish.
    std::this_thread::sleep_for(1000ms);
    EXPECT_EQ(served.exporter().readings(), 1u);
}

TEST(MetricsServer, ServerDownGivesUpZeroAndComesBack)
{
    const std::uint16_t port = freeLoopbackPort();
    const std::string address = "127.0.0.1:" + std::to_string(port);
    Served served(address);

    const httplib::Result down = served.get("/metrics");
    ASSERT_TRUE(down);
    EXPECT_EQ(down->status, 200);
    EXPECT_EQ(withoutDuration(down->body), DownBody);
    EXPECT_EQ(served.log(), "korvane-exporter: cannot connect to " + address + "; next attempt in 1 s\n");

    RunningSim sim(FarmConfig(), RunningSim::frozen(), port);
    ASSERT_TRUE(sim.listening());
    std::string body;
    for (int attempt = 0; attempt < 40 && body.find("korvane_up 1\n") == std::string::npos; ++attempt) {
        std::this_thread::sleep_for(250ms);
        body = served.metrics();
    }
    EXPECT_NE(body.find("korvane_up 1\n"), std::string::npos);
    EXPECT_NE(body.find(FrozenFarmCounts), std::string::npos);
    EXPECT_EQ(served.log(), "korvane-exporter: reading " + address + "\n");
}

TEST(MetricsServer, AProjectPathWithQuoteBackslashAndLineFeed)
{
    RunningSim sim;
    const std::string path = "/srv/a \"quoted\" name\\sub\\\nsecond line/Brücke-Süd.kproj";
    std::uint32_t id = 0;
    {
        ConsoleCapture console;
        ControlClient client;
        ASSERT_TRUE(client.connect("127.0.0.1", sim.port()));
        ControlClient::TaskRequest task;
        task.name = "AlignCameras";
        id = client.createBatch(path, {task});
        ASSERT_NE(id, ControlClient::NoId);
    }
    Served served(sim.address());
    const std::string body = served.metrics();
    const std::string idLabel = "batch_id=\"" + std::to_string(id) + "\"";
    const std::string labels
        = idLabel + ",project=\"/srv/a \\\"quoted\\\" name\\\\sub\\\\\\nsecond line/Brücke-Süd.kproj\"";
    EXPECT_NE(body.find("korvane_batch_info{" + labels + ",task=\"AlignCameras\"} 1\n"), std::string::npos)
        << body.substr(body.find("korvane_batch_info"), 2000);
    EXPECT_NE(body.find("korvane_batch_status{" + idLabel + ",status=\"pending\"} 1\n"), std::string::npos);
    EXPECT_NE(body.find("korvane_batch_priority{" + idLabel + "} 0\n"), std::string::npos);
}

TEST(MetricsServer, AMemberOfTheWrongTypeGivesUpZeroAndTheExporterGoesOn)
{
    ScriptedServer server;
    server.acceptConnection()
        .reply(R"({"result":[]})")
        .reply(R"({"result":[{"node_id":1,"hostname":"h"},{"node_id":2,"error_count":"many"}]})")
        .reply(R"({"result":[]})")
        .reply(R"({"result":[{"node_id":1,"hostname":"h"}]})");
    server.start();
    const std::string address = "127.0.0.1:" + std::to_string(server.port());
    Served served(address, 0ms);

    const httplib::Result wrong = served.get("/metrics");
    ASSERT_TRUE(wrong);
    EXPECT_EQ(wrong->status, 200);
    EXPECT_EQ(withoutDuration(wrong->body), DownBody);
    EXPECT_EQ(served.log(),
        "korvane-exporter: listNodes reply: result[1].error_count has the wrong type (Value is not "
        "convertible "
        "to UInt.)\n");

    const std::string body = served.metrics();
    EXPECT_NE(body.find("korvane_up 1\n"), std::string::npos);
    EXPECT_NE(body.find("korvane_node_info{node_id=\"1\",host=\"h\",version=\"\"} 1\n"), std::string::npos);
    EXPECT_NE(body.find("korvane_node_status{node_id=\"1\",status=\"pending\"} 1\n"), std::string::npos);
    EXPECT_EQ(served.log(), "korvane-exporter: reading " + address + "\n");
}

TEST(MetricsServer, StoppingAnswersAWaitingScrape)
{
    ScriptedServer mute;
    mute.acceptConnection().waitForLine();
    mute.start();
    Served served("127.0.0.1:" + std::to_string(mute.port()), 1000ms, 60);
    std::thread stopper([&] {
        std::this_thread::sleep_for(300ms);
        served.exporter().stop();
    });
    const auto start = std::chrono::steady_clock::now();
    const httplib::Result result = served.get("/metrics");
    stopper.join();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 503);
    EXPECT_EQ(result->body, "The exporter is stopping.\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

namespace {

const std::chrono::milliseconds OneSecond(1000);

MetricsServer::Settings httpSettings(const std::string& path, int maxRequests)
{
    MetricsServer::Settings settings;
    settings.telemetryPath = path;
    settings.maxRequests = maxRequests;
    return settings;
}

} // namespace

TEST(MetricsServer, TelemetryPathOfTheOperatorsChoice)
{
    RunningSim sim;
    Served served(sim.address(), OneSecond, 5, httpSettings("/farm/metrics", 40));
    const httplib::Result metrics = served.get("/farm/metrics");
    ASSERT_TRUE(metrics);
    EXPECT_EQ(metrics->status, 200);
    EXPECT_NE(metrics->body.find("\nkorvane_up 1\n"), std::string::npos);
    const httplib::Result old = served.get("/metrics");
    ASSERT_TRUE(old);
    EXPECT_EQ(old->status, 404);
    EXPECT_EQ(old->body, "404 page not found; the metrics are at /farm/metrics\n");
    const httplib::Result index = served.get("/");
    ASSERT_TRUE(index);
    EXPECT_NE(index->body.find("<a href=\"/farm/metrics\">Metrics</a>"), std::string::npos);
}

TEST(MetricsServer, ScrapesBeyondMaxRequestsGet503AndTheIndexNeverWaits)
{
    // A server that never answers: every scrape waits on the one reading.
    ScriptedServer mute;
    mute.acceptConnection().waitForLine().waitForClose();
    mute.start();
    Served served("127.0.0.1:" + std::to_string(mute.port()), OneSecond, 60, httpSettings("/metrics", 2));

    std::vector<std::thread> waiting;
    std::vector<int> statuses(2, 0);
    waiting.reserve(statuses.size());
    for (std::size_t i = 0; i < 2; ++i) {
        waiting.emplace_back([&, i] {
            const httplib::Result result = served.get("/metrics");
            statuses[i] = result ? result->status : -1;
        });
    }
    std::this_thread::sleep_for(500ms);
    const auto start = std::chrono::steady_clock::now();
    const httplib::Result third = served.get("/metrics");
    ASSERT_TRUE(third);
    EXPECT_EQ(third->status, 503);
    EXPECT_EQ(third->body, "Too many scrapes at the same time; the limit is 2 (--web.max-requests).\n");
    const httplib::Result index = served.get("/");
    ASSERT_TRUE(index);
    EXPECT_EQ(index->status, 200);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);

    served.exporter().stop();
    for (std::thread& thread : waiting)
        thread.join();
    EXPECT_EQ(statuses, (std::vector<int> {503, 503}));
    EXPECT_TRUE(mute.finish());
}

TEST(MetricsServer, BasicAuthentication)
{
    RunningSim sim;
    MetricsServer::Settings http;
    // "secret", bcrypt with cost 4, as $2b$ and as $2y$
    http.web.users["prometheus"] = "$2b$04$KQfAhZcFLLhYMSJVzjJ1NegSWEEkEwXFZo6FUY/9zPm/mJJQGrAiK";
    http.web.users["grafana"] = "$2y$04$KQfAhZcFLLhYMSJVzjJ1NegSWEEkEwXFZo6FUY/9zPm/mJJQGrAiK";
    Served served(sim.address(), OneSecond, 5, http);

    const httplib::Result none = served.get("/metrics");
    ASSERT_TRUE(none);
    EXPECT_EQ(none->status, 401);
    EXPECT_EQ(
        none->get_header_value("WWW-Authenticate"), "Basic realm=\"korvane-exporter\", charset=\"UTF-8\"");
    EXPECT_EQ(none->body, "Unauthorized\n");
    const auto basic = [](const std::string& pair) {
        std::string encoded(4 * ((pair.size() + 2) / 3) + 1, '\0');
        const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(encoded.data()),
            reinterpret_cast<const unsigned char*>(pair.data()), static_cast<int>(pair.size()));
        encoded.resize(static_cast<std::size_t>(length));
        return httplib::Headers {{"Authorization", "Basic " + encoded}};
    };
    for (const char* wrong : {"prometheus:Secret", "prometheus:", "alertmanager:secret", "prometheus", ""}) {
        const httplib::Result refused = served.get("/metrics", basic(wrong));
        ASSERT_TRUE(refused);
        EXPECT_EQ(refused->status, 401) << wrong;
    }
    const httplib::Result bearer = served.get("/", {{"Authorization", "Bearer secret"}});
    ASSERT_TRUE(bearer);
    EXPECT_EQ(bearer->status, 401);
    // The index and unknown paths ask too.
    EXPECT_EQ(served.get("/")->status, 401);
    EXPECT_EQ(served.get("/nope")->status, 401);
    EXPECT_EQ(served.exporter().readings(), 0u);

    for (const char* right : {"prometheus:secret", "prometheus:secret", "grafana:secret"}) {
        const httplib::Result result = served.get("/metrics", basic(right));
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, 200) << right;
        EXPECT_NE(result->body.find("\nkorvane_up 1\n"), std::string::npos);
    }
    // Once let in, a wrong password is still refused.
    EXPECT_EQ(served.get("/metrics", basic("prometheus:secret2"))->status, 401);
}

TEST(MetricsServer, SeveralAddresses)
{
    RunningSim sim;
    std::ostringstream log;
    ConsoleCapture console;
    Exporter::Settings settings;
    settings.server = sim.address();
    Exporter exporter(settings, log);
    MetricsServer http(exporter, sim.address());
    std::string error;
    ASSERT_TRUE(http.bind("127.0.0.1", 0, error)) << error;
    ASSERT_TRUE(http.bind("127.0.0.1", 0, error)) << error;
    EXPECT_FALSE(http.bind("127.0.0.1", http.port(0), error));
    EXPECT_EQ(
        error, "cannot listen on 127.0.0.1:" + std::to_string(http.port(0)) + ": Address already in use");
    std::atomic<bool> ended {false};
    std::thread serving([&] {
        http.run();
        ended = true;
    });
    for (const std::size_t address : {0u, 1u}) {
        httplib::Client client("127.0.0.1", http.port(address));
        const httplib::Result result = client.Get("/metrics");
        ASSERT_TRUE(result) << address;
        EXPECT_EQ(result->status, 200);
        EXPECT_NE(result->body.find("\nkorvane_up 1\n"), std::string::npos);
    }
    EXPECT_NE(http.port(0), http.port(1));
    exporter.stop();
    while (!ended) {
        http.stop();
        std::this_thread::sleep_for(10ms);
    }
    serving.join();
}
