#include <gtest/gtest.h>

#include "eventframe.h"
#include "farmrows.h"
#include "rowdelta.h"

namespace {

ControlClient::BatchInfo batch(std::uint32_t id, ControlClient::Status status, int priority = 0)
{
    ControlClient::BatchInfo info;
    info.batchId = id;
    info.path = "/farm/castle" + std::to_string(id) + ".kproj";
    info.status = status;
    info.priority = priority;
    info.timeStarted = 1732450000;
    info.task.name = "AlignCameras";
    info.task.progress = 10.0;
    return info;
}

std::string deltaText(const ControlClient::BatchList& before, const ControlClient::BatchList& after)
{
    return compactJson(batchDelta(batchRows(before), batchRows(after)));
}

} // namespace

TEST(RowDelta, SameRowsGiveAnEmptyDelta)
{
    const ControlClient::BatchList list
        = {batch(1, ControlClient::InProgress), batch(2, ControlClient::Paused)};
    const Json::Value delta = batchDelta(batchRows(list), batchRows(list));
    EXPECT_TRUE(deltaIsEmpty(delta));
    EXPECT_EQ(compactJson(delta), R"({"added":[],"changed":[],"removed":[]})");
}

TEST(RowDelta, AddedRemovedAndChangedRowsInIdOrder)
{
    ControlClient::BatchInfo moved = batch(2, ControlClient::Paused, -1);
    moved.task.progress = 55.5;
    const std::string text
        = deltaText({batch(1, ControlClient::InProgress), batch(2, ControlClient::InProgress),
                        batch(4, ControlClient::Pending)},
            {batch(2, ControlClient::InProgress), batch(3, ControlClient::Pending), moved});
    // batch 2 appears twice in the new list: the last one counts.
    EXPECT_EQ(text,
        R"({"added":[{"batch_id":3,"path":"/farm/castle3.kproj","priority":0,"status":"pending",)"
        R"("task":{"items_done":0,"items_total":0,"name":"AlignCameras","nodes_active":0,"nodes_failed":0,)"
        R"("nodes_waiting":0,"params":null,"progress":10.0,"status":"pending","time_elapsed":0.0,)"
        R"("time_left":0.0},"time_started":1732450000}],)"
        R"("changed":[{"batch_id":2,"priority":-1,"status":"paused","task":{"items_done":0,"items_total":0,)"
        R"("name":"AlignCameras","nodes_active":0,"nodes_failed":0,"nodes_waiting":0,"params":null,)"
        R"("progress":55.5,"status":"pending","time_elapsed":0.0,"time_left":0.0}}],)"
        R"("removed":[1,4]})");
}

TEST(RowDelta, EmptyListsOnEitherSide)
{
    EXPECT_EQ(deltaText({}, {}), R"({"added":[],"changed":[],"removed":[]})");
    EXPECT_EQ(
        deltaText({batch(7, ControlClient::Aborted)}, {}), R"({"added":[],"changed":[],"removed":[7]})");
    EXPECT_EQ(
        compactJson(batchDelta({}, batchRows({batch(7, ControlClient::Aborted)}))["added"][0]["status"]),
        R"("aborted")");
}

TEST(RowDelta, NodeWithoutABatchHasTheSameMembersAsOneWithABatch)
{
    ControlClient::NodeInfo idle;
    idle.nodeId = 5;
    idle.hostname = "render05";
    idle.status = ControlClient::Ready;
    ControlClient::NodeInfo busy = idle;
    busy.batchId = 9;
    busy.progress = 12.5;
    busy.taskName = "BuildDenseCloud";
    busy.status = ControlClient::InProgress;

    const NodeRows idleRows = nodeRows({idle});
    EXPECT_EQ(compactJson(nodeRow(idleRows.at(0))),
        R"({"batch_id":null,"error_count":0,"hostname":"render05","last_error":null,"node_id":5,)"
        R"("priority":0,"progress":null,"status":"ready","task":null,"version":""})");
    EXPECT_EQ(compactJson(nodeDelta(idleRows, nodeRows({busy}))),
        R"({"added":[],"changed":[{"batch_id":9,"node_id":5,"progress":12.5,"status":"inprogress",)"
        R"("task":{"name":"BuildDenseCloud","params":null}}],"removed":[]})");
    EXPECT_EQ(compactJson(nodeDelta(nodeRows({busy}), idleRows)),
        R"({"added":[],"changed":[{"batch_id":null,"node_id":5,"progress":null,"status":"ready","task":null}],)"
        R"("removed":[]})");
}

TEST(RowDelta, ANodeThatGainsABatchSendsItsBatchMembersEvenWhenTheyAreZero)
{
    ControlClient::NodeInfo idle;
    idle.nodeId = 6;
    idle.status = ControlClient::Ready;
    ControlClient::NodeInfo starting = idle;
    starting.batchId = 2;
    // progress 0.0 and an empty task name: the same values as the idle node's
    // record, but the idle node's row has them as null.
    EXPECT_EQ(compactJson(nodeDelta(nodeRows({idle}), nodeRows({starting}))),
        R"({"added":[],"changed":[{"batch_id":2,"node_id":6,"progress":0.0,"task":{"name":"","params":null}}],)"
        R"("removed":[]})");
    EXPECT_EQ(compactJson(nodeDelta(nodeRows({starting}), nodeRows({idle}))),
        R"({"added":[],"changed":[{"batch_id":null,"node_id":6,"progress":null,"task":null}],"removed":[]})");
}

TEST(RowDelta, OfTwoRecordsWithOneIdTheServersLastCounts)
{
    ControlClient::BatchInfo first = batch(3, ControlClient::Paused);
    ControlClient::BatchInfo second = batch(3, ControlClient::Aborted);
    const BatchRows rows = batchRows({batch(5, ControlClient::Pending), first, second});
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].batchId, 3u);
    EXPECT_EQ(rows[0].status, ControlClient::Aborted);
    EXPECT_TRUE(hasBatch(rows, 5));
    EXPECT_FALSE(hasBatch(rows, 4));
}

TEST(RowDelta, TaskParametersAreCompared)
{
    ControlClient::BatchInfo before = batch(1, ControlClient::InProgress);
    before.task.params["quality"] = ParamValue(std::int32_t {1});
    ControlClient::BatchInfo after = before;
    after.task.params["quality"] = ParamValue(std::int32_t {2});
    EXPECT_EQ(batchDelta(batchRows({before}), batchRows({after}))["changed"][0]["task"]["params"]["quality"]
                  .asInt(),
        2);
    EXPECT_TRUE(deltaIsEmpty(batchDelta(batchRows({before}), batchRows({before}))));
}
