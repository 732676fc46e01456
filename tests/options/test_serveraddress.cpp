#include <gtest/gtest.h>

#include "serveraddress.h"

TEST(ServerAddress, TheDefaultPortIsTheServers)
{
    EXPECT_EQ(DefaultServerPort, 5840);
    EXPECT_EQ(withDefaultPort("farm"), "farm:5840");
    EXPECT_EQ(withDefaultPort("farm:6000"), "farm:6000");
}

TEST(ServerAddress, PortsAreUpToFiveDigits)
{
    int port = -1;
    EXPECT_TRUE(parsePort("0", port));
    EXPECT_EQ(port, 0);
    EXPECT_TRUE(parsePort("65535", port));
    EXPECT_EQ(port, 65535);
    EXPECT_TRUE(parsePort("05840", port));
    EXPECT_EQ(port, 5840);
    for (const char* text : {"", "65536", "99999", "100000", "-1", "+1", " 1", "1 ", "http", "0x10"})
        EXPECT_FALSE(parsePort(text, port)) << text;
}

TEST(ServerAddress, AServerIsAHostWithAnOptionalPortAboveZero)
{
    for (const char* text : {"farm", "127.0.0.1", "farm:1", "farm:65535", "farm.example:5840"})
        EXPECT_TRUE(isServerAddress(text)) << text;
    for (const char* text : {"", ":5840", "farm:", "farm:0", "farm:65536", "farm:http", "farm:58 40"})
        EXPECT_FALSE(isServerAddress(text)) << text;
    EXPECT_EQ(badServerAddress("farm:http"), "not a HOST or HOST:PORT: farm:http");
}

TEST(ServerAddress, AListeningAddressNeedsItsPort)
{
    std::string host = "unchanged";
    int port = -1;
    EXPECT_TRUE(parseListenAddress("127.0.0.1:10084", host, port));
    EXPECT_EQ(host, "127.0.0.1");
    EXPECT_EQ(port, 10084);
    EXPECT_TRUE(parseListenAddress(":0", host, port));
    EXPECT_EQ(host, "");
    EXPECT_EQ(port, 0);
    EXPECT_TRUE(parseListenAddress("[::1]:9999", host, port));
    EXPECT_EQ(host, "::1");
    EXPECT_EQ(port, 9999);

    host = "unchanged";
    for (const char* text :
        {"", "127.0.0.1", "10084", "::1:10084", "[::1]", "[]:1", "[::1:1", "a:65536", "a:x"})
        EXPECT_FALSE(parseListenAddress(text, host, port)) << text;
    EXPECT_EQ(host, "unchanged");
    EXPECT_EQ(badListenAddress("localhost"), "not an ADDR:PORT: localhost");
}

TEST(ServerAddress, APortErrorNamesTheText)
{
    EXPECT_EQ(badPort("70000"), "not a port number: 70000");
}
