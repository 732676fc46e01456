#include <gtest/gtest.h>

#include "buildinfo.h"
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

const char* const UpZero
    = R"(# HELP korvane_up 1 when this scrape's requests to the processing server succeeded, else 0.
# TYPE korvane_up gauge
korvane_up 0
)";

// The revision and compiler are the build's; the version is the project's.
const std::string BuildInfoText
    = std::string(
          "# HELP korvane_exporter_build_info The exporter's version, source revision and compiler; the "
          "value is always 1.\n# TYPE korvane_exporter_build_info gauge\n"
          "korvane_exporter_build_info{version=\"0.1.0.2834\",revision=\"")
    + BuildInfo::revision() + "\",compiler=\"" + BuildInfo::compiler() + "\"} 1\n";

const std::string Header
    = R"(# HELP korvane_up 1 when this scrape's requests to the processing server succeeded, else 0.
# TYPE korvane_up gauge
korvane_up 1
)" + BuildInfoText
    + R"(# HELP korvane_batches Batches on the processing server, by status.
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
# HELP korvane_node_info A worker node's host and version; the value is always 1.
# TYPE korvane_node_info gauge
korvane_node_info{node_id="1",host="render-01:5841",version="1.5.0"} 1
korvane_node_info{node_id="2",host="render-02:5841",version="1.4.2"} 1
# HELP korvane_node_status 1 for the worker node's current status, 0 for the others.
# TYPE korvane_node_status gauge
korvane_node_status{node_id="1",status="pending"} 0
korvane_node_status{node_id="1",status="working"} 1
korvane_node_status{node_id="1",status="completed"} 0
korvane_node_status{node_id="1",status="paused"} 0
korvane_node_status{node_id="1",status="aborted"} 0
korvane_node_status{node_id="1",status="ready"} 0
korvane_node_status{node_id="2",status="pending"} 0
korvane_node_status{node_id="2",status="working"} 0
korvane_node_status{node_id="2",status="completed"} 0
korvane_node_status{node_id="2",status="paused"} 1
korvane_node_status{node_id="2",status="aborted"} 0
korvane_node_status{node_id="2",status="ready"} 0
# HELP korvane_node_priority A worker node's priority, from -2 (lowest) to 2 (highest).
# TYPE korvane_node_priority gauge
korvane_node_priority{node_id="1"} 1
korvane_node_priority{node_id="2"} -2
# HELP korvane_node_progress_ratio Progress of the node's share of its current task, 0 to 1.
# TYPE korvane_node_progress_ratio gauge
korvane_node_progress_ratio{node_id="1"} 0.25
korvane_node_progress_ratio{node_id="2"} 0
# HELP korvane_node_errors_total Errors the worker node has reported.
# TYPE korvane_node_errors_total counter
korvane_node_errors_total{node_id="1"} 3
korvane_node_errors_total{node_id="2"} 0
# HELP korvane_node_last_error_timestamp_seconds Time of the worker node's last error, in seconds since the Unix epoch; absent before the first.
# TYPE korvane_node_last_error_timestamp_seconds gauge
korvane_node_last_error_timestamp_seconds{node_id="1"} 1700000100
)";

const char* const ActiveBatches
    = R"(# HELP korvane_batch_info A batch's project and current task; the value is always 1.
