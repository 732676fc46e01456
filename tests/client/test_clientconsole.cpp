#include <sstream>
#include <string>

#include <json/value.h>

#include <gtest/gtest.h>

#include "clientconsole.h"
#include "consolecapture.h"
#include "controlclient.h"
#include "paramjson.h"
#include "scriptedserver.h"

namespace {

// Every test starts and ends with the client writing to standard output.
class ClientConsoleTest : public ::testing::Test
{
protected:
    void TearDown() override { ClientConsole::redirect(nullptr, nullptr); }

    // Connects, sends one request that gets a line that is not JSON and then
    // its answer, and disconnects.
    void talkToServer()
    {
        ScriptedServer server;
        server.acceptConnection().waitForLine().write("not json\n{\"id\":0,\"result\":true}\n");
        server.start();
        ControlClient client;
        ASSERT_TRUE(client.connect("127.0.0.1", server.port()));
        EXPECT_TRUE(client.pauseNode(1));
        client.disconnect();
        EXPECT_TRUE(server.finish());
        m_port = std::to_string(server.port());
    }

    void failALookup()
    {
        ControlClient client;
        EXPECT_FALSE(client.connect("no-such-host.invalid", 5840));
        EXPECT_EQ(client.failure(), ControlClient::Failure::CannotResolve);
    }

    std::string expectedLines() const
    {
        return "connected to 127.0.0.1:" + m_port + "\n"
            + "* Line 1, Column 1\n  Syntax error: value, object or array expected.\n: not json\n"
            + "disconnected from server\n";
    }

    ConsoleCapture m_console;
    std::string m_port;
};

} // namespace

TEST_F(ClientConsoleTest, StandardOutputByDefault)
{
    talkToServer();
    EXPECT_EQ(m_console.text(), expectedLines());
    failALookup();
    EXPECT_FALSE(m_console.wideText().empty());
}

TEST_F(ClientConsoleTest, RedirectedLinesReachTheGivenStreamsOnly)
{
    std::ostringstream narrow;
    std::wostringstream wide;
    ClientConsole::redirect(&narrow, &wide);
    talkToServer();
    failALookup();
    Json::Value params(Json::objectValue);
    params["region"]["x"] = 1;
    EXPECT_TRUE(paramsFromJson(params).empty());

    EXPECT_EQ(narrow.str(), expectedLines() + "skipping json param region\n");
    EXPECT_FALSE(wide.str().empty());
    EXPECT_EQ(m_console.text(), "");
    EXPECT_EQ(m_console.wideText(), L"");
}

TEST_F(ClientConsoleTest, DiscardKeepsNothing)
{
    ClientConsole::discard();
    talkToServer();
    failALookup();
    EXPECT_EQ(m_console.text(), "");
    EXPECT_EQ(m_console.wideText(), L"");
    EXPECT_EQ(&ClientConsole::narrow(), &ClientConsole::narrow());
    EXPECT_NE(&ClientConsole::narrow(), &std::cout);
    EXPECT_TRUE(ClientConsole::narrow().good());
}

TEST_F(ClientConsoleTest, NullPutsBackStandardOutput)
{
    ClientConsole::discard();
    ClientConsole::redirect(nullptr, nullptr);
    EXPECT_EQ(&ClientConsole::narrow(), &std::cout);
    EXPECT_EQ(&ClientConsole::wide(), &std::wcout);
    talkToServer();
    EXPECT_EQ(m_console.text(), expectedLines());
}
