#include <chrono>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "exporter.h"
#include "scriptedserver.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

const char* const Up0 = "\nkorvane_up 0\n";
const char* const Up1 = "\nkorvane_up 1\n";

bool says(const std::shared_ptr<const MetricsPage>& page, const char* text)
{
    return page && ("\n" + page->text()).find(text) != std::string::npos;
}

class ExporterDeadline : public ::testing::Test
{
protected:
    Exporter::Settings settings(int serverTimeoutSeconds = 5) const
    {
        Exporter::Settings out;
        out.server = "127.0.0.1:" + std::to_string(m_server.port());
        out.serverTimeoutSeconds = serverTimeoutSeconds;
        return out;
    }

    ScriptedServer m_server;
    ConsoleCapture m_console;
    std::ostringstream m_log;
};

} // namespace

TEST_F(ExporterDeadline, TheScrapersTimeOutLessTheMarginBoundsTheReading)
{
    m_server.acceptConnection().waitForLine().waitForClose();
    m_server.start();
    Exporter exporter(settings(), m_log);
    const auto start = Clock::now();
    const auto page = exporter.page(2000ms);
    const auto took = Clock::now() - start;
    EXPECT_TRUE(says(page, Up0));
    // 2 s less the margin, plus the time for writing the page.
    EXPECT_GE(took, 1500ms);
    EXPECT_LT(took, 2000ms);
    exporter.stop();
    EXPECT_EQ(m_log.str(),
        "korvane-exporter: no reply from 127.0.0.1:" + std::to_string(m_server.port())
            + " to listBatches within 1.5 s\n");
}

TEST_F(ExporterDeadline, WithoutTheHeaderTheServerTimeOutBoundsTheReading)
{
    m_server.acceptConnection().waitForLine().waitForClose();
    m_server.start();
    Exporter exporter(settings(1), m_log);
    const auto start = Clock::now();
    EXPECT_TRUE(says(exporter.page(), Up0));
    EXPECT_GE(Clock::now() - start, 1000ms);
    EXPECT_LT(Clock::now() - start, 1500ms);
}

TEST_F(ExporterDeadline, TheServerTimeOutCapsALongerScrapeTimeOut)
{
    m_server.acceptConnection().waitForLine().waitForClose();
    m_server.start();
    Exporter exporter(settings(1), m_log);
    const auto start = Clock::now();
    EXPECT_TRUE(says(exporter.page(30000ms), Up0));
    EXPECT_LT(Clock::now() - start, 1500ms);
}

TEST_F(ExporterDeadline, AShorterScrapeJoiningAReadingGetsItsOwnDownPageAndReadingsDoNotStack)
{
    // The first reply comes after 1.5 s; the first scrape waits up to 4.5 s
    // for it, the second one only 0.5 s.
    m_server.acceptConnection()
        .waitForLine()
        .pause(1500)
        .write(R"({"result":[]})"
               "\n")
        .reply(R"({"result":[]})");
    m_server.start();
    Exporter exporter(settings(), m_log);
    std::shared_ptr<const MetricsPage> first;
    std::thread patient([&] { first = exporter.page(5000ms); });
    std::this_thread::sleep_for(200ms);
    const auto start = Clock::now();
    EXPECT_TRUE(says(exporter.page(1000ms), Up0));
    EXPECT_LT(Clock::now() - start, 1000ms);
    patient.join();
    EXPECT_TRUE(says(first, Up1));
    // One reading for both: the server saw one listBatches.
    EXPECT_EQ(exporter.readings(), 1u);
    EXPECT_TRUE(m_server.finish());
}

TEST_F(ExporterDeadline, StopEndsAReadingAtOnce)
{
    m_server.acceptConnection().waitForLine().waitForClose();
    m_server.start();
    Exporter exporter(settings(60), m_log);
    std::shared_ptr<const MetricsPage> page = std::make_shared<const MetricsPage>("", "", Clock::now());
    std::thread scraper([&] { page = exporter.page(); });
    std::this_thread::sleep_for(300ms);
    const auto start = Clock::now();
    exporter.stop();
    scraper.join();
    EXPECT_LT(Clock::now() - start, 1s);
    EXPECT_EQ(page, nullptr);
    EXPECT_EQ(m_log.str(), "");
}
