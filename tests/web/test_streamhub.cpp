#include <gtest/gtest.h>

#include "streamhub.h"

namespace {

FarmState stateAt(std::uint64_t seq, std::size_t batchCount = 0)
{
    FarmState state;
    state.seq = seq;
    state.farm = {true, 1732450000, {}, 0};
    BatchRows batches(batchCount);
    for (std::uint32_t id = 1; id <= batchCount; ++id)
        batches[id - 1].batchId = id;
    state.batches = std::make_shared<const BatchRows>(std::move(batches));
    return state;
}

EventFrame delta(std::uint64_t seq, std::size_t size = 10)
{
    return makeEventFrame("delta", seq, Json::Value(std::string(size, 'x')));
}

std::string taken(StreamHub& hub, StreamHub::StreamId id)
{
    std::vector<EventFrame> frames;
    if (!hub.take(id, frames))
        return "closed";
    std::string text;
    for (const EventFrame& frame : frames)
        text += *frame;
    return text;
}

const std::string Snapshot100
    = "event: snapshot\nid: 100\ndata: "
      R"({"batches":[],"farm":{"since":1732450000,"state":"connected"},"nodes":[],"seq":100})"
      "\n\n";

} // namespace

TEST(StreamHub, NewStreamStartsWithASnapshotThenDeltas)
{
    StreamHub hub({}, stateAt(100));
    int wakes = 0;
    const auto id = hub.open(std::nullopt, std::nullopt, [&] { ++wakes; });
    ASSERT_TRUE(id);
    EXPECT_EQ(taken(hub, *id), Snapshot100);
    EXPECT_EQ(taken(hub, *id), "");
    hub.publish(stateAt(101), delta(101, 3));
    hub.publish(stateAt(102), delta(102, 3));
    EXPECT_EQ(wakes, 2);
    EXPECT_EQ(
        taken(hub, *id), "event: delta\nid: 101\ndata: \"xxx\"\n\nevent: delta\nid: 102\ndata: \"xxx\"\n\n");
    EXPECT_EQ(hub.counters().events, 3u);
    EXPECT_EQ(hub.counters().bytes, Snapshot100.size() + 2 * delta(101, 3)->size());
}

TEST(StreamHub, ResumeInsideTheRingGetsOnlyTheMissedDeltas)
{
    StreamHub::Limits limits;
    limits.ringEvents = 2;
    StreamHub hub(limits, stateAt(100));
    for (std::uint64_t seq = 101; seq <= 103; ++seq)
        hub.publish(stateAt(seq), delta(seq, 1));
    const auto inside = hub.open(102, std::nullopt, [] {});
    EXPECT_EQ(taken(hub, *inside), "event: delta\nid: 103\ndata: \"x\"\n\n");
    const auto current = hub.open(103, std::nullopt, [] {});
    EXPECT_EQ(taken(hub, *current), "");
    // 101 has left the ring of two.
    const auto outside = hub.open(100, std::nullopt, [] {});
    EXPECT_EQ(taken(hub, *outside).rfind("event: snapshot\nid: 103\n", 0), 0u);
}

TEST(StreamHub, SlowStreamLosesItsQueueAndGetsOneSnapshotTheOthersAreUntouched)
{
    StreamHub::Limits limits;
    limits.maxQueuedBytes = 100;
    StreamHub hub(limits, stateAt(100));
    const auto slow = hub.open(100, std::nullopt, [] {});
    const auto fast = hub.open(100, std::nullopt, [] {});
    for (std::uint64_t seq = 101; seq <= 110; ++seq) {
        hub.publish(stateAt(seq), delta(seq, 20)); // 51 bytes each
        EXPECT_EQ(taken(hub, *fast), *delta(seq, 20));
        // The slow one takes nothing: its queue is dropped at the second delta
        // and counted then, even if its writer never takes again.
        EXPECT_EQ(hub.counters().resyncs, seq < 102 ? 0u : 1u) << seq;
    }
    const std::string resync = taken(hub, *slow);
    EXPECT_EQ(resync.rfind("event: snapshot\nid: 110\n", 0), 0u) << resync;
    EXPECT_EQ(resync.find("event: delta"), std::string::npos);
    EXPECT_EQ(hub.counters().resyncs, 1u);
    hub.publish(stateAt(111), delta(111, 20));
    EXPECT_EQ(taken(hub, *slow), *delta(111, 20));
}

