#include <algorithm>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "controlclient.h"
#include "runningsim.h"

// The protocol client against the real simulator, all thirteen methods.
namespace {

class SimConformance : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_sim.listening());
        ASSERT_TRUE(m_client.connect("127.0.0.1", m_sim.port()));
    }

    ControlClient::BatchInfo batch(std::uint32_t id)
    {
        ControlClient::BatchList batches;
        EXPECT_TRUE(m_client.listBatches(batches));
        auto it
            = std::find_if(batches.begin(), batches.end(), [id](const auto& b) { return b.batchId == id; });
        return it == batches.end() ? ControlClient::BatchInfo() : *it;
    }
    ControlClient::NodeInfo node(std::uint32_t id)
    {
        ControlClient::NodeList nodes;
        EXPECT_TRUE(m_client.listNodes(nodes));
        return id >= 1 && id <= nodes.size() ? nodes[id - 1] : ControlClient::NodeInfo();
    }

    RunningSim m_sim;
    ConsoleCapture m_console;
    ControlClient m_client;
};

} // namespace

TEST_F(SimConformance, ListBatchesGivesEveryBatchWithItsCurrentTask)
{
    ControlClient::BatchList batches;
    ASSERT_TRUE(m_client.listBatches(batches));
    ASSERT_EQ(batches.size(), 30u);
    EXPECT_EQ(batches[0].batchId, 1u);
    EXPECT_EQ(batches[0].status, ControlClient::Completed);
    EXPECT_EQ(batches[1].status, ControlClient::Aborted);
    EXPECT_EQ(batches[2].status, ControlClient::Paused);
    EXPECT_EQ(batches[0].task.status, ControlClient::Completed);
    EXPECT_DOUBLE_EQ(batches[0].task.progress, 100.0);
    EXPECT_EQ(batches[0].task.itemsDone, batches[0].task.itemsTotal);
    EXPECT_NE(batches[0].path.find(".kproj"), std::string::npos);
    EXPECT_GT(batches[0].timeStarted, 0u);
    EXPECT_LT(batches[0].timeStarted, batches[29].timeStarted);
}

TEST_F(SimConformance, ListNodesGivesEveryNode)
{
    ControlClient::NodeList nodes;
    ASSERT_TRUE(m_client.listNodes(nodes));
    ASSERT_EQ(nodes.size(), 12u);
    EXPECT_EQ(nodes[0].hostname, "render-01:5841");
    EXPECT_EQ(nodes[0].nodeId, 1u);
    EXPECT_EQ(nodes[11].status, ControlClient::Paused);
    EXPECT_EQ(nodes[10].status, ControlClient::Aborted);
    EXPECT_EQ(nodes[9].status, ControlClient::Pending);
    EXPECT_EQ(nodes[0].batchId, ControlClient::NoId); // frozen clock: nobody has work yet
}

TEST_F(SimConformance, GetBatchStatusGivesAllTasksAndTheLastError)
{
    ControlClient::BatchStatus status;
    ASSERT_TRUE(m_client.getBatchStatus(2, status));
    EXPECT_EQ(status.status, ControlClient::Aborted);
    EXPECT_GE(status.tasks.size(), 2u);
    EXPECT_NE(status.lastError.time, 0u);
    EXPECT_NE(status.lastError.nodeId, ControlClient::NoId);
    EXPECT_FALSE(status.lastError.message.empty());
    EXPECT_FALSE(m_client.getBatchStatus(31, status));
    EXPECT_TRUE(m_client.isConnected());
}

TEST_F(SimConformance, BatchCommandsShowInTheNextPoll)
{
    ASSERT_TRUE(m_client.pauseBatch(5));
    EXPECT_EQ(batch(5).status, ControlClient::Paused);
    ASSERT_TRUE(m_client.resumeBatch(5));
    EXPECT_EQ(batch(5).status, ControlClient::Pending);
    ASSERT_TRUE(m_client.abortBatch(5));
    EXPECT_EQ(batch(5).status, ControlClient::Aborted);
    ASSERT_TRUE(m_client.setBatchPriority(5, -2));
    EXPECT_EQ(batch(5).priority, -2);
    EXPECT_FALSE(m_client.pauseBatch(99));
    EXPECT_FALSE(m_client.resumeBatch(99));
    EXPECT_FALSE(m_client.abortBatch(99));
    EXPECT_FALSE(m_client.setBatchPriority(99, 1));
}

TEST_F(SimConformance, NodeCommandsShowInTheNextPoll)
{
    ASSERT_TRUE(m_client.pauseNode(3));
    EXPECT_EQ(node(3).status, ControlClient::Paused);
    ASSERT_TRUE(m_client.abortNode(3));
    EXPECT_EQ(node(3).status, ControlClient::Aborted);
    ASSERT_TRUE(m_client.resumeNode(3));
    EXPECT_EQ(node(3).status, ControlClient::Ready);
    ASSERT_TRUE(m_client.setNodePriority(3, 2));
    EXPECT_EQ(node(3).priority, 2);
    EXPECT_FALSE(m_client.pauseNode(13));
    EXPECT_FALSE(m_client.resumeNode(13));
    EXPECT_FALSE(m_client.abortNode(13));
    EXPECT_FALSE(m_client.setNodePriority(13, 0));
}

TEST_F(SimConformance, CreateBatchQueuesANewBatchThatFindBatchFinds)
{
    ControlClient::TaskRequest align;
    align.name = "AlignCameras";
    align.params["quality"] = ParamValue(std::int32_t(2));
    align.params["accuracy"] = ParamValue(0.5);
    align.params["format"] = ParamValue(std::string("tif"));
    align.chunks = {0, 1};
    align.frames[0] = {1, 2};
    ControlClient::TaskRequest build;
    build.name = "BuildModel";

    const std::uint32_t id = m_client.createBatch("/p/new.kproj", {align, build});
    EXPECT_EQ(id, 31u);
    EXPECT_EQ(m_client.findBatch("/p/new.kproj"), 31u);
    EXPECT_EQ(m_client.findBatch("/p/none.kproj"), ControlClient::NoId);

    ControlClient::BatchStatus status;
    ASSERT_TRUE(m_client.getBatchStatus(id, status));
    EXPECT_EQ(status.path, "/p/new.kproj");
    EXPECT_EQ(status.status, ControlClient::Pending);
    ASSERT_EQ(status.tasks.size(), 2u);
    EXPECT_EQ(status.tasks[0].name, "AlignCameras");
    EXPECT_EQ(status.tasks[0].itemsTotal, 4 * 2 * 2);
    EXPECT_EQ(status.tasks[0].params.at("quality").toInt32(), 2);
    EXPECT_EQ(status.tasks[0].params.at("format").toString(), "tif");
    EXPECT_TRUE(status.tasks[1].params.empty());
    EXPECT_EQ(status.lastError.time, 0u);
    EXPECT_EQ(m_client.createBatch("/p/empty.kproj", {}), ControlClient::NoId);
}