# TYPE korvane_batch_info gauge
korvane_batch_info{batch_id="7",project="/srv/castle.kproj",task="BuildDenseCloud"} 1
korvane_batch_info{batch_id="9",project="/srv/queued.kproj",task="AlignCameras"} 1
# HELP korvane_batch_status 1 for the batch's current status, 0 for the others.
# TYPE korvane_batch_status gauge
korvane_batch_status{batch_id="7",status="pending"} 0
korvane_batch_status{batch_id="7",status="working"} 1
korvane_batch_status{batch_id="7",status="paused"} 0
korvane_batch_status{batch_id="9",status="pending"} 1
korvane_batch_status{batch_id="9",status="working"} 0
korvane_batch_status{batch_id="9",status="paused"} 0
# HELP korvane_batch_priority A batch's priority, from -2 (lowest) to 2 (highest).
# TYPE korvane_batch_priority gauge
korvane_batch_priority{batch_id="7"} 2
korvane_batch_priority{batch_id="9"} 0
# HELP korvane_batch_progress_ratio Progress of the batch's current task, 0 to 1.
# TYPE korvane_batch_progress_ratio gauge
korvane_batch_progress_ratio{batch_id="7"} 0.5
korvane_batch_progress_ratio{batch_id="9"} 0
# HELP korvane_batch_task_elapsed_seconds Seconds the batch's current task has run.
# TYPE korvane_batch_task_elapsed_seconds gauge
korvane_batch_task_elapsed_seconds{batch_id="7"} 12.5
korvane_batch_task_elapsed_seconds{batch_id="9"} 0
# HELP korvane_batch_task_remaining_seconds Seconds the batch's current task is expected to take still.
# TYPE korvane_batch_task_remaining_seconds gauge
korvane_batch_task_remaining_seconds{batch_id="7"} 37.25
korvane_batch_task_remaining_seconds{batch_id="9"} 0
# HELP korvane_batch_nodes_active Worker nodes at work on the batch's current task.
# TYPE korvane_batch_nodes_active gauge
korvane_batch_nodes_active{batch_id="7"} 1
korvane_batch_nodes_active{batch_id="9"} 0
# HELP korvane_batch_nodes_waiting Worker nodes waiting for work of the batch's current task.
# TYPE korvane_batch_nodes_waiting gauge
korvane_batch_nodes_waiting{batch_id="7"} 2
korvane_batch_nodes_waiting{batch_id="9"} 0
# HELP korvane_batch_nodes_failed Worker nodes that failed on the batch's current task.
# TYPE korvane_batch_nodes_failed gauge
korvane_batch_nodes_failed{batch_id="7"} 3
korvane_batch_nodes_failed{batch_id="9"} 0
# HELP korvane_batch_started_timestamp_seconds Time the batch started, in seconds since the Unix epoch; absent before it starts.
# TYPE korvane_batch_started_timestamp_seconds gauge
korvane_batch_started_timestamp_seconds{batch_id="7"} 1700000007
)";
std::string written(const FarmSnapshot& farm, CollectMode batches = CollectMode::Unfinished)
{
    std::string out;
    writeFarmMetrics(farm, batches, out);
    return out;
}

} // namespace

TEST(MetricsText, WholeTextOfASmallFarm)
{
    EXPECT_EQ(written(smallFarm()), std::string(Header) + ActiveBatches);
}

TEST(MetricsText, FinishedBatchesOnlyWhenAllAreCollected)
{
    const std::string all = written(smallFarm(), CollectMode::All);
    EXPECT_NE(
        all.find(
            "korvane_batch_info{batch_id=\"8\",project=\"/srv/done.kproj\",task=\"BuildDenseCloud\"} 1\n"),
        std::string::npos);
    EXPECT_NE(
        all.find("korvane_batch_started_timestamp_seconds{batch_id=\"8\"} 1700000008\n"), std::string::npos);
    // Collecting all, a batch has a series for each of the six status words.
    EXPECT_NE(all.find("korvane_batch_status{batch_id=\"8\",status=\"pending\"} 0\n"
                       "korvane_batch_status{batch_id=\"8\",status=\"working\"} 0\n"
                       "korvane_batch_status{batch_id=\"8\",status=\"completed\"} 1\n"
                       "korvane_batch_status{batch_id=\"8\",status=\"paused\"} 0\n"
                       "korvane_batch_status{batch_id=\"8\",status=\"aborted\"} 0\n"
                       "korvane_batch_status{batch_id=\"8\",status=\"ready\"} 0\n"),
        std::string::npos)
        << all;
    EXPECT_EQ(written(smallFarm()).find("batch_id=\"8\""), std::string::npos);
}

