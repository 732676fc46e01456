#include <csignal>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"
#include "weboptions.h"

// korvane-web as a program: arguments, exit codes, what it refuses to start
// with, and its first line.
namespace {

const std::string Web = KORVANE_WEB_PROGRAM;

struct Refusal
{
    std::vector<std::string> args;
    int exitCode;
    std::string err;
};

void PrintTo(const Refusal& refusal, std::ostream* out)
{
    for (const std::string& arg : refusal.args)
        *out << arg << " ";
}

class WebProgramRefusal : public ::testing::TestWithParam<Refusal>
{
};

const std::string NotLoopback
    = " is not a loopback address, and without basic_auth_users anyone who reaches it "
      "could act on the farm: add basic_auth_users (and tls_server_config) to a file "
      "given by --web.config.file, or listen on 127.0.0.1\n";

} // namespace

TEST(WebProgram, HelpAndVersion)
{
    ChildProcess help(Web, {"--help"});
    EXPECT_EQ(help.wait(), 0);
    EXPECT_EQ(help.out(), webHelpText());
    EXPECT_EQ(help.err(), "");

    ChildProcess version(Web, {"--version"});
    EXPECT_EQ(version.wait(), 0);
    EXPECT_EQ(version.out(), "korvane-web 0.1.0\n");
}

TEST_P(WebProgramRefusal, ExitCodeAndMessage)
{
    const Refusal& refusal = GetParam();
    ChildProcess web(Web, refusal.args);
    EXPECT_EQ(web.wait(), refusal.exitCode);
    EXPECT_EQ(web.out(), "");
    EXPECT_EQ(web.err(), refusal.err);
}

INSTANTIATE_TEST_SUITE_P(Usage, WebProgramRefusal,
    ::testing::Values(Refusal {{"--frobnicate"}, 2,
                          "korvane-web: unknown argument --frobnicate (see korvane-web --help)\n"},
        Refusal {{"--web.listen-address", "localhost"}, 2,
            "korvane-web: not an ADDR:PORT: localhost (see korvane-web --help)\n"},
        Refusal {{"--server", "a:b:c"}, 2,
            "korvane-web: not a HOST or HOST:PORT: a:b:c (see korvane-web --help)\n"},
        Refusal {{"--interval", "0"}, 2,
            "korvane-web: not a time from 0.1 to 3600 seconds (such as 1, 0.5 or 250ms): 0 (see korvane-web "
            "--help)\n"},
        Refusal {{"--interval", "1h"}, 2,
            "korvane-web: not a time from 0.1 to 3600 seconds (such as 1, 0.5 or 250ms): 1h (see korvane-web "
            "--help)\n"},
        Refusal {{"--web.max-streams", "0"}, 2,
            "korvane-web: not a number of streams from 1 to 100000: 0 (see korvane-web --help)\n"},
        Refusal {{"--web.stream-buffer", "4095"}, 2,
            "korvane-web: not a number of bytes from 4096 to 1073741824 (such as 65536, 64K or 8M): 4095 "
            "(see "
            "korvane-web --help)\n"},
        Refusal {{"--web.stream-buffer", "2048M"}, 2,
            "korvane-web: not a number of bytes from 4096 to 1073741824 (such as 65536, 64K or 8M): 2048M "
            "(see "
            "korvane-web --help)\n"},
        Refusal {{"--web.operators", "a,,b"}, 2,
            "korvane-web: not a list of user names: a,,b (see korvane-web --help)\n"},
        Refusal {{"--web.operators", "@/nonexistent/operators"}, 2,
            "korvane-web: cannot read the operators file /nonexistent/operators (see korvane-web --help)\n"},
        Refusal {{"--log.level", "loud"}, 2,
            "korvane-web: not debug, info, warn or error: loud (see korvane-web --help)\n"},
        Refusal {{"--web.config.file", "/nonexistent/web.yml"}, 2,
            "korvane-web: cannot read the web configuration file /nonexistent/web.yml\n"},
        Refusal {{"--web.listen-address", ":0"}, 2, "korvane-web: :0" + NotLoopback},
        Refusal {{"--web.listen-address", "0.0.0.0:0"}, 2, "korvane-web: 0.0.0.0:0" + NotLoopback},
        Refusal {{"--web.listen-address", "127.0.0.1:0", "--web.listen-address", "[::]:0"}, 2,
            "korvane-web: [::]:0" + NotLoopback},
        Refusal {{"--web.listen-address", "127.0.0.1:0", "--web.operators", "alice"}, 2,
            "korvane-web: --web.operators names users, but the web configuration has no basic_auth_users to "
            "sign them in\n"},
        Refusal {{"--web.assets-dir", "/nonexistent"}, 2,
            "korvane-web: --web.assets-dir /nonexistent has no index.html (the build writes the page to "
            "build/web-ui)\n"},
        Refusal {{"--web.assets-dir", ""}, 2,
            "korvane-web: --web.assets-dir needs a folder (see korvane-web --help)\n"},
        Refusal {{"--web.listen-address", "127.0.0.1:0", "--audit.file", "/nonexistent/audit.log"}, 2,
            "korvane-web: cannot open the audit file /nonexistent/audit.log: No such file or directory\n"}));

