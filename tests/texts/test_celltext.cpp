#include <QDateTime>

#include <gtest/gtest.h>

#include "celltext.h"
#include "taskdisplaynames.h"
#include "testenvironment.h"

namespace {

std::uint32_t localTime(const QDate& date, const QTime& time)
{
    return std::uint32_t(QDateTime(date, time).toSecsSinceEpoch());
}

ControlClient::BatchInfo workingBatch()
{
    ControlClient::BatchInfo batch;
    batch.batchId = 12;
    batch.path = "/projects/city/scan.kproj";
    batch.status = ControlClient::InProgress;
    batch.priority = 1;
    batch.timeStarted = localTime(QDate(2024, 2, 1), QTime(14, 3, 9));
    batch.task.name = "BuildModel";
    batch.task.status = ControlClient::InProgress;
    batch.task.progress = 42.5;
    batch.task.timeElapsed = 760;
    batch.task.timeLeft = 3780;
    batch.task.nodesActive = 3;
    batch.task.nodesWaiting = 2;
    batch.task.nodesFailed = 4;
    return batch;
}

class CellTextTest : public ::testing::Test
{
protected:
    void SetUp() override { initTaskDisplayNames(); }
};

} // namespace

TEST(FormatDuration, HoursMinutesSecondsEachTwoDigits)
{
    EXPECT_EQ(formatDuration(59), QStringLiteral("00:00:59"));
    EXPECT_EQ(formatDuration(3725.9), QStringLiteral("01:02:05"));
    EXPECT_EQ(formatDuration(3599.99), QStringLiteral("00:59:59"));
    EXPECT_EQ(formatDuration(0), QStringLiteral("00:00:00"));
}

TEST(FormatDuration, HoursAreNeitherCappedNorWrapped)
{
    EXPECT_EQ(formatDuration(360000), QStringLiteral("100:00:00"));
    EXPECT_EQ(formatDuration(123 * 3600 + 9), QStringLiteral("123:00:09"));
}

TEST(FormatDuration, NegativeDurationsKeepTheSignInEachField)
{
    EXPECT_EQ(formatDuration(-61), QStringLiteral("00:-1:-1"));
    EXPECT_EQ(formatDuration(-3725), QStringLiteral("-1:-2:-5"));
    EXPECT_EQ(formatDuration(-0.5), QStringLiteral("00:00:00"));
}

TEST(FormatDuration, ValuesBeyondThirtyTwoBitsArePinned)
{
    EXPECT_EQ(formatDuration(1e12), QStringLiteral("596523:14:07"));
    EXPECT_EQ(formatDuration(-1e12), QStringLiteral("-596523:-14:-8"));
}

TEST(StatusWords, BatchTreeShowsNothingForReadyOrUnknown)
{
    EXPECT_EQ(batchStatusWord(0), QStringLiteral("Pending"));
    EXPECT_EQ(batchStatusWord(1), QStringLiteral("Working"));
    EXPECT_EQ(batchStatusWord(2), QStringLiteral("Completed"));
    EXPECT_EQ(batchStatusWord(3), QStringLiteral("Paused"));
    EXPECT_EQ(batchStatusWord(4), QStringLiteral("Aborted"));
    EXPECT_EQ(batchStatusWord(5), QString());
    EXPECT_EQ(batchStatusWord(6), QString());
    EXPECT_EQ(batchStatusWord(-1), QString());
}

TEST(StatusWords, NodeTreeShowsReady)
{
    EXPECT_EQ(nodeStatusWord(1), QStringLiteral("Working"));
    EXPECT_EQ(nodeStatusWord(5), QStringLiteral("Ready"));
    EXPECT_EQ(nodeStatusWord(6), QString());
}

TEST(PriorityWords, FiveLevelsAndOtherValuesAsNumbers)
{
    EXPECT_EQ(priorityWord(2), QStringLiteral("Highest"));
    EXPECT_EQ(priorityWord(1), QStringLiteral("High"));
    EXPECT_EQ(priorityWord(0), QStringLiteral("Normal"));
    EXPECT_EQ(priorityWord(-1), QStringLiteral("Low"));
    EXPECT_EQ(priorityWord(-2), QStringLiteral("Lowest"));
    EXPECT_EQ(priorityWord(5), QStringLiteral("5"));
    EXPECT_EQ(priorityWord(-3), QStringLiteral("-3"));
}

