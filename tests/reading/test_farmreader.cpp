#include <chrono>
#include <sstream>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "farmreader.h"
#include "loopback.h"
#include "runningsim.h"
#include "scriptedserver.h"

using namespace std::chrono_literals;

namespace {

const std::string GoodBatches = R"({"id":0,"result":[{"batch_id":3,"path":"/p","status":"paused"}]})";
const std::string GoodNodes = R"({"id":1,"result":[{"node_id":1,"hostname":"h","status":"inprogress"}]})";

class FarmReaderTest : public ::testing::Test
{
protected:
    std::string address() const { return "127.0.0.1:" + std::to_string(m_server.port()); }

    ScriptedServer m_server;
    ConsoleCapture m_console;
    std::ostringstream m_log;
    FarmSnapshot m_farm;
};

} // namespace

TEST_F(FarmReaderTest, OneReadingIsOneLineOfEachListOnOneConnection)
{
    m_server.acceptConnection().answerByMethod(
        {{"listBatches", GoodBatches}, {"listNodes", GoodNodes}}, "{}");
    m_server.start();
    {
        FarmReader reader(address(), m_log, "korvane-exporter");
        const auto budget = 5s;
        reader.read(m_farm, std::chrono::steady_clock::now() + budget);
        EXPECT_TRUE(m_farm.up);
        ASSERT_EQ(m_farm.batches.size(), 1u);
        EXPECT_EQ(m_farm.batches[0].batchId, 3u);
        EXPECT_EQ(m_farm.batches[0].status, ControlClient::Paused);
        ASSERT_EQ(m_farm.nodes.size(), 1u);
        EXPECT_EQ(m_farm.nodes[0].hostname, "h");
        reader.read(m_farm, std::chrono::steady_clock::now() + budget);
        EXPECT_TRUE(m_farm.up);
    }
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        "{\"id\":0,\"method\":\"listBatches\"}\n{\"id\":1,\"method\":\"listNodes\"}\n"
        "{\"id\":2,\"method\":\"listBatches\"}\n{\"id\":3,\"method\":\"listNodes\"}\n");
    EXPECT_EQ(taken(m_log), "korvane-exporter: reading " + address() + "\n");
}

TEST_F(FarmReaderTest, AMemberOfTheWrongTypeIsNamedAndTheNextReadingWorks)
{
    m_server.acceptConnection()
        .reply(GoodBatches)
        .reply(R"({"result":[{"node_id":1},{"node_id":2,"error_count":"many"}]})")
        .reply(R"({"result":[{"batch_id":4,"task":{"time_left":"soon"}}]})")
        .reply(GoodBatches)
        .reply(GoodNodes);
    m_server.start();
    FarmReader reader(address(), m_log, "korvane-exporter");
    const auto budget = 5s;

    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    EXPECT_FALSE(m_farm.up);
    EXPECT_EQ(taken(m_log),
        "korvane-exporter: listNodes reply: result[1].error_count has the wrong type (Value is not "
        "convertible "
        "to UInt.)\n");

    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    EXPECT_FALSE(m_farm.up);
    EXPECT_EQ(taken(m_log),
        "korvane-exporter: listBatches reply: result[0].task.time_left has the wrong type (Value is not "
        "convertible to double.)\n");

    // The same connection goes on.
    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    EXPECT_TRUE(m_farm.up);
    EXPECT_EQ(taken(m_log), "korvane-exporter: reading " + address() + "\n");
    EXPECT_EQ(m_console.text(), "connected to " + address() + "\n");
}

TEST_F(FarmReaderTest, AReplyWithoutResultFailsButKeepsTheConnection)
{
    m_server.acceptConnection().reply(R"({"error":"busy"})").reply(GoodBatches).reply(GoodNodes);
    m_server.start();
    FarmReader reader(address(), m_log, "korvane-exporter");
    const auto budget = 5s;
    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    EXPECT_FALSE(m_farm.up);
    EXPECT_EQ(taken(m_log), "korvane-exporter: " + address() + " answered listBatches without a result\n");
    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    EXPECT_TRUE(m_farm.up);
}

TEST_F(FarmReaderTest, ALostConnectionIsMadeAgainAtTheNextReading)
{
    m_server.acceptConnection()
        .reply(GoodBatches)
        .waitForLine()
        .closeConnection()
        .acceptConnection()
        .reply(GoodBatches)
        .reply(GoodNodes);
    m_server.start();
    FarmReader reader(address(), m_log, "korvane-exporter");
    const auto budget = 5s;
    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    EXPECT_FALSE(m_farm.up);
    EXPECT_EQ(taken(m_log), "korvane-exporter: connection to " + address() + " lost during listNodes\n");
    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    EXPECT_TRUE(m_farm.up);
    EXPECT_EQ(taken(m_log), "korvane-exporter: reading " + address() + "\n");
    EXPECT_EQ(m_console.text(),
        "connected to " + address() + "\ndisconnected from server\nconnected to " + address() + "\n");
}

