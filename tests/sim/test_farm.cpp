#include <set>
#include <string>

#include <json/reader.h>
#include <json/writer.h>

#include <gtest/gtest.h>

#include "farm.h"
#include "farmjson.h"

namespace {

FarmConfig quietFarm(int batches, int nodes)
{
    FarmConfig config;
    config.seed = 11;
    config.batches = batches;
    config.nodes = nodes;
    config.failuresPerNodeHour = 0.0;
    return config;
}

// Every node ready for work at once, whatever the seed made of it.
void wakeAllNodes(Farm& farm)
{
    for (const SimNode& node : farm.nodes())
        farm.resumeNode(node.id);
    farm.tick(1.5); // past the first idle gap
}

SimTask namedTask(const char* name)
{
    SimTask task;
    task.name = name;
    return task;
}

std::string dump(const Farm& farm)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, batchListToJson(farm.batches())) + "\n"
        + Json::writeString(builder, nodeListToJson(farm.nodes(), farm.batches()));
}

int nodesOn(const Farm& farm, std::uint32_t batchId)
{
    int count = 0;
    for (const SimNode& node : farm.nodes())
        count += node.batchId == batchId ? 1 : 0;
    return count;
}

} // namespace

TEST(SimFarm, TheSameSeedGivesTheSameFarmTickForTick)
{
    FarmConfig config;
    config.seed = 7;
    Farm first(config);
    Farm second(config);
    for (int i = 0; i < 200; ++i) {
        first.tick(0.5);
        second.tick(0.5);
    }
    EXPECT_EQ(dump(first), dump(second));

    config.seed = 8;
    Farm other(config);
    for (int i = 0; i < 200; ++i)
        other.tick(0.5);
    EXPECT_NE(dump(first), dump(other));
}

TEST(SimFarm, NodesAreNamedLikeRenderHostsWithPortAndVersion)
{
    Farm farm(quietFarm(0, 12));
    ASSERT_EQ(farm.nodes().size(), 12u);
    EXPECT_EQ(farm.nodes()[6].hostname, "render-07:5841");
    EXPECT_EQ(farm.nodes()[6].id, 7u);
    EXPECT_FALSE(farm.nodes()[6].version.empty());
    Farm large(quietFarm(0, 2000));
    EXPECT_EQ(large.nodes()[6].hostname, "render-0007:5841");
}

TEST(SimFarm, GeneratedBatchesHaveTwoToEightTasksWithParameters)
{
    FarmConfig config = quietFarm(200, 0);
    config.objectParamRate = 0.05;
    Farm farm(config);
    std::set<Json::ValueType> kinds;
    bool unknownName = false;
    for (const SimBatch& batch : farm.batches()) {
        EXPECT_GE(batch.tasks.size(), 2u);
        EXPECT_LE(batch.tasks.size(), 8u);
        for (const SimTask& task : batch.tasks) {
            unknownName = unknownName || task.name == "ComputeVolumes" || task.name == "FilterNoise"
                || task.name == "RepairTopology";
            for (const std::string& name : task.params.getMemberNames())
                kinds.insert(task.params[name].type());
        }
    }
    EXPECT_TRUE(unknownName);
    for (Json::ValueType kind : {Json::intValue, Json::uintValue, Json::realValue, Json::stringValue,
             Json::booleanValue, Json::arrayValue, Json::objectValue})
        EXPECT_EQ(kinds.count(kind), 1u) << "kind " << kind;
}

// Object-valued parameters are for the tests of a client's skipping; a
// demonstration farm has none unless asked.
int tasksWithAnObjectParameter(double rate)
{
    FarmConfig config = quietFarm(200, 0);
    config.objectParamRate = rate;
    Farm farm(config);
    int count = 0;
    for (const SimBatch& batch : farm.batches()) {
        for (const SimTask& task : batch.tasks) {
            for (const std::string& name : task.params.getMemberNames())
                count += task.params[name].isObject();
        }
    }
    return count;
}

