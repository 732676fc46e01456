#include <chrono>
#include <iostream>
#include <thread>

#include <json/value.h>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "prometheusserver.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace std::chrono_literals;

// Ten minutes of a moving farm of 200 batches (15 simulated seconds per
// second: two and a half simulated hours) scraped every second by a real
// Prometheus: statuses change values, not series, so the series Prometheus
// creates beyond the first scrape stay within 10 % of the series it started
// with. What it creates is a batch's next task on its info series, a
// batch's start time and a node's first error.
TEST(ExporterChurn, TenMinutesOfAMovingFarmCreateFewSeries)
{
    SimProcess sim({"--seed", "1", "--batches", "200", "--nodes", "40", "--speed", "15"});
    const int simPort = sim.port();
    ASSERT_GT(simPort, 0);
    ChildProcess exporter(KORVANE_EXPORTER_PROGRAM,
        {"--web.listen-address", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(simPort)});
    const int exporterPort = exporter.listeningPort();
    ASSERT_GT(exporterPort, 0);
    TempDirectory dir;
    PrometheusServer prometheus(dir,
        "  - job_name: korvane\n    static_configs:\n      - targets: ['127.0.0.1:"
            + std::to_string(exporterPort) + "']\n");

    ASSERT_GE(
        PrometheusServer::pollUntil([&] { return prometheus.query("korvane_up == 1").size() == 1; }, 60s), 0)
        << prometheus.err();
    std::this_thread::sleep_for(3s);
    const double seriesAtStart = prometheus.ownMetric("prometheus_tsdb_head_series");
    const double createdAtStart = prometheus.ownMetric("prometheus_tsdb_head_series_created_total");
    ASSERT_GT(seriesAtStart, 1000);

    std::this_thread::sleep_for(600s);
    const double createdAtEnd = prometheus.ownMetric("prometheus_tsdb_head_series_created_total");
    const double seriesAtEnd = prometheus.ownMetric("prometheus_tsdb_head_series");
    // The farm moved: batch and node statuses changed many times.
    const Json::Value changes = prometheus.query(
        "sum(changes(korvane_batch_status[11m])) + sum(changes(korvane_node_status[11m]))");
    ASSERT_EQ(changes.size(), 1u);
    const double statusChanges = std::stod(changes[0]["value"][1].asString());
    const Json::Value scrapes = prometheus.query("count_over_time(up[11m])");
    ASSERT_EQ(scrapes.size(), 1u);

    const double created = createdAtEnd - createdAtStart;
    std::cout << "series at the start " << seriesAtStart << ", created in 600 s " << created << " ("
              << 100 * created / seriesAtStart << " %), at the end " << seriesAtEnd << "; status changes "
              << statusChanges << ", scrapes " << scrapes[0]["value"][1].asString() << std::endl;
    EXPECT_LE(created, 0.10 * seriesAtStart);
    EXPECT_GT(statusChanges, 500);
    EXPECT_GE(std::stoi(scrapes[0]["value"][1].asString()), 590);
    const Json::Value up = prometheus.query("korvane_up");
    ASSERT_EQ(up.size(), 1u);
    EXPECT_EQ(up[0]["value"][1].asString(), "1");

    exporter.signal(SIGTERM);
    EXPECT_EQ(exporter.wait(), 0);
    EXPECT_EQ(sim.stop(), 0);
}
