#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "crashreporter.h"
#include "crashtestsupport.h"
#include "tempdirectory.h"
#include "testpaths.h"

namespace {

constexpr std::uint64_t GiB = 1073741824ULL;
constexpr std::uint64_t MiB = 1048576ULL;

std::uint64_t injectedMemory = 0;
std::uint64_t injectedMemorySize()
{
    return injectedMemory;
}

// Everything appended to the log in this process, escaped, to know what
// the ring must hold.
std::string appendedLog;

void appendLog(const std::string& text)
{
    CrashReporter::appendLog(text);
    for (char c : text) {
        if (c == '\\')
            appendedLog += "\\\\";
        else if (c == '\n')
            appendedLog += "\\n";
        else if (c == '\t')
            appendedLog += "\\t";
        else
            appendedLog += c;
    }
}

std::string workingDirectory()
{
    char buffer[4096];
    return getcwd(buffer, sizeof buffer) ? buffer : "";
}

std::string memoryAnnotation(std::uint64_t bytes)
{
    injectedMemory = bytes;
    CrashReporter::clearAnnotations();
    CrashReporter::writeStaticAnnotations();
    const std::string text = CrashReporter::annotationText();
    const std::size_t start = text.find("SystemMemory=");
    if (start == std::string::npos)
        return "(none)";
    const std::size_t end = text.find('\n', start);
    return text.substr(start + 13, end - start - 13);
}

class CrashReporterTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const char* home = std::getenv("HOME");
        m_hadHome = home != nullptr;
        if (home)
            m_savedHome = home;
        setenv("HOME", m_home.path().c_str(), 1);
        m_savedWorkingDirectory = workingDirectory();
        CrashReporter::clearAnnotations();
        CrashReporter::setVendor("Korvane");
        CrashReporter::setProductName("Monitor");
        CrashReporter::setVersion(0, 1, 0, 2834);
        CrashReporter::setServerUrl("https://crash-reports.korvane.com/submit");
        CrashReporter::setApplicationPath((m_application.path() + "/korvane-monitor").c_str());
        CrashReporter::setMemorySizeFunction(&injectedMemorySize);
        injectedMemory = 8 * GiB;
    }

    void TearDown() override
    {
        if (m_hadHome)
            setenv("HOME", m_savedHome.c_str(), 1);
        else
            unsetenv("HOME");
        ASSERT_EQ(chdir(m_savedWorkingDirectory.c_str()), 0);
        CrashReporter::setMemorySizeFunction(nullptr);
    }

    // Puts the stand-in reporter into the application directory.
    void addStandInReporter()
    {
        std::filesystem::copy_file(KORVANE_STANDIN_REPORTER_PROGRAM, m_application.path() + "/crashreporter");
    }

    TempDirectory m_home;
    TempDirectory m_application;
    CrashReporter m_guard;
    std::string m_savedHome;
    bool m_hadHome = false;
    std::string m_savedWorkingDirectory;
};

} // namespace

TEST_F(CrashReporterTest, DataDirectoryIsInsideHomeAndExported)
{
    ASSERT_TRUE(CrashReporter::install());
    const std::string expected = m_home.path() + "/.korvane/monitor/Crash Reports";
    EXPECT_TRUE(isDirectory(expected));
    ASSERT_NE(std::getenv("MOZ_CRASHREPORTER_DATA_DIRECTORY"), nullptr);
    EXPECT_EQ(std::string(std::getenv("MOZ_CRASHREPORTER_DATA_DIRECTORY")), expected);
}

TEST_F(CrashReporterTest, HomeUnsetGivesTildeDirectoryRelativeToWorkingDirectory)
{
    TempDirectory working;
    ASSERT_EQ(chdir(working.path().c_str()), 0);
    unsetenv("HOME");
    ASSERT_TRUE(CrashReporter::install());
    EXPECT_EQ(
        std::string(std::getenv("MOZ_CRASHREPORTER_DATA_DIRECTORY")), "~/.korvane/monitor/Crash Reports");
    EXPECT_TRUE(isDirectory(working.path() + "/~/.korvane/monitor/Crash Reports"));
}