TEST(WebProgram, LoopbackNamesAndAddressesNeedNoUsers)
{
    for (const std::string address : {"127.0.0.1:0", "[::1]:0", "localhost:0"}) {
        ChildProcess web(Web, {"--web.listen-address", address, "--server", "127.0.0.1:1"});
        const std::string line = web.readLine();
        EXPECT_EQ(line.rfind("listening on " + address.substr(0, address.size() - 1), 0), 0u) << line;
        web.signal(SIGTERM);
        EXPECT_EQ(web.wait(), 0) << address;
    }
}

TEST(WebProgram, AnAddressInUseExitsWithOne)
{
    ChildProcess first(Web, {"--web.listen-address", "127.0.0.1:0", "--server", "127.0.0.1:1"});
    const int port = first.listeningPort();
    ASSERT_GT(port, 0);
    ChildProcess second(Web, {"--web.listen-address", "127.0.0.1:" + std::to_string(port)});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(second.out(), "");
    EXPECT_EQ(second.err(),
        "korvane-web: cannot listen on 127.0.0.1:" + std::to_string(port) + ": Address already in use\n");
    first.signal(SIGTERM);
    EXPECT_EQ(first.wait(), 0);
}

TEST(WebProgram, ItServesWhileTheServerIsDownAndSaysSo)
{
    ChildProcess web(Web, {"--web.listen-address", "127.0.0.1:0", "--server", "127.0.0.1:1"});
    ASSERT_GT(web.listeningPort(), 0);
    for (int i = 0; i < 100 && web.err().empty(); ++i)
        usleep(50000);
    web.signal(SIGINT);
    EXPECT_EQ(web.wait(), 0);
    EXPECT_EQ(
        web.err(), "korvane-web: cannot connect to 127.0.0.1:1; next attempt in 1 s\nkorvane-web: stopped\n");
}

TEST(WebProgram, SystemdAcceptsTheUnitsAndTheirHardening)
{
    const std::string source = KORVANE_WEB_SOURCE_DIR;
    // A root with the units and the program where the package puts them, kill for the
    // reload, and systemd's own units.
    TempDirectory root;
    std::string output;
    ASSERT_EQ(
        runCommand("mkdir -p " + root.path("usr/bin") + " " + root.path("usr/lib/systemd") + " && cp -r "
                + "/usr/lib/systemd/system " + root.path("usr/lib/systemd/") + " && cp " + Web + " "
                + root.path("usr/bin/") + " && cp " + source + "/korvane-web.service " + source
                + "/korvane-web@.service " + root.path("usr/lib/systemd/system/") + " && cp /usr/bin/kill "
                + root.path("usr/bin/") + " && ln -s usr/bin " + root.path("bin"),
            output),
        0)
        << output;
    // --man=no: the manual page is installed by the package, not on the build machine.
    EXPECT_EQ(runCommand("systemd-analyze verify --man=no --root=" + root.path()
                      + " korvane-web.service korvane-web@farm-a.service",
                  output),
        0)
        << output;
    EXPECT_EQ(output, "");
    // An exposure of 2.0 or lower (the threshold counts in tenths); the same check refuses 0.5.
    for (const char* unit : {"korvane-web.service", "korvane-web@farm-a.service"}) {
        const std::string security = "systemd-analyze security --offline=yes --root=" + root.path() + " ";
        EXPECT_EQ(runCommand(security + "--threshold=20 " + unit, output), 0) << output;
        EXPECT_NE(
            output.find(std::string("Overall exposure level for ") + unit + ": 0.9 SAFE"), std::string::npos)
            << output;
        EXPECT_NE(runCommand(security + "--threshold=5 " + unit, output), 0) << output;
    }
    const std::string instance = readFile(source + "/korvane-web@.service");
    for (const char* line :
        {"\nEnvironmentFile=/etc/default/korvane-web-%i\n", "\nStateDirectory=korvane-web/%i\n",
            "\nExecStart=/usr/bin/korvane-web --audit.file /var/lib/korvane-web/%i/audit.log $ARGS\n",
            "\nExecReload=/bin/kill -HUP $MAINPID\n", "\nDynamicUser=yes\n", "\nIPAddressDeny=any\n"})
        EXPECT_NE(instance.find(line), std::string::npos) << line;
    const std::string defaults = readFile(source + "/korvane-web.default");
    EXPECT_NE(defaults.find("\nARGS=\"--server 127.0.0.1:5840 --web.listen-address 127.0.0.1:10085\"\n"),
        std::string::npos);
}
