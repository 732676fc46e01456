#include <chrono>
#include <functional>
#include <httplib.h>
#include <iostream>
#include <thread>

#include <json/reader.h>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "consolecapture.h"
#include "controlclient.h"
#include "exportertestsupport.h"
#include "tempdir.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// End to end: korvane-sim, korvane-exporter watching it, and a real
// Prometheus server scraping the exporter every second, all on loopback.
namespace {

// Asks Prometheus' HTTP API; the "result" array of an instant query.
Json::Value query(int port, const std::string& expression)
{
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(10, 0);
    const httplib::Result result = client.Get("/api/v1/query", httplib::Params {{"query", expression}}, {});
    Json::Value reply;
    if (!result || result->status != 200 || !Json::Reader().parse(result->body, reply))
        return Json::Value(Json::arrayValue);
    return reply["data"]["result"];
}

// Polls until done() holds, at most the time given; the seconds it took, or -1.
double pollUntil(const std::function<bool()>& done, std::chrono::seconds limit)
{
    const auto start = Clock::now();
    while (Clock::now() - start < limit) {
        if (done())
            return std::chrono::duration<double>(Clock::now() - start).count();
        std::this_thread::sleep_for(200ms);
    }
    return -1;
}

} // namespace

TEST(PrometheusEndToEnd, ScrapesTheExporterAndFollowsAPausedBatch)
{
    const auto testStart = Clock::now();
    ChildProcess sim(KORVANE_SIM_PROGRAM, {"--listen", "127.0.0.1:0", "--seed", "1", "--nodes", "12"});
    const int simPort = sim.listeningPort();
    ASSERT_GT(simPort, 0);
    ChildProcess exporter(KORVANE_EXPORTER_PROGRAM,
        {"--listen", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(simPort)});
    const int exporterPort = exporter.listeningPort();
    ASSERT_GT(exporterPort, 0);

    TempDir dir;
    const std::string config = dir.write("prometheus.yml",
        "global:\n  scrape_interval: 1s\n  scrape_timeout: 1s\n"
        "scrape_configs:\n  - job_name: korvane\n    static_configs:\n      - targets: ['127.0.0.1:"
            + std::to_string(exporterPort) + "']\n");
    const int prometheusPort = freeLoopbackPort();
    ChildProcess prometheus("/usr/bin/prometheus",
        {"--config.file=" + config, "--storage.tsdb.path=" + dir.file("data"),
            "--web.listen-address=127.0.0.1:" + std::to_string(prometheusPort), "--log.level=warn"});

    const double ready = pollUntil(
        [&] {
            httplib::Client client("127.0.0.1", prometheusPort);
            const httplib::Result result = client.Get("/-/ready");
            return result && result->status == 200;
        },
        60s);
    ASSERT_GE(ready, 0) << prometheus.err();

    // The simulator's node count, through a scrape and Prometheus' query language.
    std::string nodes;
    const double counted = pollUntil(
        [&] {
            const Json::Value result = query(prometheusPort, "sum(korvane_nodes)");
            nodes = result.size() == 1 ? result[0]["value"][1].asString() : "";
            return !nodes.empty();
        },
        30s);
    ASSERT_GE(counted, 0) << prometheus.err();
    EXPECT_EQ(nodes, "12");
    const Json::Value up = query(prometheusPort, "up{job=\"korvane\"}");
    ASSERT_EQ(up.size(), 1u);
    EXPECT_EQ(up[0]["value"][1].asString(), "1");
    EXPECT_EQ(query(prometheusPort, "korvane_up")[0]["value"][1].asString(), "1");

    // Pause a pending batch on the simulator; its status series follow.
    std::uint32_t batchId = ControlClient::NoId;
    {
        ConsoleCapture console;
        ControlClient client;
        ASSERT_TRUE(client.connect("127.0.0.1", simPort));
        ControlClient::BatchList batches;
        ASSERT_TRUE(client.listBatches(batches));
        for (const ControlClient::BatchInfo& batch : batches) {
            if (batch.status == ControlClient::Pending) {
                batchId = batch.batchId;
                break;
            }
        }
        ASSERT_NE(batchId, ControlClient::NoId);
        ASSERT_TRUE(client.pauseBatch(batchId));
    }
    const std::string selector = "korvane_batch_status{batch_id=\"" + std::to_string(batchId) + "\"} == 1";
    Json::Value series;
    const double followed = pollUntil(
        [&] {
            series = query(prometheusPort, selector);
            return series.size() == 1 && series[0]["metric"]["status"].asString() == "paused";
        },
        30s);
    // The project and task are on the batch's one info series.
    const Json::Value info
        = query(prometheusPort, "korvane_batch_info{batch_id=\"" + std::to_string(batchId) + "\"}");
    ASSERT_EQ(info.size(), 1u);
    EXPECT_NE(info[0]["metric"]["project"].asString(), "");
    EXPECT_GE(followed, 0) << series.toStyledString();
    EXPECT_LT(followed, 10.0);

    std::cout << "Prometheus ready after " << ready << " s; sum(korvane_nodes) after " << counted
              << " s more; the paused status seen " << followed << " s after the pause; "
              << std::chrono::duration<double>(Clock::now() - testStart).count() << " s in all" << std::endl;

    prometheus.signal(SIGTERM);
    EXPECT_EQ(prometheus.wait(), 0);
    exporter.signal(SIGTERM);
    EXPECT_EQ(exporter.wait(), 0);
    sim.signal(SIGTERM);
    EXPECT_EQ(sim.wait(), 0);
}
