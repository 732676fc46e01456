#include <gtest/gtest.h>

#include "metricstext.h"

namespace {

ControlClient::NodeInfo node(std::uint32_t id, const std::string& host, ControlClient::Status status)
{
    ControlClient::NodeInfo info;
    info.nodeId = id;
    info.hostname = host;
    info.version = "1.5.0";
    info.status = status;
    return info;
}

ControlClient::BatchInfo batch(std::uint32_t id, const std::string& path, ControlClient::Status status)
{
    ControlClient::BatchInfo info;
    info.batchId = id;
    info.path = path;
    info.status = status;
    info.timeStarted = 1700000000 + id;
    info.task.name = "BuildDenseCloud";
    return info;
}

// A farm with one node and one batch of every kind the text treats differently.
FarmSnapshot smallFarm()
{
    FarmSnapshot farm;
    farm.up = true;
    ControlClient::NodeInfo working = node(1, "render-01:5841", ControlClient::InProgress);
    working.priority = 1;
    working.progress = 25.0;
    working.errorCount = 3;
    working.lastError.time = 1700000100;
    ControlClient::NodeInfo paused = node(2, "render-02:5841", ControlClient::Paused);
    paused.version = "1.4.2";
    paused.priority = -2;
    farm.nodes = {working, paused};

    ControlClient::BatchInfo running = batch(7, "/srv/castle.kproj", ControlClient::InProgress);
    running.priority = 2;
    running.task.progress = 50.0;
    running.task.timeElapsed = 12.5;
    running.task.timeLeft = 37.25;
    running.task.nodesActive = 1;
    running.task.nodesWaiting = 2;
    running.task.nodesFailed = 3;
    ControlClient::BatchInfo done = batch(8, "/srv/done.kproj", ControlClient::Completed);
    ControlClient::BatchInfo queued = batch(9, "/srv/queued.kproj", ControlClient::Pending);
    queued.timeStarted = 0;
    queued.task.name = "AlignCameras";
    farm.batches = {running, done, queued};
    return farm;
}

const char* const Header
    = R"(# HELP korvane_up 1 when this scrape's requests to the processing server succeeded, else 0.
# TYPE korvane_up gauge
korvane_up 1
# HELP korvane_batches Batches on the processing server, by status.
# TYPE korvane_batches gauge
korvane_batches{status="pending"} 1
korvane_batches{status="working"} 1
korvane_batches{status="completed"} 1
korvane_batches{status="paused"} 0
korvane_batches{status="aborted"} 0
korvane_batches{status="ready"} 0
# HELP korvane_nodes Worker nodes of the processing server, by status.
# TYPE korvane_nodes gauge
korvane_nodes{status="pending"} 0
korvane_nodes{status="working"} 1
korvane_nodes{status="completed"} 0
korvane_nodes{status="paused"} 1
korvane_nodes{status="aborted"} 0
korvane_nodes{status="ready"} 0
# HELP korvane_node_info A worker node's version and status; the value is always 1.
# TYPE korvane_node_info gauge
korvane_node_info{node_id="1",host="render-01:5841",version="1.5.0",status="working"} 1
korvane_node_info{node_id="2",host="render-02:5841",version="1.4.2",status="paused"} 1
# HELP korvane_node_priority A worker node's priority, from -2 (lowest) to 2 (highest).
# TYPE korvane_node_priority gauge
korvane_node_priority{node_id="1",host="render-01:5841"} 1
korvane_node_priority{node_id="2",host="render-02:5841"} -2
# HELP korvane_node_progress_ratio Progress of the node's share of its current task, 0 to 1.
# TYPE korvane_node_progress_ratio gauge
korvane_node_progress_ratio{node_id="1",host="render-01:5841"} 0.25
korvane_node_progress_ratio{node_id="2",host="render-02:5841"} 0
# HELP korvane_node_errors_total Errors the worker node has reported.
# TYPE korvane_node_errors_total counter
korvane_node_errors_total{node_id="1",host="render-01:5841"} 3
korvane_node_errors_total{node_id="2",host="render-02:5841"} 0
# HELP korvane_node_last_error_timestamp_seconds Time of the worker node's last error, in seconds since the Unix epoch; absent before the first.
# TYPE korvane_node_last_error_timestamp_seconds gauge
korvane_node_last_error_timestamp_seconds{node_id="1",host="render-01:5841"} 1700000100
)";

