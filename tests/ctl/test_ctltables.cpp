#include <QDate>

#include <gtest/gtest.h>

#include "tables.h"
#include "taskdisplaynames.h"

// Times are shown in local time: these tests run with TZ=UTC.
namespace {

class CtlTables : public ::testing::Test
{
protected:
    void SetUp() override { initTaskDisplayNames(); }
};

ControlClient::BatchInfo runningBatch()
{
    ControlClient::BatchInfo batch;
    batch.batchId = 12;
    batch.path = "/srv/projects/dam-001/dam.kproj";
    batch.status = ControlClient::InProgress;
    batch.priority = 1;
    batch.timeStarted = 1700000000; // 2023-11-14 22:13:20 UTC
    batch.task.name = "BuildModel";
    batch.task.status = ControlClient::InProgress;
    batch.task.progress = 42.5;
    batch.task.timeElapsed = 760.0;
    batch.task.timeLeft = 3780.0;
    batch.task.nodesActive = 3;
    batch.task.nodesWaiting = 2;
    batch.task.nodesFailed = 4;
    return batch;
}

} // namespace

TEST_F(CtlTables, BatchTableUsesTheMonitorsColumnsAndCellTexts)
{
    ControlClient::BatchInfo waiting;
    waiting.batchId = 3;
    waiting.path = "noslash";
    waiting.priority = 5;
    waiting.timeStarted = 0;
    waiting.task.name = "computeVolumes";
    const std::string table = batchTable({runningBatch(), waiting});
    EXPECT_EQ(table,
        "#   Project    Started              Status   Priority  Current Task           Elapsed / Left       "
        "Failures  Nodes\n"
        "12  dam.kproj  2023-11-14 22:13:20  Working  High      Build Mesh (42.5%)     00:12:40 / 01:03:00  "
        "4         3/5\n"
        "3   noslash    1970-01-01 00:00:00  Pending  5         computeVolumes (0.0%)  Waiting...           "
        "0         0/0\n");
}

TEST_F(CtlTables, NodeTableUsesTheMonitorsColumnsAndCellTexts)
{
    ControlClient::NodeInfo working;
    working.nodeId = 7;
    working.hostname = "render-07:5841";
    working.version = "1.4.2";
    working.status = ControlClient::InProgress;
    working.priority = -2;
    working.batchId = 12;
    working.progress = 57.0;
    working.errorCount = 2;
    working.lastError = {1700000000, ControlClient::NoId, "out of memory"};
    ControlClient::NodeInfo idle;
    idle.nodeId = 8;
    idle.hostname = "10.0.0.5";
    idle.status = ControlClient::Ready;
    idle.progress = 12.0; // not shown without a batch
    idle.lastError = {1700000000 + 86400, 12, "disk full"}; // the next day

    EXPECT_EQ(nodeTable({working, idle}, QDate(2023, 11, 14)),
        "#  Host               Status   Priority  Batch #  Progress  Failures  Last Error\n"
        "7  render-07 (1.4.2)  Working  Lowest    12       57.0%     2         [22:13:20] #4294967295: out "
        "of memory\n"
        "8  10.0.0.5           Ready    Normal                       0         [15.11.2023 22:13:20] #12: "
        "disk full\n");
}

TEST_F(CtlTables, AnEmptyListPrintsOnlyTheHeader)
{
    EXPECT_EQ(batchTable({}),
        "#  Project  Started  Status  Priority  Current Task  Elapsed / Left  Failures  Nodes\n");
    EXPECT_EQ(nodeTable({}, QDate(2023, 11, 14)),
        "#  Host  Status  Priority  Batch #  Progress  Failures  Last Error\n");
}

TEST_F(CtlTables, StatusPrintsPathTaskLinesAndLastError)
{
    ControlClient::BatchStatus status;
    status.path = "/srv/projects/dam-001/dam.kproj";
    ControlClient::TaskInfo align;
    align.name = "AlignCameras";
    align.status = ControlClient::Completed;
    align.timeElapsed = 725.0;
    align.itemsDone = 40;
    align.itemsTotal = 40;
    ControlClient::TaskInfo build = runningBatch().task;
    build.itemsDone = 12;
    build.itemsTotal = 40;
    build.nodesActive = 3;
    build.nodesWaiting = 1;
    build.nodesFailed = 2;
    build.timeElapsed = 725.0;
    build.timeLeft = 5400.0;
    ControlClient::TaskInfo later;
    later.name = "FilterNoise";
    status.tasks = {align, build, later};
    status.lastError = {1700000000, 4, "lost connection to storage"};

    EXPECT_EQ(statusText(status, QDate(2023, 11, 14)),
        "Project: /srv/projects/dam-001/dam.kproj\n"
        "Align Photos (40/40 completed, 0/0 nodes active)\n"
        "    00:12:05 elapsed\n"
        "Build Mesh (12/40 completed, 3/4 nodes active, 2 failures)\n"
        "    00:12:05 elapsed, 01:30:00 left\n"
        "FilterNoise (0/0 completed, 0/0 nodes active)\n"
        "    Waiting...\n"
        "Last error: [22:13:20] lost connection to storage\n");

    status.lastError.time = 0;
    status.tasks.clear();
    EXPECT_EQ(statusText(status, QDate(2023, 11, 15)), "Project: /srv/projects/dam-001/dam.kproj\n");
}

TEST_F(CtlTables, ColumnsAlignByCharactersNotBytes)
{
    EXPECT_EQ(formatTable({QStringLiteral("A"), QStringLiteral("B")},
                  {{QStringLiteral("Über"), QStringLiteral("x")}, {QStringLiteral("ab"), QString()}}),
        "A     B\n"
        "Über  x\n"
        "ab\n");
}