TEST_F(CrashReporterTest, VendorAndProductAreLowerCasedButCrashReportsKeepsCapitals)
{
    CrashReporter::setVendor("KorVANE");
    CrashReporter::setProductName("MoniTor");
    ASSERT_TRUE(CrashReporter::install());
    const std::string expected = m_home.path() + "/.korvane/monitor/Crash Reports";
    EXPECT_EQ(std::string(std::getenv("MOZ_CRASHREPORTER_DATA_DIRECTORY")), expected);
    EXPECT_TRUE(isDirectory(expected));
}

TEST_F(CrashReporterTest, HomeItselfIsNotLowerCased)
{
    TempDirectory parent;
    const std::string home = parent.path() + "/Home Of Someone";
    setenv("HOME", home.c_str(), 1);
    ASSERT_TRUE(CrashReporter::install());
    EXPECT_EQ(std::string(std::getenv("MOZ_CRASHREPORTER_DATA_DIRECTORY")),
        home + "/.korvane/monitor/Crash Reports");
    EXPECT_TRUE(isDirectory(home + "/.korvane/monitor/Crash Reports"));
}

TEST_F(CrashReporterTest, ApplicationPathIsCutAtItsLastSlash)
{
    CrashReporter::setApplicationPath("/opt/korvane/bin/korvane-monitor");
    EXPECT_STREQ(CrashReporter::applicationDirectory(), "/opt/korvane/bin");
    ASSERT_TRUE(CrashReporter::install());
    EXPECT_STREQ(CrashReporter::reporterPath(), "/opt/korvane/bin/crashreporter");
}

TEST_F(CrashReporterTest, PathWithoutSlashIsKeptWhole)
{
    CrashReporter::setApplicationPath("korvane-monitor");
    EXPECT_STREQ(CrashReporter::applicationDirectory(), "korvane-monitor");
    ASSERT_TRUE(CrashReporter::install());
    EXPECT_STREQ(CrashReporter::reporterPath(), "korvane-monitor/crashreporter");
}

TEST_F(CrashReporterTest, EmptyPathMakesReporterPathStartAtWorkingDirectory)
{
    TempDirectory working;
    ASSERT_EQ(chdir(working.path().c_str()), 0);
    CrashReporter::setApplicationPath("");
    EXPECT_STREQ(CrashReporter::applicationDirectory(), "");
    ASSERT_TRUE(CrashReporter::install());
    EXPECT_EQ(std::string(CrashReporter::reporterPath()), workingDirectory() + "/crashreporter");
}

TEST_F(CrashReporterTest, InstallIsIdempotentAndTheGuardUninstalls)
{
    {
        CrashReporter inner;
        ASSERT_TRUE(CrashReporter::install());
        EXPECT_TRUE(CrashReporter::isInstalled());
        EXPECT_TRUE(CrashReporter::install());
    }
    EXPECT_FALSE(CrashReporter::isInstalled());
}

TEST_F(CrashReporterTest, InstallWritesStaticAnnotationsSortedByKey)
{
    ASSERT_TRUE(CrashReporter::install());
    EXPECT_EQ(CrashReporter::annotationText(),
        "ProductName=Monitor\n"
        "ServerURL=https://crash-reports.korvane.com/submit\n"
        "System=Linux 64bit\n"
        "SystemMemory=8.00 GB\n"
        "Vendor=Korvane\n"
        "Version=0.1.0.2834\n");
}

TEST_F(CrashReporterTest, EmptyIdentityStringsAreLeftOut)
{
    CrashReporter::setVendor("");
    CrashReporter::setProductName("");
    CrashReporter::setServerUrl("");
    injectedMemory = 0;
    CrashReporter::writeStaticAnnotations();
    EXPECT_EQ(CrashReporter::annotationText(), "System=Linux 64bit\nVersion=0.1.0.2834\n");
}

TEST_F(CrashReporterTest, SameKeyTwiceLeavesOneLineWithTheLastValue)
{
    CrashReporter::setAnnotation("Key", "first");
    CrashReporter::setAnnotation("Key", "second");
    EXPECT_EQ(CrashReporter::annotationText(), "Key=second\n");
}