TEST(MetricsText, WorkingOnlyOrNoBatches)
{
    const std::string working = written(smallFarm(), CollectMode::Working);
    EXPECT_NE(working.find("# TYPE korvane_batch_status gauge\n"
                           "korvane_batch_status{batch_id=\"7\",status=\"working\"} 1\n"
                           "# HELP korvane_batch_priority "),
        std::string::npos)
        << working;
    EXPECT_EQ(working.find("batch_id=\"9\""), std::string::npos);
    EXPECT_EQ(working.find("batch_id=\"8\""), std::string::npos);

    const std::string none = written(smallFarm(), CollectMode::None);
    EXPECT_EQ(none.find("korvane_batch_"), std::string::npos);
    // The counts by status stay.
    EXPECT_NE(none.find("korvane_batches{status=\"completed\"} 1\n"), std::string::npos);
    EXPECT_EQ(none, std::string(Header));
}

TEST(MetricsText, AStatusChangeChangesValuesNotLabels)
{
    FarmSnapshot farm = smallFarm();
    const std::string before = written(farm);
    farm.batches[2].status = ControlClient::Paused;
    farm.nodes[0].status = ControlClient::Ready;
    const std::string after = written(farm);
    const auto seriesNames = [](const std::string& text) {
        std::string names;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find('\n', at);
            const std::string line = text.substr(at, end - at);
            if (line[0] != '#')
                names += line.substr(0, line.rfind(' ')) + "\n";
            at = end + 1;
        }
        return names;
    };
    EXPECT_EQ(seriesNames(after), seriesNames(before));
    EXPECT_NE(after, before);
    EXPECT_NE(after.find("korvane_batch_status{batch_id=\"9\",status=\"pending\"} 0\n"
                         "korvane_batch_status{batch_id=\"9\",status=\"working\"} 0\n"
                         "korvane_batch_status{batch_id=\"9\",status=\"paused\"} 1\n"),
        std::string::npos);
    EXPECT_NE(after.find("korvane_node_status{node_id=\"1\",status=\"ready\"} 1\n"), std::string::npos);
}

TEST(MetricsText, PausedBatchesAreUnfinished)
{
    FarmSnapshot farm = smallFarm();
    farm.batches[1].status = ControlClient::Paused;
    EXPECT_NE(written(farm).find("korvane_batch_info{batch_id=\"8\",project=\"/srv/done.kproj\","
                                 "task=\"BuildDenseCloud\"} 1\n"),
        std::string::npos);
    EXPECT_NE(
        written(farm).find("korvane_batch_status{batch_id=\"8\",status=\"paused\"} 1\n"), std::string::npos);
    for (const ControlClient::Status status : {ControlClient::Aborted, ControlClient::Ready}) {
        farm.batches[1].status = status;
        EXPECT_EQ(written(farm).find("batch_id=\"8\""), std::string::npos) << status;
    }
}

TEST(MetricsText, LabelValuesAreEscaped)
{
    FarmSnapshot farm;
    farm.up = true;
    farm.batches = {batch(3, "/srv/a \"quoted\" \\dir\\\nnext line/Brücke.kproj", ControlClient::Pending)};
    farm.nodes = {node(4, "knoten-\"süd\"", ControlClient::Ready)};
    const std::string text = written(farm);
    EXPECT_NE(text.find("korvane_batch_info{batch_id=\"3\","
                        "project=\"/srv/a \\\"quoted\\\" \\\\dir\\\\\\nnext line/Brücke.kproj\","
                        "task=\"BuildDenseCloud\"} 1\n"),
        std::string::npos)
        << text;
    EXPECT_NE(text.find("korvane_node_info{node_id=\"4\",host=\"knoten-\\\"süd\\\"\",version=\"1.5.0\"} 1\n"),
        std::string::npos);
    EXPECT_NE(text.find("korvane_nodes{status=\"ready\"} 1\n"), std::string::npos);
}

TEST(MetricsText, EmptyFarmHasEveryStatusAndEveryFamily)
{
    FarmSnapshot farm;
    farm.up = true;
    const std::string text = written(farm);
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
    EXPECT_EQ(written(farm), std::string(UpZero) + BuildInfoText);
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