TEST(ErrorStamp, TodayShowsOnlyTheTime)
{
    const QDate today = QDate::currentDate();
    EXPECT_EQ(errorStamp(localTime(today, QTime(14, 3, 9)), today), QStringLiteral("[14:03:09]"));
}

TEST(ErrorStamp, AnyOtherDayShowsTheFullDate)
{
    const QDate today(2024, 2, 2);
    EXPECT_EQ(errorStamp(localTime(QDate(2024, 2, 1), QTime(14, 3, 9)), today),
        QStringLiteral("[01.02.2024 14:03:09]"));
    EXPECT_EQ(errorStamp(localTime(QDate(2024, 2, 3), QTime(0, 0, 1)), today),
        QStringLiteral("[03.02.2024 00:00:01]"));
}

TEST(ErrorStamp, TheSameErrorChangesFormAfterMidnight)
{
    const std::uint32_t time = localTime(QDate(2024, 2, 1), QTime(23, 59, 59));
    EXPECT_EQ(errorStamp(time, QDate(2024, 2, 1)), QStringLiteral("[23:59:59]"));
    EXPECT_EQ(errorStamp(time, QDate(2024, 2, 2)), QStringLiteral("[01.02.2024 23:59:59]"));
}

TEST_F(CellTextTest, WorkingBatchRowReadsInFull)
{
    const BatchCells cells = batchCells(workingBatch());
    EXPECT_EQ(cells[BatchColumnId], QStringLiteral("12"));
    EXPECT_EQ(cells[BatchColumnProject], QStringLiteral("scan.kproj"));
    EXPECT_EQ(cells[BatchColumnStarted], QStringLiteral("2024-02-01 14:03:09"));
    EXPECT_EQ(cells[BatchColumnStatus], QStringLiteral("Working"));
    EXPECT_EQ(cells[BatchColumnPriority], QStringLiteral("High"));
    EXPECT_EQ(cells[BatchColumnTask], QStringLiteral("Build Mesh (42.5%)"));
    EXPECT_EQ(cells[BatchColumnTimes], QStringLiteral("00:12:40 / 01:03:00"));
    EXPECT_EQ(cells[BatchColumnFailures], QStringLiteral("4"));
    EXPECT_EQ(cells[BatchColumnNodes], QStringLiteral("3/5"));
}

TEST_F(CellTextTest, PathWithoutSlashShowsWholeAndTrailingSlashShowsNothing)
{
    EXPECT_EQ(projectName("scan.kproj"), QStringLiteral("scan.kproj"));
    EXPECT_EQ(projectName("/projects/city/"), QString());
    EXPECT_EQ(projectName("C:\\projects\\scan.kproj"), QStringLiteral("C:\\projects\\scan.kproj"));
    EXPECT_EQ(projectName("/projects/Größe.kproj"), QStringLiteral("Größe.kproj"));
}

TEST_F(CellTextTest, TaskWithoutNameShowsEmptyTaskAndWaiting)
{
    ControlClient::BatchInfo batch;
    const BatchCells cells = batchCells(batch);
    EXPECT_EQ(cells[BatchColumnTask], QString());
    EXPECT_EQ(cells[BatchColumnTimes], QStringLiteral("Waiting..."));
    EXPECT_EQ(cells[BatchColumnStatus], QStringLiteral("Pending"));
    EXPECT_EQ(cells[BatchColumnNodes], QStringLiteral("0/0"));
}

TEST_F(CellTextTest, PausedOrCompletedTaskShowsOnlyElapsed)
{
    ControlClient::BatchInfo batch = workingBatch();
    batch.task.status = ControlClient::Paused;
    EXPECT_EQ(batchCells(batch)[BatchColumnTimes], QStringLiteral("00:12:40"));
    batch.task.status = ControlClient::Completed;
    EXPECT_EQ(batchCells(batch)[BatchColumnTimes], QStringLiteral("00:12:40"));
}

TEST_F(CellTextTest, WorkingTaskWithNoTimeLeftShowsOnlyElapsed)
{
    ControlClient::BatchInfo batch = workingBatch();
    batch.task.timeLeft = 0.0;
    EXPECT_EQ(batchCells(batch)[BatchColumnTimes], QStringLiteral("00:12:40"));
    batch.task.timeLeft = -5.0;
    EXPECT_EQ(batchCells(batch)[BatchColumnTimes], QStringLiteral("00:12:40"));
}

