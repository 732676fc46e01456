#include <array>
#include <cstdio>
#include <filesystem>
#include <regex>

#include <gtest/gtest.h>

#include "crashtestsupport.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace CrashTest;

// A debugger that knows nothing of this program opens the dump and names
// the function that crashed.
TEST(MinidumpInDebugger, LldbBacktraceNamesTheCrashingFunction)
{
    ASSERT_EQ(system("command -v lldb >/dev/null"), 0) << "lldb is missing: run scripts/setup.sh";
    TempDirectory home;
    TempDirectory application;
    std::filesystem::copy_file(KORVANE_STANDIN_REPORTER_PROGRAM, application.path() + "/crashreporter");
    const std::string record = application.path() + "/record";
    runProcess({KORVANE_CRASH_HELPER_PROGRAM, "install", "segv", application.path() + "/korvane-monitor"},
        {{"HOME", home.path()}, {"KORVANE_TEST_REPORTER_RECORD", record}});
    ASSERT_TRUE(waitForFile(record));
    const ReporterRecord seen = readReporterRecord(record);
    ASSERT_EQ(seen.arguments.size(), 2u);
    const std::string dump = seen.arguments[1];
    const std::string extra = dump.substr(0, dump.size() - 4) + ".extra";

    const std::string command
        = "HOME='" + home.path() + "' lldb --batch -c '" + dump + "' -o 'thread backtrace' 2>&1";
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        std::array<char, 4096> buffer;
        std::size_t n;
        while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
            output.append(buffer.data(), n);
        pclose(pipe);
    }
    std::remove(dump.c_str());
    std::remove(extra.c_str());

    std::cout << output << std::endl;
    EXPECT_TRUE(std::regex_search(output, std::regex("frame #0: .*korvaneFaultHere"))) << output;
    EXPECT_TRUE(std::regex_search(output, std::regex("frame #[0-9]+: .*main"))) << output;
    EXPECT_NE(output.find("SIGSEGV"), std::string::npos) << output;
}