TEST(SimFarm, ObjectParametersComeOnlyWhenAskedFor)
{
    EXPECT_EQ(tasksWithAnObjectParameter(FarmConfig().objectParamRate), 0);
    EXPECT_GT(tasksWithAnObjectParameter(0.05), 0);
    // every task that has parameters, at the highest rate
    FarmConfig config = quietFarm(200, 0);
    config.objectParamRate = 1.0;
    Farm farm(config);
    int withParams = 0;
    for (const SimBatch& batch : farm.batches()) {
        for (const SimTask& task : batch.tasks)
            withParams += task.params.isObject();
    }
    EXPECT_EQ(tasksWithAnObjectParameter(1.0), withParams);
}

TEST(SimFarm, TheObjectRateChangesNothingElseOfTheFarm)
{
    FarmConfig plain = quietFarm(50, 20);
    FarmConfig objects = plain;
    objects.objectParamRate = 1.0;
    Farm a(plain);
    Farm b(objects);
    ASSERT_EQ(a.batches().size(), b.batches().size());
    for (std::size_t i = 0; i < a.batches().size(); ++i) {
        ASSERT_EQ(a.batches()[i].tasks.size(), b.batches()[i].tasks.size());
        EXPECT_EQ(a.batches()[i].path, b.batches()[i].path);
        for (std::size_t t = 0; t < a.batches()[i].tasks.size(); ++t) {
            Json::Value params = b.batches()[i].tasks[t].params;
            if (params.isObject())
                params.removeMember("options");
            EXPECT_EQ(a.batches()[i].tasks[t].params, params);
            EXPECT_EQ(a.batches()[i].tasks[t].name, b.batches()[i].tasks[t].name);
        }
    }
    EXPECT_EQ(a.nodes()[19].hostname, b.nodes()[19].hostname);
}

TEST(SimFarm, EveryStatusOccurs)
{
    FarmConfig config;
    config.seed = 1;
    Farm farm(config);
    std::set<SimStatus> batchStatuses;
    std::set<SimStatus> nodeStatuses;
    for (int i = 0; i < 600; ++i) {
        farm.tick(1.0);
        for (const SimBatch& batch : farm.batches())
            batchStatuses.insert(batch.status);
        for (const SimNode& node : farm.nodes())
            nodeStatuses.insert(node.status());
    }
    EXPECT_EQ(batchStatuses,
        (std::set<SimStatus> {SimStatus::Pending, SimStatus::InProgress, SimStatus::Completed,
            SimStatus::Paused, SimStatus::Aborted}));
    EXPECT_EQ(nodeStatuses,
        (std::set<SimStatus> {SimStatus::Pending, SimStatus::InProgress, SimStatus::Paused,
            SimStatus::Aborted, SimStatus::Ready}));
}

TEST(SimFarm, HigherPriorityBatchGetsTheNodesFirst)
{
    Farm farm(quietFarm(0, 4));
    const std::uint32_t low = farm.createBatch("/p/low.kproj", {namedTask("BuildModel")});
    const std::uint32_t high = farm.createBatch("/p/high.kproj", {namedTask("BuildModel")});
    ASSERT_TRUE(farm.setBatchPriority(high, 2));
    wakeAllNodes(farm);
    EXPECT_EQ(nodesOn(farm, high), 4);
    EXPECT_EQ(nodesOn(farm, low), 0);
    EXPECT_EQ(farm.batch(high)->status, SimStatus::InProgress);
    EXPECT_EQ(farm.batch(low)->status, SimStatus::Pending);
}

TEST(SimFarm, AtTheSamePriorityTheOlderBatchComesFirst)
{
    Farm farm(quietFarm(0, 5));
    const std::uint32_t older = farm.createBatch("/p/older.kproj", {namedTask("BuildModel")});
    farm.tick(0.0);
    const std::uint32_t newer = farm.createBatch("/p/newer.kproj", {namedTask("BuildModel")});
    wakeAllNodes(farm);
    // four items each: the older batch takes four nodes, the newer the fifth
    EXPECT_EQ(nodesOn(farm, older), 4);
    EXPECT_EQ(nodesOn(farm, newer), 1);
}