TEST_F(CellTextTest, PriorityFiveShowsFiveAndReadyShowsNothingInTheBatchTree)
{
    ControlClient::BatchInfo batch = workingBatch();
    batch.priority = 5;
    batch.status = ControlClient::Ready;
    const BatchCells cells = batchCells(batch);
    EXPECT_EQ(cells[BatchColumnPriority], QStringLiteral("5"));
    EXPECT_EQ(cells[BatchColumnStatus], QString());
}

TEST_F(CellTextTest, UnknownTaskShowsItsMethodName)
{
    ControlClient::BatchInfo batch = workingBatch();
    batch.task.name = "buildmodel";
    batch.task.progress = 7;
    EXPECT_EQ(batchCells(batch)[BatchColumnTask], QStringLiteral("buildmodel (7.0%)"));
}

TEST_F(CellTextTest, StartTimeZeroShowsTheEpochInLocalTime)
{
    ControlClient::BatchInfo batch;
    EXPECT_EQ(batchCells(batch)[BatchColumnStarted],
        QDateTime::fromSecsSinceEpoch(0).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
}

TEST(NodeCells, HostLosesItsPortAndGainsItsVersion)
{
    ControlClient::NodeInfo node;
    node.hostname = "10.0.0.5:5841";
    node.version = "1.4.2";
    EXPECT_EQ(nodeCells(node, QDate::currentDate())[NodeColumnHost], QStringLiteral("10.0.0.5 (1.4.2)"));
    node.version.clear();
    EXPECT_EQ(nodeCells(node, QDate::currentDate())[NodeColumnHost], QStringLiteral("10.0.0.5"));
}

TEST(NodeCells, IPv6HostLosesItsLastGroup)
{
    ControlClient::NodeInfo node;
    node.hostname = "fe80::1:2";
    EXPECT_EQ(nodeCells(node, QDate::currentDate())[NodeColumnHost], QStringLiteral("fe80::1"));
}

TEST(NodeCells, NodeWithoutBatchShowsNoBatchAndNoProgress)
{
    ControlClient::NodeInfo node;
    node.batchId = ControlClient::NoId;
    node.progress = 57;
    const NodeCells cells = nodeCells(node, QDate::currentDate());
    EXPECT_EQ(cells[NodeColumnBatch], QString());
    EXPECT_EQ(cells[NodeColumnProgress], QString());
}

TEST(NodeCells, WorkingNodeRowReadsInFull)
{
    const QDate today = QDate::currentDate();
    ControlClient::NodeInfo node;
    node.nodeId = 3;
    node.hostname = "render-3:5841";
    node.version = "1.4.2";
    node.status = ControlClient::Ready;
    node.priority = -2;
    node.batchId = 12;
    node.progress = 57;
    node.errorCount = 4294967295u;
    node.lastError.time = localTime(today, QTime(14, 2, 33));
    node.lastError.batchId = 12;
    node.lastError.message = "out of memory";
    const NodeCells cells = nodeCells(node, today);
    EXPECT_EQ(cells[NodeColumnId], QStringLiteral("3"));
    EXPECT_EQ(cells[NodeColumnHost], QStringLiteral("render-3 (1.4.2)"));
    EXPECT_EQ(cells[NodeColumnStatus], QStringLiteral("Ready"));
    EXPECT_EQ(cells[NodeColumnPriority], QStringLiteral("Lowest"));
    EXPECT_EQ(cells[NodeColumnBatch], QStringLiteral("12"));
    EXPECT_EQ(cells[NodeColumnProgress], QStringLiteral("57.0%"));
    EXPECT_EQ(cells[NodeColumnFailures], QStringLiteral("4294967295"));
    EXPECT_EQ(cells[NodeColumnLastError], QStringLiteral("[14:02:33] #12: out of memory"));
}

TEST(NodeCells, ErrorFromYesterdayShowsTheFullDate)
{
    const QDate today = QDate::currentDate();
    ControlClient::NodeInfo node;
    node.lastError.time = localTime(today.addDays(-1), QTime(14, 2, 33));
    node.lastError.batchId = 12;
    node.lastError.message = "disk full";
    EXPECT_EQ(nodeCells(node, today)[NodeColumnLastError],
        today.addDays(-1).toString(QStringLiteral("[dd.MM.yyyy"))
            + QStringLiteral(" 14:02:33] #12: disk full"));
}

TEST(NodeCells, ErrorWithoutBatchShowsTheLargestId)
{
    const QDate today = QDate::currentDate();
    ControlClient::NodeInfo node;
    node.lastError.time = localTime(today, QTime(9, 0, 0));
    node.lastError.message = "lost";
    EXPECT_EQ(nodeCells(node, today)[NodeColumnLastError], QStringLiteral("[09:00:00] #4294967295: lost"));
}

TEST(NodeCells, NoErrorTimeMeansAnEmptyCell)
{
    ControlClient::NodeInfo node;
    node.lastError.message = "ignored without a time";
    EXPECT_EQ(nodeCells(node, QDate::currentDate())[NodeColumnLastError], QString());
}

TEST(TaskLines, HeaderCountsItemsNodesAndFailures)
{
    ControlClient::TaskInfo task;
    task.name = "AlignCameras";
    task.itemsDone = 12;
    task.itemsTotal = 40;
    task.nodesActive = 3;
    task.nodesWaiting = 1;
    task.nodesFailed = 2;
    EXPECT_EQ(taskHeader(QStringLiteral("Align Photos"), task),
        QStringLiteral("Align Photos (12/40 completed, 3/4 nodes active, 2 failures)"));
    task.nodesFailed = 0;
    EXPECT_EQ(
        taskHeader(QString(), task), QStringLiteral("AlignCameras (12/40 completed, 3/4 nodes active)"));
}

TEST(TaskLines, FooterByStatus)
{
    ControlClient::TaskInfo task;
    task.timeElapsed = 725;
    task.timeLeft = 5400;
    task.status = ControlClient::Pending;
    EXPECT_EQ(taskFooter(task), QStringLiteral("Waiting..."));
    task.status = ControlClient::InProgress;
    EXPECT_EQ(taskFooter(task), QStringLiteral("00:12:05 elapsed, 01:30:00 left"));
    task.status = ControlClient::Completed;
    EXPECT_EQ(taskFooter(task), QStringLiteral("00:12:05 elapsed"));
    task.status = ControlClient::InProgress;
    task.timeLeft = 0;
    EXPECT_EQ(taskFooter(task), QStringLiteral("00:12:05 elapsed"));
}

TEST(TaskLines, BarValueIsTruncatedAndShownOnlyWhileWorking)
{
    ControlClient::TaskInfo task;
    task.progress = 99.9;
    EXPECT_EQ(taskProgressValue(task), 99);
    EXPECT_FALSE(taskShowsBar(task));
    task.status = ControlClient::InProgress;
    EXPECT_TRUE(taskShowsBar(task));
}

namespace {

// Time stamps around the year, around daylight-saving changes and at the
// ends of the 32-bit range.
std::vector<std::uint32_t> sampleTimes()
{
    std::vector<std::uint32_t> times = {0, 1, 59, 86399, 86400, 951782400, 1711846799, 1711846800, 1711850400,
        1729990799, 1729990800, 1729994400, 2147483647u, 4294967295u};
    std::uint32_t t = 12345;
    for (int i = 0; i < 2000; ++i) {
        t = t * 1664525u + 1013904223u;
        times.push_back(t);
    }
    return times;
}

void expectSameAsQDateTime()
{
    for (std::uint32_t time : sampleTimes()) {
        const QDateTime local = QDateTime::fromSecsSinceEpoch(time);
        ASSERT_EQ(startedText(time), local.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))) << time;
        ASSERT_EQ(errorStamp(time, local.date()), local.toString(QStringLiteral("[hh:mm:ss]"))) << time;
        ASSERT_EQ(errorStamp(time, local.date().addDays(1)),
            local.toString(QStringLiteral("[dd.MM.yyyy hh:mm:ss]")))
            << time;
    }
}

} // namespace

TEST(TimeTexts, MatchQDateTimeInLocalTime)
{
    expectSameAsQDateTime();
}

TEST(TimeTexts, MatchQDateTimeAcrossDaylightSavingChanges)
{
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "Europe/Berlin");
    tzset();
    expectSameAsQDateTime();
    EXPECT_EQ(startedText(1711846800), QStringLiteral("2024-03-31 03:00:00"));
    if (zone.isNull())
        qunsetenv("TZ");
    else
        qputenv("TZ", zone);
    tzset();
}