const char* const ActiveBatches
    = R"(# HELP korvane_batch_info A batch's current task and status; the value is always 1.
# TYPE korvane_batch_info gauge
korvane_batch_info{batch_id="7",project="/srv/castle.kproj",task="BuildDenseCloud",status="working"} 1
korvane_batch_info{batch_id="9",project="/srv/queued.kproj",task="AlignCameras",status="pending"} 1
# HELP korvane_batch_priority A batch's priority, from -2 (lowest) to 2 (highest).
# TYPE korvane_batch_priority gauge
korvane_batch_priority{batch_id="7",project="/srv/castle.kproj"} 2
korvane_batch_priority{batch_id="9",project="/srv/queued.kproj"} 0
# HELP korvane_batch_progress_ratio Progress of the batch's current task, 0 to 1.
# TYPE korvane_batch_progress_ratio gauge
korvane_batch_progress_ratio{batch_id="7",project="/srv/castle.kproj"} 0.5
korvane_batch_progress_ratio{batch_id="9",project="/srv/queued.kproj"} 0
# HELP korvane_batch_task_elapsed_seconds Seconds the batch's current task has run.
# TYPE korvane_batch_task_elapsed_seconds gauge
korvane_batch_task_elapsed_seconds{batch_id="7",project="/srv/castle.kproj"} 12.5
korvane_batch_task_elapsed_seconds{batch_id="9",project="/srv/queued.kproj"} 0
# HELP korvane_batch_task_remaining_seconds Seconds the batch's current task is expected to take still.
# TYPE korvane_batch_task_remaining_seconds gauge
korvane_batch_task_remaining_seconds{batch_id="7",project="/srv/castle.kproj"} 37.25
korvane_batch_task_remaining_seconds{batch_id="9",project="/srv/queued.kproj"} 0
# HELP korvane_batch_nodes_active Worker nodes at work on the batch's current task.
# TYPE korvane_batch_nodes_active gauge
korvane_batch_nodes_active{batch_id="7",project="/srv/castle.kproj"} 1
korvane_batch_nodes_active{batch_id="9",project="/srv/queued.kproj"} 0
# HELP korvane_batch_nodes_waiting Worker nodes waiting for work of the batch's current task.
# TYPE korvane_batch_nodes_waiting gauge
korvane_batch_nodes_waiting{batch_id="7",project="/srv/castle.kproj"} 2
korvane_batch_nodes_waiting{batch_id="9",project="/srv/queued.kproj"} 0
# HELP korvane_batch_nodes_failed Worker nodes that failed on the batch's current task.
# TYPE korvane_batch_nodes_failed gauge
korvane_batch_nodes_failed{batch_id="7",project="/srv/castle.kproj"} 3
korvane_batch_nodes_failed{batch_id="9",project="/srv/queued.kproj"} 0
# HELP korvane_batch_started_timestamp_seconds Time the batch started, in seconds since the Unix epoch; absent before it starts.
# TYPE korvane_batch_started_timestamp_seconds gauge
korvane_batch_started_timestamp_seconds{batch_id="7",project="/srv/castle.kproj"} 1700000007
)";

std::string written(const FarmSnapshot& farm, bool allBatches)
{
    std::string out;
    writeFarmMetrics(farm, allBatches, out);
    return out;
}

} // namespace

TEST(MetricsText, WholeTextOfASmallFarm)
{
    EXPECT_EQ(written(smallFarm(), false), std::string(Header) + ActiveBatches);
}

TEST(MetricsText, FinishedBatchesOnlyWithTheFlag)
{
    const std::string all = written(smallFarm(), true);
    EXPECT_NE(
        all.find("korvane_batch_info{batch_id=\"8\",project=\"/srv/done.kproj\",task=\"BuildDenseCloud\","
                 "status=\"completed\"} 1\n"),
        std::string::npos);
    EXPECT_NE(all.find("korvane_batch_started_timestamp_seconds{batch_id=\"8\",project=\"/srv/done.kproj\"} "
                       "1700000008\n"),
        std::string::npos);
    EXPECT_EQ(written(smallFarm(), false).find("batch_id=\"8\""), std::string::npos);
}