TEST(SimFarm, HigherPriorityNodesAreServedFirst)
{
    Farm farm(quietFarm(0, 5));
    farm.createBatch("/p/one.kproj", {namedTask("BuildModel")}); // four items for five nodes
    for (std::uint32_t id = 1; id <= 3; ++id)
        ASSERT_TRUE(farm.setNodePriority(id, 0));
    ASSERT_TRUE(farm.setNodePriority(5, 2));
    ASSERT_TRUE(farm.setNodePriority(4, -1));
    wakeAllNodes(farm);
    EXPECT_TRUE(farm.node(5)->holdsItem());
    EXPECT_FALSE(farm.node(4)->holdsItem());
    EXPECT_EQ(farm.node(4)->status(), SimStatus::Ready);
}

TEST(SimFarm, PauseTakesEffectAtOnceAndFreesNodesAtTheNextTick)
{
    Farm farm(quietFarm(0, 4));
    const std::uint32_t id
        = farm.createBatch("/p/a.kproj", {namedTask("BuildModel"), namedTask("ExportModel")});
    wakeAllNodes(farm);
    ASSERT_EQ(nodesOn(farm, id), 4);

    ASSERT_TRUE(farm.pauseBatch(id));
    EXPECT_EQ(farm.batch(id)->status, SimStatus::Paused);
    EXPECT_EQ(farm.batch(id)->currentTask().status, SimStatus::Paused);
    EXPECT_EQ(nodesOn(farm, id), 4);
    farm.tick(0.1);
    EXPECT_EQ(nodesOn(farm, id), 0);
    EXPECT_EQ(farm.batch(id)->currentTask().nodesActive + farm.batch(id)->currentTask().nodesWaiting, 0);
    for (int i = 0; i < 20; ++i)
        farm.tick(1.0);
    EXPECT_EQ(nodesOn(farm, id), 0);

    // nothing was finished yet: it waits for nodes again like a new batch
    ASSERT_TRUE(farm.resumeBatch(id));
    EXPECT_EQ(farm.batch(id)->status, SimStatus::Pending);
    EXPECT_EQ(farm.batch(id)->currentTask().status, SimStatus::Pending);
    farm.tick(5.0);
    EXPECT_GT(nodesOn(farm, id), 0);
    EXPECT_EQ(farm.batch(id)->status, SimStatus::InProgress);
}

TEST(SimFarm, AbortedBatchKeepsItsPlaceAndGetsNoMoreWork)
{
    Farm farm(quietFarm(0, 4));
    const std::uint32_t id = farm.createBatch("/p/a.kproj", {namedTask("BuildModel")});
    wakeAllNodes(farm);
    ASSERT_TRUE(farm.abortBatch(id));
    EXPECT_EQ(farm.batch(id)->status, SimStatus::Aborted);
    EXPECT_EQ(farm.batch(id)->currentTask().status, SimStatus::Aborted);
    for (int i = 0; i < 10; ++i)
        farm.tick(1.0);
    EXPECT_EQ(nodesOn(farm, id), 0);
    EXPECT_EQ(farm.batches().size(), 1u);
    // pausing an aborted batch changes nothing
    EXPECT_TRUE(farm.pauseBatch(id));
    EXPECT_EQ(farm.batch(id)->status, SimStatus::Aborted);
}

