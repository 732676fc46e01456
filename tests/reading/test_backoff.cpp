#include <gtest/gtest.h>

#include "backoff.h"

using namespace std::chrono_literals;

TEST(Backoff, FirstAttemptIsAtOnce)
{
    Backoff backoff;
    EXPECT_TRUE(backoff.mayTry(Backoff::Clock::time_point {}));
    EXPECT_EQ(backoff.delay(), 0s);
}

TEST(Backoff, WaitsDoubleUpToSixteenSeconds)
{
    Backoff backoff;
    const Backoff::Clock::time_point start {100s};
    Backoff::Clock::time_point now = start;
    std::vector<long> delays;
    for (int attempt = 0; attempt < 7; ++attempt) {
        backoff.failed(now);
        delays.push_back(static_cast<long>(backoff.delay().count()));
        EXPECT_FALSE(backoff.mayTry(now + backoff.delay() - 1ms));
        now += backoff.delay();
        EXPECT_TRUE(backoff.mayTry(now));
    }
    EXPECT_EQ(delays, (std::vector<long> {1, 2, 4, 8, 16, 16, 16}));
}

TEST(Backoff, SuccessStartsOver)
{
    Backoff backoff;
    const Backoff::Clock::time_point now {50s};
    backoff.failed(now);
    backoff.failed(now);
    EXPECT_FALSE(backoff.mayTry(now));
    backoff.succeeded();
    EXPECT_TRUE(backoff.mayTry(now));
    EXPECT_EQ(backoff.delay(), 0s);
    backoff.failed(now);
    EXPECT_EQ(backoff.delay(), 1s);
}