TEST_F(CrashReporterTest, KeysComeOutInByteOrderAndValuesVerbatim)
{
    CrashReporter::setAnnotation("b", "x=y\\t");
    CrashReporter::setAnnotation("B", "");
    CrashReporter::setAnnotation("a", "1");
    EXPECT_EQ(CrashReporter::annotationText(), "B=\na=1\nb=x=y\\t\n");
}

TEST_F(CrashReporterTest, AnnotationTextUpTo9999CharactersIsKept)
{
    // "K=" + value + "\n" is 3 characters more than the value.
    CrashReporter::setAnnotation("K", std::string(9996, 'v'));
    EXPECT_EQ(CrashReporter::annotationText().size(), 9999u);
}

TEST_F(CrashReporterTest, AnnotationTextOver9999CharactersIsDroppedSilently)
{
    CrashReporter::setAnnotation("A", "kept");
    CrashReporter::setAnnotation("K", std::string(9993, 'v')); // would make 10000
    EXPECT_EQ(CrashReporter::annotationText(), "A=kept\n");
}

TEST_F(CrashReporterTest, MemoryOver10GiBHasOneDecimal)
{
    EXPECT_EQ(memoryAnnotation(16 * GiB), "16.0 GB");
    EXPECT_EQ(memoryAnnotation(10 * GiB + 1), "10.0 GB");
}

TEST_F(CrashReporterTest, MemoryOfExactly10GiBGivesTwoDecimals)
{
    EXPECT_EQ(memoryAnnotation(10737418240ULL), "10.00 GB");
    EXPECT_EQ(memoryAnnotation(8 * GiB), "8.00 GB");
}

TEST_F(CrashReporterTest, MemoryOfExactly1GiBGivesMegabytes)
{
    EXPECT_EQ(memoryAnnotation(1073741824ULL), "1024 MB");
    EXPECT_EQ(memoryAnnotation(512 * MiB + MiB / 2), "513 MB");
    EXPECT_EQ(memoryAnnotation(MiB + 1), "1 MB");
}

TEST_F(CrashReporterTest, MemoryOf1MiBOrLessGivesNoLine)
{
    EXPECT_EQ(memoryAnnotation(1048576ULL), "(none)");
    EXPECT_EQ(memoryAnnotation(4096), "(none)");
    EXPECT_EQ(memoryAnnotation(0), "(none)");
}

TEST_F(CrashReporterTest, SystemMemoryComesFromSysconfByDefault)
{
    CrashReporter::setMemorySizeFunction(nullptr);
    const std::uint64_t expected
        = std::uint64_t(sysconf(_SC_PHYS_PAGES)) * std::uint64_t(sysconf(_SC_PAGESIZE));
    EXPECT_EQ(CrashReporter::systemMemorySize(), expected);
    EXPECT_GT(expected, 0u);
}

TEST(CrashReporterLog, UnescapeReversesTheEscapes)
{
    EXPECT_EQ(CrashReporter::unescapeLogText("a\\\\b\\nc\\td"), "a\\b\nc\td");
    EXPECT_EQ(CrashReporter::unescapeLogText("plain text"), "plain text");
}

TEST(CrashReporterLog, UnescapeDropsABackslashWithAnUnknownCharacter)
{
    EXPECT_EQ(CrashReporter::unescapeLogText("a\\xb"), "ab");
    EXPECT_EQ(CrashReporter::unescapeLogText("\\r\\n"), "\n");
}