TEST(SimFarm, StoppedNodeLetsGoOfItsItemAndWaitsForResume)
{
    Farm farm(quietFarm(0, 1));
    const std::uint32_t id = farm.createBatch("/p/a.kproj", {namedTask("BuildModel")});
    wakeAllNodes(farm);
    ASSERT_EQ(farm.node(1)->batchId, id);

    ASSERT_TRUE(farm.pauseNode(1));
    EXPECT_EQ(farm.node(1)->status(), SimStatus::Paused);
    farm.tick(0.1);
    EXPECT_EQ(farm.batch(id)->currentTask().nodesWaiting, 1);
    EXPECT_EQ(farm.batch(id)->currentTask().nodesActive, 0);

    ASSERT_TRUE(farm.abortNode(1));
    EXPECT_EQ(farm.node(1)->status(), SimStatus::Aborted);
    farm.tick(0.1);
    EXPECT_FALSE(farm.node(1)->holdsItem());
    EXPECT_EQ(farm.batch(id)->currentTask().itemsRunning, 0);
    for (int i = 0; i < 10; ++i)
        farm.tick(1.0);
    EXPECT_FALSE(farm.node(1)->holdsItem());

    ASSERT_TRUE(farm.resumeNode(1));
    EXPECT_EQ(farm.node(1)->status(), SimStatus::Ready);
    farm.tick(0.1);
    EXPECT_EQ(farm.node(1)->batchId, id);
}

TEST(SimFarm, CountersStayConsistentWhileTheFarmRuns)
{
    FarmConfig config;
    config.seed = 5;
    config.batches = 60;
    config.nodes = 40;
    config.failuresPerNodeHour = 60.0;
    Farm farm(config);
    std::uint64_t nodeErrors = 0;
    int batchFailures = 0;
    for (const SimNode& node : farm.nodes())
        nodeErrors += node.errorCount;
    for (const SimBatch& batch : farm.batches())
        for (const SimTask& task : batch.tasks)
            batchFailures += task.nodesFailed;
    const long long startDifference = static_cast<long long>(nodeErrors) - batchFailures;

    for (int round = 0; round < 300; ++round) {
        farm.tick(2.0);
        std::vector<int> active(farm.batches().size() + 1, 0);
        std::vector<int> waiting(farm.batches().size() + 1, 0);
        nodeErrors = 0;
        for (const SimNode& node : farm.nodes()) {
            nodeErrors += node.errorCount;
            if (!node.holdsItem())
                continue;
            ASSERT_GE(node.batchId, 1u);
            ASSERT_LE(node.batchId, farm.batches().size());
            ASSERT_EQ(node.taskIndex, farm.batch(node.batchId)->current);
            (node.paused || node.loading > 0.0 ? waiting : active)[node.batchId]++;
        }
        batchFailures = 0;
        for (const SimBatch& batch : farm.batches()) {
            const SimTask& task = batch.currentTask();
            ASSERT_EQ(task.nodesActive, active[batch.id]) << "batch " << batch.id;
            ASSERT_EQ(task.nodesWaiting, waiting[batch.id]) << "batch " << batch.id;
            ASSERT_LE(task.itemsDone, task.itemsTotal);
            ASSERT_GE(task.progress, 0.0);
            ASSERT_LE(task.progress, 100.0);
            ASSERT_GE(task.timeLeft, 0.0);
            if (batch.status == SimStatus::Completed) {
                for (const SimTask& done : batch.tasks)
                    ASSERT_EQ(done.status, SimStatus::Completed);
                ASSERT_EQ(batch.current, batch.tasks.size() - 1);
            }
            for (const SimTask& each : batch.tasks)
                batchFailures += each.nodesFailed;
        }
        ASSERT_EQ(static_cast<long long>(nodeErrors) - batchFailures, startDifference);
    }
}

TEST(SimFarm, AFailingNodeRecordsTheErrorOnItselfAndItsBatch)
{
    FarmConfig config = quietFarm(0, 1);
    Farm farm(config);
    const std::uint32_t id = farm.createBatch("/p/a.kproj", {namedTask("BuildModel")});
    wakeAllNodes(farm);
    ASSERT_EQ(farm.node(1)->batchId, id);

    // the same farm, but with failures certain within a tick
    config.failuresPerNodeHour = 1e9;
    Farm failing(config);
    const std::uint32_t failingId = failing.createBatch("/p/a.kproj", {namedTask("BuildModel")});
    wakeAllNodes(failing);
    ASSERT_EQ(failing.node(1)->batchId, failingId);
    const std::uint32_t before = failing.node(1)->errorCount;
    failing.tick(1.0);
    const SimNode& node = *failing.node(1);
    EXPECT_EQ(node.errorCount, before + 1);
    EXPECT_EQ(node.lastError.otherId, failingId);
    EXPECT_EQ(node.lastError.time, failing.nowSeconds());
    EXPECT_FALSE(node.lastError.message.empty());
    EXPECT_EQ(node.status(), SimStatus::Pending); // restarting
    const SimBatch& batch = *failing.batch(failingId);
    EXPECT_EQ(batch.lastError.otherId, 1u);
    EXPECT_EQ(batch.lastError.message, node.lastError.message);
    EXPECT_EQ(batch.currentTask().nodesFailed, 1);
}

