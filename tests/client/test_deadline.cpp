#include <chrono>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "controlclient.h"
#include "loopback.h"
#include "scriptedserver.h"

using namespace std::chrono_literals;
using Failure = ControlClient::Failure;

namespace {

// A loopback listener whose queue is full: the system drops further SYNs,
// so a connect to it hangs as one to a silent host does.
class FullListener final
{
public:
    FullListener()
    {
        m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), length) != 0
            || ::listen(m_listener, 0) != 0
            || ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
            return;
        m_port = ntohs(address.sin_port);
        for (int i = 0; i < 3; ++i) {
            const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
            (void)::connect(fd, reinterpret_cast<sockaddr*>(&address), length);
            m_fillers.push_back(fd);
        }
        std::this_thread::sleep_for(100ms);
    }
    ~FullListener()
    {
        for (int fd : m_fillers)
            ::close(fd);
        ::close(m_listener);
    }
    FullListener(const FullListener&) = delete;
    FullListener& operator=(const FullListener&) = delete;

    int port() const { return m_port; }

private:
    int m_listener = -1;
    int m_port = 0;
    std::vector<int> m_fillers;
};

int intOption(int socket, int level, int name)
{
    int value = -1;
    socklen_t length = sizeof value;
    ::getsockopt(socket, level, name, &value, &length);
    return value;
}

class ControlClientDeadline : public ::testing::Test
{
protected:
    void connectClient()
    {
        m_server.start();
        ASSERT_TRUE(m_client.connect("127.0.0.1", m_server.port()));
    }
    void limit(std::chrono::milliseconds time) { m_client.setDeadline(SteadyClock::now() + time); }
    SteadyClock::duration elapsed() const { return SteadyClock::now() - m_start; }

    ScriptedServer m_server;
    ConsoleCapture m_console;
    ControlClient m_client;
    const SteadyClock::time_point m_start = SteadyClock::now();
};

} // namespace