TEST(StreamHub, FollowedBatchEventsGoOnlyToTheirStreams)
{
    StreamHub hub({}, stateAt(100, 3));
    const auto follower = hub.open(100, 2u, [] {});
    const auto other = hub.open(100, std::nullopt, [] {});
    EXPECT_EQ(hub.followedBatches(), std::set<std::uint32_t>({2}));
    const EventFrame status = makeEventFrame("batch", 100, Json::Value("two"));
    hub.publishBatch(2, status);
    EXPECT_EQ(taken(hub, *follower), *status);
    EXPECT_EQ(taken(hub, *other), "");
    // A stream that starts following gets the last status at once.
    const auto late = hub.open(100, 2u, [] {});
    EXPECT_EQ(taken(hub, *late), *status);
    hub.close(*follower);
    hub.close(*late);
    EXPECT_TRUE(hub.followedBatches().empty());
    // Gone from the farm: its status is not kept.
    hub.publish(stateAt(101, 1), delta(101));
    const auto after = hub.open(101, 2u, [] {});
    EXPECT_EQ(taken(hub, *after), "");
}

TEST(StreamHub, StreamsBeyondTheLimitAreRefused)
{
    StreamHub::Limits limits;
    limits.maxStreams = 2;
    StreamHub hub(limits, stateAt(100));
    const auto one = hub.open(std::nullopt, std::nullopt, [] {});
    EXPECT_TRUE(hub.open(std::nullopt, std::nullopt, [] {}));
    EXPECT_FALSE(hub.open(std::nullopt, std::nullopt, [] {}));
    EXPECT_EQ(hub.counters().refused, 1u);
    hub.close(*one);
    EXPECT_TRUE(hub.open(std::nullopt, std::nullopt, [] {}));
    EXPECT_EQ(hub.streamCount(), 2u);
}

TEST(StreamHub, ShutDownWakesAndEndsEveryStream)
{
    StreamHub hub({}, stateAt(100));
    int wakes = 0;
    const auto id = hub.open(std::nullopt, std::nullopt, [&] { ++wakes; });
    hub.shutDown();
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(taken(hub, *id), "closed");
    EXPECT_FALSE(hub.open(std::nullopt, std::nullopt, [] {}));
}

TEST(StreamHub, TheSnapshotIsTheStateAsOneDocumentAndTheFirstEventsData)
{
    StreamHub hub({}, stateAt(100, 2));
    const std::string first = hub.snapshotJson();
    EXPECT_EQ(first,
        R"({"batches":[{"batch_id":1,"path":"","priority":0,"status":"pending","task":{"items_done":0,)"
        R"("items_total":0,"name":"","nodes_active":0,"nodes_failed":0,"nodes_waiting":0,"params":null,)"
        R"("progress":0.0,"status":"pending","time_elapsed":0.0,"time_left":0.0},"time_started":0},)"
        R"({"batch_id":2,"path":"","priority":0,"status":"pending","task":{"items_done":0,"items_total":0,)"
        R"("name":"","nodes_active":0,"nodes_failed":0,"nodes_waiting":0,"params":null,"progress":0.0,)"
        R"("status":"pending","time_elapsed":0.0,"time_left":0.0},"time_started":0}],)"
        R"("farm":{"since":1732450000,"state":"connected"},"nodes":[],"seq":100})");
    const auto id = hub.open(std::nullopt, std::nullopt, [] {});
    EXPECT_EQ(taken(hub, *id), "event: snapshot\nid: 100\ndata: " + first + "\n\n");

    FarmState lost = stateAt(101);
    lost.farm = {false, 1732450100, "cannot connect to 127.0.0.1:5840; next attempt in 1 s", 1732450101};
    hub.publish(lost, delta(101));
    EXPECT_EQ(hub.snapshotJson(),
        R"({"batches":[],"farm":{"next_try":1732450101,"reason":"cannot connect to 127.0.0.1:5840; next attempt )"
        R"(in 1 s","since":1732450100,"state":"disconnected"},"nodes":[],"seq":101})");
}
