#include <gtest/gtest.h>

#include "exporteroptions.h"

namespace {

ExporterOptions parsed(const std::vector<std::string>& args)
{
    ExporterOptions options;
    std::string error;
    EXPECT_TRUE(parseExporterOptions(args, options, error)) << error;
    return options;
}

std::string refused(const std::vector<std::string>& args)
{
    ExporterOptions options;
    std::string error;
    EXPECT_FALSE(parseExporterOptions(args, options, error));
    return error;
}

} // namespace

TEST(ExporterOptions, DefaultsWatchTheLocalServerAndServeOnLoopback)
{
    const ExporterOptions options = parsed({});
    EXPECT_EQ(options.server, "127.0.0.1");
    EXPECT_EQ(options.serverAddress(), "127.0.0.1:5840");
    EXPECT_EQ(options.listenHost, "127.0.0.1");
    EXPECT_EQ(options.listenPort, 10084);
    EXPECT_FALSE(options.allBatches);
    EXPECT_EQ(options.serverTimeoutSeconds, 5);
}

TEST(ExporterOptions, ServerListenAndFlags)
{
    const ExporterOptions options = parsed({"--server", "farm.example:6000", "--listen=0.0.0.0:9999",
        "--all-batches", "--server-timeout", "30"});
    EXPECT_EQ(options.server, "farm.example:6000");
    EXPECT_EQ(options.serverAddress(), "farm.example:6000");
    EXPECT_EQ(options.listenHost, "0.0.0.0");
    EXPECT_EQ(options.listenPort, 9999);
    EXPECT_TRUE(options.allBatches);
    EXPECT_EQ(options.serverTimeoutSeconds, 30);

    EXPECT_EQ(parsed({"--server=farm"}).serverAddress(), "farm:5840");
    EXPECT_EQ(parsed({"--listen", "127.0.0.1:0"}).listenPort, 0);
}

TEST(ExporterOptions, Ipv6ListenAddressInBrackets)
{
    const ExporterOptions options = parsed({"--listen", "[::1]:10084"});
    EXPECT_EQ(options.listenHost, "::1");
    EXPECT_EQ(options.listenPort, 10084);
}

TEST(ExporterOptions, HelpAndVersion)
{
    EXPECT_TRUE(parsed({"--help"}).help);
    EXPECT_TRUE(parsed({"-h"}).help);
    EXPECT_TRUE(parsed({"--version"}).version);
    EXPECT_NE(exporterHelpText().find("Usage: korvane-exporter [--server HOST[:PORT]]"), std::string::npos);
}

TEST(ExporterOptions, UsageErrorsSayWhatIsWrong)
{
    EXPECT_EQ(refused({"--frobnicate"}), "unknown argument --frobnicate");
    EXPECT_EQ(refused({"metrics"}), "unknown argument metrics");
    EXPECT_EQ(refused({"--server"}), "--server needs a value");
    EXPECT_EQ(refused({"--server", ":5840"}), "not a HOST or HOST:PORT: :5840");
    EXPECT_EQ(refused({"--server", "farm:http"}), "not a HOST or HOST:PORT: farm:http");
    EXPECT_EQ(refused({"--server", "farm:0"}), "not a HOST or HOST:PORT: farm:0");
    EXPECT_EQ(refused({"--listen", "127.0.0.1"}), "not an ADDR:PORT: 127.0.0.1");
    EXPECT_EQ(refused({"--listen", "127.0.0.1:65536"}), "not an ADDR:PORT: 127.0.0.1:65536");
    EXPECT_EQ(refused({"--listen", "::1:10084"}), "not an ADDR:PORT: ::1:10084");
    EXPECT_EQ(refused({"--server-timeout", "0"}), "not a number of seconds: 0");
    EXPECT_EQ(refused({"--all-batches=yes"}), "unknown argument --all-batches=yes");
}