TEST_F(ControlClientDeadline, EveryConnectionAsksTheSystemToNoticeADeadLink)
{
    m_server.acceptConnection();
    connectClient();
    const int socket = m_client.socketDescriptor();
    EXPECT_EQ(intOption(socket, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(intOption(socket, IPPROTO_TCP, TCP_KEEPIDLE), 60);
    EXPECT_EQ(intOption(socket, IPPROTO_TCP, TCP_KEEPINTVL), 10);
    EXPECT_EQ(intOption(socket, IPPROTO_TCP, TCP_KEEPCNT), 3);
    EXPECT_EQ(intOption(socket, IPPROTO_TCP, TCP_USER_TIMEOUT), 30000);
}

TEST_F(ControlClientDeadline, ASilentServerIsNoReplyAtTheDeadline)
{
    m_server.acceptConnection().waitForLine().waitForClose();
    connectClient();
    limit(400ms);
    ControlClient::NodeList nodes;
    EXPECT_FALSE(m_client.listNodes(nodes));
    EXPECT_GE(elapsed(), 400ms);
    EXPECT_LT(elapsed(), 3s);
    EXPECT_EQ(m_client.failure(), Failure::NoReply);
    EXPECT_EQ(m_client.failedRequest(), "listNodes");
    // A late reply must not pass for the next request's.
    EXPECT_FALSE(m_client.isConnected());
    EXPECT_TRUE(m_server.finish());
}

TEST_F(ControlClientDeadline, TheDeadlineBoundsTheWholeReplyNotEachRead)
{
    // 25 bytes, one every 100 ms: each read gets a byte well within any
    // per-read limit, the whole reply takes two and a half seconds.
    const std::string reply = R"({"result":true,"pad":"x"})"
                              "\n";
    m_server.acceptConnection().waitForLine().write(reply.substr(0, 1));
    for (std::size_t i = 1; i < reply.size(); ++i)
        m_server.pause(100).write(reply.substr(i, 1));
    m_server.waitForClose();
    connectClient();
    limit(1s);
    EXPECT_FALSE(m_client.pauseBatch(7));
    EXPECT_GE(elapsed(), 1s);
    EXPECT_LT(elapsed(), 2s);
    EXPECT_LT(elapsed(), 3s);
    EXPECT_EQ(m_client.failure(), Failure::ReplyTooSlow);
    EXPECT_EQ(m_client.failedRequest(), "pauseBatch");
    EXPECT_FALSE(m_client.isConnected());
}

TEST_F(ControlClientDeadline, AReplyWithinTheDeadlineIsTakenAndTheConnectionKept)
{
    m_server.acceptConnection().waitForLine().pause(200).write(R"({"result":[]})"
                                                               "\n");
    connectClient();
    limit(5s);
    ControlClient::BatchList batches;
    EXPECT_TRUE(m_client.listBatches(batches));
    EXPECT_EQ(m_client.failure(), Failure::None);
    EXPECT_TRUE(m_client.failedRequest().empty());
    EXPECT_TRUE(m_client.isConnected());
}

TEST_F(ControlClientDeadline, ARefusalIsNoFailure)
{
    m_server.acceptConnection().reply(R"({"error":"no such node"})");
    connectClient();
    limit(5s);
    EXPECT_FALSE(m_client.abortNode(3));
    EXPECT_EQ(m_client.failure(), Failure::None);
    EXPECT_TRUE(m_client.isConnected());
}

TEST_F(ControlClientDeadline, AServerThatClosesIsALostConnection)
{
    m_server.acceptConnection().waitForLine().closeConnection();
    connectClient();
    limit(5s);
    EXPECT_FALSE(m_client.resumeBatch(1));
    EXPECT_LT(elapsed(), 3s);
    EXPECT_EQ(m_client.failure(), Failure::ConnectionLost);
    EXPECT_EQ(m_client.failedRequest(), "resumeBatch");
    // Not connected any more: the next request fails at once, the same way.
    EXPECT_FALSE(m_client.resumeBatch(2));
    EXPECT_EQ(m_client.failure(), Failure::ConnectionLost);
}

TEST_F(ControlClientDeadline, WithoutADeadlineALostConnectionIsToldToo)
{
    m_server.acceptConnection().waitForLine().closeConnection();
    connectClient();
    EXPECT_FALSE(m_client.resumeBatch(1));
    EXPECT_EQ(m_client.failure(), Failure::ConnectionLost);
}

TEST(ControlClientConnect, NobodyListeningIsCannotConnect)
{
    ConsoleCapture console;
    ControlClient client;
    const std::string port = std::to_string(freeLoopbackPort());
    client.setDeadline(SteadyClock::now() + 5s);
    EXPECT_FALSE(client.connect("127.0.0.1", std::stoi(port)));
    EXPECT_EQ(client.failure(), Failure::CannotConnect);
    EXPECT_EQ(console.text(), "can't connect to 127.0.0.1:" + port + "\n");
}

TEST(ControlClientConnect, AnUnknownNameIsCannotResolveWithTheSystemsText)
{
    ConsoleCapture console;
    ControlClient client;
    client.setDeadline(SteadyClock::now() + 20s);
    EXPECT_FALSE(client.connect("no-such-host.invalid", 5840));
    EXPECT_EQ(client.failure(), Failure::CannotResolve);
    EXPECT_NE(client.lookupError(), 0);
    // The lookup's own text on the wide stream, no "can't connect" line.
    const std::string text = ::gai_strerror(client.lookupError());
    EXPECT_EQ(console.wideText(), std::wstring(text.begin(), text.end()) + L"\n");
    EXPECT_EQ(console.text(), "");
}

TEST(ControlClientConnect, AConnectThatHangsEndsAtTheDeadline)
{
    ConsoleCapture console;
    FullListener listener;
    ASSERT_NE(listener.port(), 0);
    ControlClient client;
    const auto start = SteadyClock::now();
    client.setDeadline(start + 500ms);
    EXPECT_FALSE(client.connect("127.0.0.1", listener.port()));
    EXPECT_GE(SteadyClock::now() - start, 500ms);
    EXPECT_LT(SteadyClock::now() - start, 3s);
    EXPECT_EQ(client.failure(), Failure::ConnectTimedOut);
    EXPECT_EQ(console.text(), "can't connect to 127.0.0.1:" + std::to_string(listener.port()) + "\n");
}

TEST(ControlClientConnect, ADeadlineAlreadyPastTriesNothing)
{
    ConsoleCapture console;
    ScriptedServer server;
    server.start();
    ControlClient client;
    client.setDeadline(SteadyClock::now() - 1s);
    EXPECT_FALSE(client.connect("127.0.0.1", server.port()));
    EXPECT_EQ(client.failure(), Failure::ConnectTimedOut);
}

TEST(ControlClientInterrupt, AnotherThreadEndsAHangingConnect)
{
    ConsoleCapture console;
    FullListener listener;
    ControlClient client;
    const auto start = SteadyClock::now();
    std::thread interrupter([&] {
        std::this_thread::sleep_for(300ms);
        client.interrupt();
    });
    // No deadline: without the interruption this would wait for the system's
    // own connect time-out, two minutes.
    EXPECT_FALSE(client.connect("127.0.0.1", listener.port()));
    interrupter.join();
    EXPECT_LT(SteadyClock::now() - start, 3s);
    EXPECT_EQ(client.failure(), Failure::Interrupted);
}

TEST(ControlClientInterrupt, AnInterruptionStaysUntilCleared)
{
    ConsoleCapture console;
    ScriptedServer server;
    server.acceptConnection().reply(R"({"result":true})");
    server.start();
    ControlClient client;
    client.interrupt();
    // Raised before the call: the lookup's wait ends at once.
    EXPECT_FALSE(client.connect("127.0.0.1", server.port()));
    EXPECT_EQ(client.failure(), Failure::Interrupted);
    EXPECT_FALSE(client.connect("127.0.0.1", server.port()));
    EXPECT_EQ(client.failure(), Failure::Interrupted);

    client.clearInterrupt();
    ASSERT_TRUE(client.connect("127.0.0.1", server.port()));
    client.setDeadline(SteadyClock::now() + 5s);
    EXPECT_TRUE(client.pauseNode(1));
}

TEST_F(ControlClientDeadline, AnotherThreadEndsARequestUnderADeadline)
{
    m_server.acceptConnection().waitForLine().waitForClose();
    connectClient();
    limit(60s);
    std::thread interrupter([&] {
        std::this_thread::sleep_for(300ms);
        m_client.interrupt();
    });
    ControlClient::BatchList batches;
    EXPECT_FALSE(m_client.listBatches(batches));
    interrupter.join();
    EXPECT_LT(elapsed(), 3s);
    EXPECT_EQ(m_client.failure(), Failure::Interrupted);
    EXPECT_FALSE(m_client.isConnected());
    EXPECT_TRUE(m_server.finish());
}