TEST(CrashReporterDirectories, CreatesMissingParentsWithMode0700)
{
    TempDirectory base;
    const std::string path = base.path() + "/one/two//three/four";
    EXPECT_TRUE(CrashReporter::makeDirectories(path.c_str()));
    EXPECT_TRUE(isDirectory(path));
    struct stat info = {};
    ASSERT_EQ(stat((base.path() + "/one/two").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
}

TEST(CrashReporterDirectories, TrailingSlashAndExistingDirectoryAreFine)
{
    TempDirectory base;
    const std::string path = base.path() + "/a/b/";
    EXPECT_TRUE(CrashReporter::makeDirectories(path.c_str()));
    EXPECT_TRUE(isDirectory(base.path() + "/a/b"));
    EXPECT_TRUE(CrashReporter::makeDirectories(path.c_str()));
}

TEST(CrashReporterDirectories, ParentThatCannotBeMadeFails)
{
    // A dangling link is where a parent should be: mkdir says it exists,
    // yet nothing can be made below it.
    TempDirectory base;
    const std::string link = base.path() + "/link";
    ASSERT_EQ(symlink((base.path() + "/missing/target").c_str(), link.c_str()), 0);
    const std::string path = link + "/x/y";
    EXPECT_FALSE(CrashReporter::makeDirectories(path.c_str()));
}

TEST(CrashReporterDirectories, OtherErrorsThanMissingParentCountAsSuccess)
{
    TempDirectory base;
    const std::string file = base.path() + "/file";
    CrashTest::runProcess({"/usr/bin/touch", file}, {});
    // EEXIST and ENOTDIR are not ENOENT: nothing more is tried.
    EXPECT_TRUE(CrashReporter::makeDirectories(file.c_str()));
    EXPECT_TRUE(CrashReporter::makeDirectories((file + "/x/y").c_str()));
    EXPECT_FALSE(isDirectory(file + "/x"));
}

TEST_F(CrashReporterTest, CallbackWritesExtraAndStartsReporter)
{
    addStandInReporter();
    ASSERT_TRUE(CrashReporter::install());
    TempDirectory dumps;
    const std::string record = dumps.path() + "/record";
    setenv("KORVANE_TEST_REPORTER_RECORD", record.c_str(), 1);
    EXPECT_TRUE(CrashReporter::onMinidumpWritten(dumps.path().c_str(), "0123-id", nullptr, true));
    unsetenv("KORVANE_TEST_REPORTER_RECORD");

    const std::string extra = readFile(dumps.path() + "/0123-id.extra");
    const std::string log
        = appendedLog.size() > 16384 ? appendedLog.substr(appendedLog.size() - 16384) : appendedLog;
    EXPECT_EQ(extra, CrashReporter::annotationText() + (log.empty() ? "" : "XLog=" + log + "\n"));

    ASSERT_TRUE(waitForFile(record));
    const auto seen = CrashTest::readReporterRecord(record);
    ASSERT_EQ(seen.arguments.size(), 2u);
    EXPECT_EQ(seen.arguments[0], m_application.path() + "/crashreporter");
    EXPECT_EQ(seen.arguments[1], dumps.path() + "/0123-id.dmp");
    EXPECT_EQ(seen.dataDirectory, m_home.path() + "/.korvane/monitor/Crash Reports");
    while (waitpid(-1, nullptr, WNOHANG) > 0) { }
}

TEST_F(CrashReporterTest, CallbackPassesOnTheWriteResult)
{
    addStandInReporter();
    ASSERT_TRUE(CrashReporter::install());
    TempDirectory dumps;
    setenv("KORVANE_TEST_REPORTER_RECORD", (dumps.path() + "/record").c_str(), 1);
    EXPECT_FALSE(CrashReporter::onMinidumpWritten(dumps.path().c_str(), "id", nullptr, false));
    unsetenv("KORVANE_TEST_REPORTER_RECORD");
    EXPECT_TRUE(waitForFile(dumps.path() + "/record"));
    while (waitpid(-1, nullptr, WNOHANG) > 0) { }
}

TEST_F(CrashReporterTest, MissingReporterMakesCallbackFailButExtraIsWritten)
{
    ASSERT_TRUE(CrashReporter::install());
    TempDirectory dumps;
    EXPECT_FALSE(CrashReporter::onMinidumpWritten(dumps.path().c_str(), "id", nullptr, true));
    EXPECT_TRUE(pathExists(dumps.path() + "/id.extra"));
}

TEST_F(CrashReporterTest, ExtraIsReadableByItsOwnerOnlyWhateverTheUmask)
{
    ASSERT_TRUE(CrashReporter::install());
    TempDirectory dumps;
    const mode_t previous = ::umask(0);
    CrashReporter::onMinidumpWritten(dumps.path().c_str(), "mode", nullptr, true);
    ::umask(previous);
    struct stat status = {};
    ASSERT_EQ(::stat((dumps.path() + "/mode.extra").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

TEST_F(CrashReporterTest, UnopenableExtraIsSkippedAndReporterStillStarts)
{
    addStandInReporter();
    ASSERT_TRUE(CrashReporter::install());
    TempDirectory dumps;
    const std::string record = dumps.path() + "/record";
    setenv("KORVANE_TEST_REPORTER_RECORD", record.c_str(), 1);
    const std::string missing = dumps.path() + "/no/such/directory";
    EXPECT_TRUE(CrashReporter::onMinidumpWritten(missing.c_str(), "id", nullptr, true));
    unsetenv("KORVANE_TEST_REPORTER_RECORD");
    EXPECT_TRUE(waitForFile(record));
    while (waitpid(-1, nullptr, WNOHANG) > 0) { }
}

TEST_F(CrashReporterTest, LogIsEscapedAndAppendedAsXLog)
{
    ASSERT_TRUE(CrashReporter::install());
    appendLog(std::string(16384, '.')); // pushes out whatever came before
    appendLog("first\tline\n");
    appendLog("back\\slash\n");
    TempDirectory dumps;
    CrashReporter::onMinidumpWritten(dumps.path().c_str(), "log", nullptr, true);
    const std::string extra = readFile(dumps.path() + "/log.extra");
    const std::string tail = "first\\tline\\nback\\\\slash\\n\n";
    ASSERT_GE(extra.size(), tail.size());
    EXPECT_EQ(extra.substr(extra.size() - tail.size()), tail);
    const std::size_t xlog = extra.find("XLog=");
    ASSERT_NE(xlog, std::string::npos);
    EXPECT_EQ(extra.substr(0, xlog), CrashReporter::annotationText());
    const std::string value = extra.substr(xlog + 5, extra.size() - xlog - 6);
    EXPECT_EQ(value.size(), 16384u);
    const std::string escapedTail = "first\\tline\\nback\\\\slash\\n";
    EXPECT_EQ(CrashReporter::unescapeLogText(value.substr(value.size() - escapedTail.size())),
        "first\tline\nback\\slash\n");
}

TEST_F(CrashReporterTest, LogOver16384BytesKeepsTheNewestWrittenOldestFirst)
{
    ASSERT_TRUE(CrashReporter::install());
    appendLog(std::string(10000, 'a'));
    appendLog(std::string(10000, 'b'));
    TempDirectory dumps;
    CrashReporter::onMinidumpWritten(dumps.path().c_str(), "ring", nullptr, true);
    const std::string extra = readFile(dumps.path() + "/ring.extra");
    const std::string expected = "XLog=" + std::string(6384, 'a') + std::string(10000, 'b') + "\n";
    ASSERT_GE(extra.size(), expected.size());
    EXPECT_EQ(extra.substr(extra.size() - expected.size()), expected);
    EXPECT_EQ(extra.size(), CrashReporter::annotationText().size() + expected.size());
}

TEST_F(CrashReporterTest, LogThatExactlyFillsTheRingIsWrittenWhole)
{
    ASSERT_TRUE(CrashReporter::install());
    appendLog(std::string(16000, 'c'));
    appendLog(std::string(384, 'd'));
    TempDirectory dumps;
    CrashReporter::onMinidumpWritten(dumps.path().c_str(), "full", nullptr, true);
    const std::string extra = readFile(dumps.path() + "/full.extra");
    const std::string expected = "XLog=" + std::string(16000, 'c') + std::string(384, 'd') + "\n";
    EXPECT_EQ(extra, CrashReporter::annotationText() + expected);
}

TEST_F(CrashReporterTest, EmptyAnnotationTextWritesNoExtraEvenWithALog)
{
    addStandInReporter();
    ASSERT_TRUE(CrashReporter::install());
    appendLog("something\n");
    CrashReporter::clearAnnotations();
    TempDirectory dumps;
    const std::string record = dumps.path() + "/record";
    setenv("KORVANE_TEST_REPORTER_RECORD", record.c_str(), 1);
    EXPECT_TRUE(CrashReporter::onMinidumpWritten(dumps.path().c_str(), "bare", nullptr, true));
    unsetenv("KORVANE_TEST_REPORTER_RECORD");
    EXPECT_FALSE(pathExists(dumps.path() + "/bare.extra"));
    EXPECT_TRUE(waitForFile(record));
    while (waitpid(-1, nullptr, WNOHANG) > 0) { }
}
