#include <gtest/gtest.h>

#include "eventring.h"

namespace {

EventFrame frame(std::uint64_t seq)
{
    return makeEventFrame("delta", seq, Json::Value(Json::UInt64(seq)));
}

std::string joined(const std::optional<std::vector<EventFrame>>& frames)
{
    if (!frames)
        return "snapshot";
    std::string text;
    for (const EventFrame& one : *frames)
        text += *one;
    return text;
}

} // namespace

TEST(EventFrame, OneEventWithItsNameIdAndOneLineOfData)
{
    Json::Value data;
    data["seq"] = 42;
    data["text"] = "line one\nline two";
    EXPECT_EQ(*makeEventFrame("farm", 42, data),
        "event: farm\nid: 42\ndata: {\"seq\":42,\"text\":\"line one\\nline two\"}\n\n");
    EXPECT_EQ(*heartbeatFrame(), ":\n\n");
}

class EventRingTest : public ::testing::TestWithParam<std::tuple<std::uint64_t, std::string>>
{
};

// A ring of three holding events 11, 12 and 13 (10 has left it).
TEST_P(EventRingTest, ResumesWithWhatWasMissedOrASnapshot)
{
    EventRing ring(3);
    for (std::uint64_t seq = 10; seq <= 13; ++seq)
        ring.push(seq, frame(seq));
    const auto [lastEventId, expected] = GetParam();
    EXPECT_EQ(joined(ring.after(lastEventId)), expected);
}

INSTANTIATE_TEST_SUITE_P(LastEventId, EventRingTest,
    ::testing::Values(std::make_tuple(13u, ""), // up to date
        std::make_tuple(12u, "event: delta\nid: 13\ndata: 13\n\n"),
        std::make_tuple(10u,
            "event: delta\nid: 11\ndata: 11\n\nevent: delta\nid: 12\ndata: 12\n\n"
            "event: delta\nid: 13\ndata: 13\n\n"),
        std::make_tuple(9u, "snapshot"), // 10 is gone
        std::make_tuple(0u, "snapshot"), std::make_tuple(14u, "snapshot"), // not this run's
        std::make_tuple(UINT64_MAX, "snapshot")));

TEST(EventRing, EmptyRingAlwaysNeedsASnapshot)
{
    EventRing ring(3);
    EXPECT_FALSE(ring.after(0).has_value());
}