TEST(SimFarm, BatchesRunToCompletionAndStayListed)
{
    Farm farm(quietFarm(0, 4));
    const std::uint32_t id
        = farm.createBatch("/p/a.kproj", {namedTask("BuildModel"), namedTask("ExportModel")});
    wakeAllNodes(farm);
    for (int i = 0; i < 2000 && farm.batch(id)->status != SimStatus::Completed; ++i)
        farm.tick(1.0);
    const SimBatch& batch = *farm.batch(id);
    EXPECT_EQ(batch.status, SimStatus::Completed);
    EXPECT_EQ(batch.current, 1u);
    EXPECT_EQ(batch.currentTask().itemsDone, batch.currentTask().itemsTotal);
    EXPECT_DOUBLE_EQ(batch.currentTask().progress, 100.0);
    EXPECT_GT(batch.tasks[0].timeElapsed, 0.0);
    EXPECT_EQ(farm.batches().size(), 1u);
    for (const SimNode& node : farm.nodes())
        EXPECT_EQ(node.status(), SimStatus::Ready);
}

TEST(SimFarm, CreatedBatchesAreSizedByChunksAndFramesAndFoundByPath)
{
    Farm farm(quietFarm(3, 0));
    SimTask task = namedTask("BuildDenseCloud");
    Json::Reader().parse("[0,1,2]", task.chunks);
    Json::Reader().parse("[[0,1],[0,2]]", task.frames);
    const std::uint32_t first = farm.createBatch("/p/same.kproj", {task});
    EXPECT_EQ(first, 4u);
    EXPECT_EQ(farm.batch(first)->tasks[0].itemsTotal, 4 * 3 * 2);
    EXPECT_EQ(farm.batch(first)->status, SimStatus::Pending);
    EXPECT_EQ(farm.batch(first)->timeStarted, farm.nowSeconds());
    const std::uint32_t second = farm.createBatch("/p/same.kproj", {namedTask("ExportModel")});
    EXPECT_EQ(second, 5u);
    EXPECT_EQ(farm.findBatch("/p/same.kproj"), second);
    EXPECT_EQ(farm.findBatch("/p/other.kproj"), SimNoId);
}

TEST(SimFarm, UnknownIdsAreRefused)
{
    Farm farm(quietFarm(2, 2));
    EXPECT_FALSE(farm.pauseBatch(0));
    EXPECT_FALSE(farm.resumeBatch(3));
    EXPECT_FALSE(farm.abortBatch(SimNoId));
    EXPECT_FALSE(farm.setBatchPriority(3, 1));
    EXPECT_FALSE(farm.pauseNode(3));
    EXPECT_FALSE(farm.resumeNode(0));
    EXPECT_FALSE(farm.abortNode(3));
    EXPECT_FALSE(farm.setNodePriority(3, 1));
    EXPECT_TRUE(farm.pauseBatch(2));
}

TEST(SimFarm, TenThousandBatchesAndTwoThousandNodesRun)
{
    FarmConfig config;
    config.batches = 10000;
    config.nodes = 2000;
    Farm farm(config);
    for (int i = 0; i < 20; ++i)
        farm.tick(1.0);
    EXPECT_EQ(farm.batches().size(), 10000u);
    int working = 0;
    for (const SimNode& node : farm.nodes())
        working += node.status() == SimStatus::InProgress ? 1 : 0;
    EXPECT_GT(working, 1000);
    EXPECT_EQ(batchListToJson(farm.batches()).size(), 10000u);
}