TEST(FarmReader, ConnectionAttemptsBackOffWhileTheServerStaysAway)
{
    ConsoleCapture console;
    std::ostringstream log;
    const std::string address = "127.0.0.1:" + std::to_string(freeLoopbackPort());
    FarmReader reader(address, log, "korvane-exporter");
    const auto budget = 5s;
    FarmSnapshot farm;
    const auto start = Backoff::Clock::now();

    reader.read(farm, std::chrono::steady_clock::now() + budget, start);
    EXPECT_FALSE(farm.up);
    EXPECT_EQ(taken(log), "korvane-exporter: cannot connect to " + address + "; next attempt in 1 s\n");

    // Within the wait: no attempt, nothing new in the log.
    reader.read(farm, std::chrono::steady_clock::now() + budget, start + 500ms);
    EXPECT_FALSE(farm.up);
    EXPECT_EQ(taken(log), "");
    // The client library names the port twice when it comes with the host.
    EXPECT_EQ(console.text(), "can't connect to " + address + ":" + address.substr(10) + "\n");

    reader.read(farm, std::chrono::steady_clock::now() + budget, start + 1s);
    EXPECT_EQ(taken(log), "korvane-exporter: cannot connect to " + address + "; next attempt in 2 s\n");
    reader.read(farm, std::chrono::steady_clock::now() + budget, start + 2s);
    EXPECT_EQ(taken(log), "");
    reader.read(farm, std::chrono::steady_clock::now() + budget, start + 3s);
    EXPECT_EQ(taken(log), "korvane-exporter: cannot connect to " + address + "; next attempt in 4 s\n");
}

TEST(FarmReader, TheServerComingBackIsReadAfterTheWait)
{
    ConsoleCapture console;
    std::ostringstream log;
    const std::uint16_t port = freeLoopbackPort();
    const std::string address = "127.0.0.1:" + std::to_string(port);
    FarmReader reader(address, log, "korvane-exporter");
    const auto budget = 5s;
    FarmSnapshot farm;
    const auto start = Backoff::Clock::now();
    reader.read(farm, std::chrono::steady_clock::now() + budget, start);
    EXPECT_FALSE(farm.up);

    RunningSim sim(FarmConfig(), RunningSim::frozen(), port);
    ASSERT_TRUE(sim.listening());
    reader.read(farm, std::chrono::steady_clock::now() + budget, start + 999ms);
    EXPECT_FALSE(farm.up);
    reader.read(farm, std::chrono::steady_clock::now() + budget, start + 1s);
    EXPECT_TRUE(farm.up);
    EXPECT_EQ(farm.nodes.size(), 12u);
    EXPECT_EQ(farm.batches.size(), 30u);
    EXPECT_EQ(taken(log),
        "korvane-exporter: cannot connect to " + address
            + "; next attempt in 1 s\n"
              "korvane-exporter: reading "
            + address + "\n");
}

TEST_F(FarmReaderTest, AServerThatGoesQuietIsNamedAfterTheDeadline)
{
    m_server.acceptConnection().waitForLine();
    m_server.start();
    FarmReader reader(address(), m_log, "korvane-exporter");
    const auto budget = 1s;
    const auto start = std::chrono::steady_clock::now();
    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_FALSE(m_farm.up);
    EXPECT_GE(waited, 900ms);
    EXPECT_LT(waited, 10s);
    EXPECT_EQ(
        taken(m_log), "korvane-exporter: no reply from " + address() + " to listBatches within 1.0 s\n");
}

TEST_F(FarmReaderTest, InterruptCutsAWaitingRequestShort)
{
    m_server.acceptConnection().waitForLine();
    m_server.start();
    FarmReader reader(address(), m_log, "korvane-exporter");
    const auto budget = 60s;
    const auto start = std::chrono::steady_clock::now();
    std::thread interrupter([&] {
        std::this_thread::sleep_for(300ms);
        reader.interrupt();
    });
    reader.read(m_farm, std::chrono::steady_clock::now() + budget);
    interrupter.join();
    EXPECT_FALSE(m_farm.up);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
    // Stopping is no failure of the server's: no line.
    EXPECT_EQ(taken(m_log), "");
}
