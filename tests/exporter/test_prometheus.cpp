#include <chrono>
#include <iostream>

#include <json/value.h>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "consolecapture.h"
#include "controlclient.h"
#include "prometheusserver.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// End to end: korvane-sim, korvane-exporter watching it, and a real
// Prometheus server scraping the exporter every second, all on loopback.
TEST(PrometheusEndToEnd, ScrapesTheExporterAndFollowsAPausedBatch)
{
    const auto testStart = Clock::now();
    SimProcess sim({"--seed", "1", "--nodes", "12"});
    const int simPort = sim.port();
    ASSERT_GT(simPort, 0);
    ChildProcess exporter(KORVANE_EXPORTER_PROGRAM,
        {"--listen", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(simPort)});
    const int exporterPort = exporter.listeningPort();
    ASSERT_GT(exporterPort, 0);

    TempDirectory dir;
    PrometheusServer prometheus(dir,
        "  - job_name: korvane\n    static_configs:\n      - targets: ['127.0.0.1:"
            + std::to_string(exporterPort) + "']\n");

    const double ready
        = PrometheusServer::pollUntil([&] { return !prometheus.get("/-/ready").empty(); }, 60s);
    ASSERT_GE(ready, 0) << prometheus.err();

    // The simulator's node count, through a scrape and Prometheus' query language.
    std::string nodes;
    const double counted = PrometheusServer::pollUntil(
        [&] {
            const Json::Value result = prometheus.query("sum(korvane_nodes)");
            nodes = result.size() == 1 ? result[0]["value"][1].asString() : "";
            return !nodes.empty();
        },
        30s);
    ASSERT_GE(counted, 0) << prometheus.err();
    EXPECT_EQ(nodes, "12");
    const Json::Value up = prometheus.query("up{job=\"korvane\"}");
    ASSERT_EQ(up.size(), 1u);
    EXPECT_EQ(up[0]["value"][1].asString(), "1");
    EXPECT_EQ(prometheus.query("korvane_up")[0]["value"][1].asString(), "1");

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
    const double followed = PrometheusServer::pollUntil(
        [&] {
            series = prometheus.query(selector);
            return series.size() == 1 && series[0]["metric"]["status"].asString() == "paused";
        },
        30s);
    // The project and task are on the batch's one info series.
    const Json::Value info
        = prometheus.query("korvane_batch_info{batch_id=\"" + std::to_string(batchId) + "\"}");
    ASSERT_EQ(info.size(), 1u);
    EXPECT_NE(info[0]["metric"]["project"].asString(), "");
    EXPECT_GE(followed, 0) << series.toStyledString();
    EXPECT_LT(followed, 10.0);

    std::cout << "Prometheus ready after " << ready << " s; sum(korvane_nodes) after " << counted
              << " s more; the paused status seen " << followed << " s after the pause; "
              << std::chrono::duration<double>(Clock::now() - testStart).count() << " s in all" << std::endl;

    EXPECT_EQ(prometheus.stop(), 0);
    exporter.signal(SIGTERM);
    EXPECT_EQ(exporter.wait(), 0);
    EXPECT_EQ(sim.stop(), 0);
}
