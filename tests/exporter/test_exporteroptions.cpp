#include <sstream>

#include <gtest/gtest.h>

#include "exporteroptions.h"
#include "logfilter.h"

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
    ASSERT_EQ(options.listen.size(), 1u);
    EXPECT_EQ(options.listen[0].host, "127.0.0.1");
    EXPECT_EQ(options.listen[0].port, 10084);
    EXPECT_EQ(options.collectBatches, CollectMode::Unfinished);
    EXPECT_EQ(options.serverTimeoutSeconds, 5);
    EXPECT_EQ(options.telemetryPath, "/metrics");
    EXPECT_EQ(options.webConfigFile, "");
    EXPECT_EQ(options.maxRequests, 40);
    EXPECT_EQ(options.logLevel, LogLevel::Info);
}

TEST(ExporterOptions, ServerListenAndFlags)
{
    const ExporterOptions options = parsed({"--server", "farm.example:6000", "--listen=0.0.0.0:9999",
        "--all-batches", "--server-timeout", "30"});
    EXPECT_EQ(options.server, "farm.example:6000");
    EXPECT_EQ(options.serverAddress(), "farm.example:6000");
    ASSERT_EQ(options.listen.size(), 1u);
    EXPECT_EQ(options.listen[0].host, "0.0.0.0");
    EXPECT_EQ(options.listen[0].port, 9999);
    EXPECT_EQ(options.collectBatches, CollectMode::All);
    EXPECT_EQ(options.serverTimeoutSeconds, 30);

    EXPECT_EQ(parsed({"--server=farm"}).serverAddress(), "farm:5840");
    EXPECT_EQ(parsed({"--listen", "127.0.0.1:0"}).listen[0].port, 0);
}

TEST(ExporterOptions, TheFlagsOfPrometheusExporters)
{
    const ExporterOptions options = parsed({"--web.listen-address", ":10084", "--web.listen-address=[::1]:9",
        "--listen", "127.0.0.1:0", "--web.telemetry-path=/farm/metrics", "--web.config.file", "/etc/web.yml",
        "--web.max-requests", "3", "--log.level", "warn", "--collect.batches=working"});
    ASSERT_EQ(options.listen.size(), 3u);
    EXPECT_EQ(options.listen[0].host, "");
    EXPECT_EQ(options.listen[0].port, 10084);
    EXPECT_EQ(options.listen[0].text(10084), ":10084");
    EXPECT_EQ(options.listen[1].host, "::1");
    EXPECT_EQ(options.listen[1].text(9), "[::1]:9");
    EXPECT_EQ(options.listen[2].text(4711), "127.0.0.1:4711");
    EXPECT_EQ(options.telemetryPath, "/farm/metrics");
    EXPECT_EQ(options.webConfigFile, "/etc/web.yml");
    EXPECT_EQ(options.maxRequests, 3);
    EXPECT_EQ(options.logLevel, LogLevel::Warn);
    EXPECT_EQ(options.collectBatches, CollectMode::Working);
    EXPECT_EQ(parsed({"--listen", ":10084"}).listen[0].text(10084), ":10084");
    EXPECT_EQ(parsed({"--collect.batches", "none"}).collectBatches, CollectMode::None);
    EXPECT_EQ(parsed({"--collect.batches", "all"}).collectBatches, CollectMode::All);
    EXPECT_EQ(parsed({"--collect.batches", "unfinished"}).collectBatches, CollectMode::Unfinished);
    EXPECT_EQ(parsed({"--log.level=error"}).logLevel, LogLevel::Error);
    EXPECT_EQ(parsed({"--log.level=debug"}).logLevel, LogLevel::Debug);
}

TEST(ExporterOptions, LogLinesBelowTheLevelAreLeftOut)
{
    for (const LogLevel level : {LogLevel::Info, LogLevel::Warn}) {
        std::ostringstream target;
        {
            LogFilter filter(target.rdbuf(), level);
            std::ostream log(&filter);
            log << "korvane-exporter: cannot connect to h:1; next attempt in 1 s" << std::endl;
            log << "korvane-exporter: reading h:1" << std::endl;
            log << "korvane-exporter: stopped" << std::endl;
        }
        EXPECT_EQ(target.str(),
            level == LogLevel::Info ? "korvane-exporter: cannot connect to h:1; next attempt in 1 s\n"
                                      "korvane-exporter: reading h:1\nkorvane-exporter: stopped\n"
                                    : "korvane-exporter: cannot connect to h:1; next attempt in 1 s\n");
    }
}

TEST(ExporterOptions, Ipv6ListenAddressInBrackets)
{
    const ExporterOptions options = parsed({"--listen", "[::1]:10084"});
    EXPECT_EQ(options.listen[0].host, "::1");
    EXPECT_EQ(options.listen[0].port, 10084);
}

TEST(ExporterOptions, HelpAndVersion)
{
    EXPECT_TRUE(parsed({"--help"}).help);
    EXPECT_TRUE(parsed({"-h"}).help);
    EXPECT_TRUE(parsed({"--version"}).version);
    EXPECT_NE(exporterHelpText().find("Usage: korvane-exporter [--server HOST[:PORT]] [--web.listen-address"),
        std::string::npos);
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
    EXPECT_EQ(refused({"--web.listen-address", "10084"}), "not an ADDR:PORT: 10084");
    EXPECT_EQ(refused({"--web.telemetry-path", "metrics"}), "not a path such as /metrics: metrics");
    EXPECT_EQ(refused({"--web.telemetry-path", "/"}), "not a path such as /metrics: /");
    EXPECT_EQ(refused({"--web.max-requests", "0"}), "not a number of requests from 1 to 9999: 0");
    EXPECT_EQ(refused({"--log.level", "verbose"}), "not debug, info, warn or error: verbose");
    EXPECT_EQ(refused({"--collect.batches", "some"}), "not unfinished, working, all or none: some");
    EXPECT_EQ(refused({"--web.config.file="}), "--web.config.file needs a file name");
    EXPECT_EQ(refused({"--web.config.file"}), "--web.config.file needs a value");
}