TEST(MetricsText, PausedBatchesAreActive)
{
    FarmSnapshot farm = smallFarm();
    farm.batches[1].status = ControlClient::Paused;
    EXPECT_NE(written(farm, false)
                  .find("korvane_batch_info{batch_id=\"8\",project=\"/srv/done.kproj\","
                        "task=\"BuildDenseCloud\",status=\"paused\"} 1\n"),
        std::string::npos);
    for (const ControlClient::Status status : {ControlClient::Aborted, ControlClient::Ready}) {
        farm.batches[1].status = status;
        EXPECT_EQ(written(farm, false).find("batch_id=\"8\""), std::string::npos) << status;
    }
}

TEST(MetricsText, LabelValuesAreEscaped)
{
    FarmSnapshot farm;
    farm.up = true;
    farm.batches = {batch(3, "/srv/a \"quoted\" \\dir\\\nnext line/Brücke.kproj", ControlClient::Pending)};
    farm.nodes = {node(4, "knoten-\"süd\"", ControlClient::Ready)};
    const std::string text = written(farm, false);
    EXPECT_NE(text.find("korvane_batch_priority{batch_id=\"3\","
                        "project=\"/srv/a \\\"quoted\\\" \\\\dir\\\\\\nnext line/Brücke.kproj\"} 0\n"),
        std::string::npos)
        << text;
    EXPECT_NE(
        text.find("korvane_node_priority{node_id=\"4\",host=\"knoten-\\\"süd\\\"\"} 0\n"), std::string::npos);
    EXPECT_NE(text.find("korvane_nodes{status=\"ready\"} 1\n"), std::string::npos);
}

TEST(MetricsText, EmptyFarmHasEveryStatusAndEveryFamily)
{
    FarmSnapshot farm;
    farm.up = true;
    const std::string text = written(farm, false);
    for (const char* status : {"pending", "working", "completed", "paused", "aborted", "ready"}) {
        EXPECT_NE(
            text.find(std::string("korvane_batches{status=\"") + status + "\"} 0\n"), std::string::npos);
        EXPECT_NE(text.find(std::string("korvane_nodes{status=\"") + status + "\"} 0\n"), std::string::npos);
    }
    EXPECT_NE(text.find("# TYPE korvane_batch_nodes_failed gauge\n"), std::string::npos);
    EXPECT_NE(text.find("# TYPE korvane_node_errors_total counter\n"), std::string::npos);
}

TEST(MetricsText, WithoutAReadingOnlyUpZero)
{
    FarmSnapshot farm = smallFarm();
    farm.up = false;
    EXPECT_EQ(written(farm, false),
        "# HELP korvane_up 1 when this scrape's requests to the processing server succeeded, else 0.\n"
        "# TYPE korvane_up gauge\n"
        "korvane_up 0\n");
}

TEST(MetricsText, ScrapeDurationInSeconds)
{
    std::string out;
    writeScrapeDuration(0.25, out);
    EXPECT_EQ(out,
        "# HELP korvane_scrape_duration_seconds Seconds this exporter took to read the farm's state from the "
        "processing server and write it out.\n"
        "# TYPE korvane_scrape_duration_seconds gauge\n"
        "korvane_scrape_duration_seconds 0.25\n");
}

TEST(MetricsText, StatusWords)
{
    EXPECT_STREQ(statusLabel(ControlClient::Pending), "pending");
    EXPECT_STREQ(statusLabel(ControlClient::InProgress), "working");
    EXPECT_STREQ(statusLabel(ControlClient::Completed), "completed");
    EXPECT_STREQ(statusLabel(ControlClient::Paused), "paused");
    EXPECT_STREQ(statusLabel(ControlClient::Aborted), "aborted");
    EXPECT_STREQ(statusLabel(ControlClient::Ready), "ready");
}
