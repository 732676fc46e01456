#include <clocale>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include "fakecodec.h"
#include "scopedcodec.h"
#include "scopedworkingdirectory.h"
#include "tempdirectory.h"
#include "utf8.h"

namespace {

// Every test here runs without a codec unless it installs one itself.
class Utf8NoCodec : public ::testing::Test
{
protected:
    ScopedCodec m_noCodec {nullptr};
};

// Switches LC_CTYPE for one test and restores it afterwards.
class ScopedCtypeLocale final
{
public:
    explicit ScopedCtypeLocale(const char* name)
        : m_previous(std::setlocale(LC_CTYPE, nullptr))
    {
        m_active = std::setlocale(LC_CTYPE, name) != nullptr;
    }
    ~ScopedCtypeLocale() { std::setlocale(LC_CTYPE, m_previous.c_str()); }

    bool isActive() const { return m_active; }

    ScopedCtypeLocale(const ScopedCtypeLocale&) = delete;
    ScopedCtypeLocale& operator=(const ScopedCtypeLocale&) = delete;

private:
    std::string m_previous;
    bool m_active = false;
};

const std::string kUpperUmlauts = "\xC3\x84\xC3\x96\xC3\x9C"; // ÄÖÜ
const std::string kLowerUmlauts = "\xC3\xA4\xC3\xB6\xC3\xBC"; // äöü

} // namespace

// --- setCodec -------------------------------------------------------------

TEST(Utf8SetCodec, ReturnsThePreviouslyInstalledCodec)
{
    FakeCodec first;
    FakeCodec second;
    utf8::Utf8Codec* const original = utf8::setCodec(&first);
    EXPECT_EQ(utf8::setCodec(&second), &first);
    EXPECT_EQ(utf8::setCodec(nullptr), &second);
    EXPECT_EQ(utf8::setCodec(nullptr), nullptr);
    utf8::setCodec(original);
}

TEST(Utf8SetCodec, NullUninstallsTheCodec)
{
    FakeCodec codec;
    ScopedCodec scope(&codec);
    EXPECT_EQ(utf8::toLower("ABC"), "lower:ABC");
    utf8::setCodec(nullptr);
    EXPECT_EQ(utf8::toLower("ABC"), "abc");
}

// --- operations that go through an installed codec ------------------------

TEST(Utf8WithCodec, ToLowerAndToUpperUseTheCodec)
{
    FakeCodec codec;
    ScopedCodec scope(&codec);
    EXPECT_EQ(utf8::toLower("AbC"), "lower:AbC");
    EXPECT_EQ(utf8::toUpper("AbC"), "upper:AbC");
}

TEST(Utf8WithCodec, ToNativeAndFromNativeUseTheCodec)
{
    FakeCodec codec;
    ScopedCodec scope(&codec);
    EXPECT_EQ(utf8::toNative("dir/file"), "native:dir/file");
    EXPECT_EQ(utf8::fromNative("dir/file"), "utf8:dir/file");
}

TEST(Utf8WithCodec, AbsolutePathPassesItsArgumentsToTheCodec)
{
    FakeCodec codec;
    ScopedCodec scope(&codec);
    EXPECT_EQ(
        utf8::absolutePath("/already/absolute", "base", true), "absolute:/already/absolute|base|directory");
    EXPECT_EQ(utf8::absolutePath("a\\b", "dir/file.txt", false), "absolute:a\\b|dir/file.txt|file");
}

TEST(Utf8WithCodec, RelativePathPassesItsArgumentsToTheCodec)
{
    FakeCodec codec;
    ScopedCodec scope(&codec);
    EXPECT_EQ(utf8::relativePath("/a/b", "/a", true), "relative:/a/b|/a|directory");
    EXPECT_EQ(utf8::relativePath("/a/b", "/a/c.txt", false), "relative:/a/b|/a/c.txt|file");
}

TEST(Utf8WithCodec, CurrentDirectoryAndRealPathDoNotUseTheCodec)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    FakeCodec codec;
    ScopedCodec scope(&codec);
    EXPECT_EQ(utf8::currentDirectory(), dir.path());
    EXPECT_EQ(utf8::realPath(dir.path() + "/."), dir.path());
}

TEST(Utf8WithCodec, ToNarrowAndToWideDoNotUseTheCodec)
{
    FakeCodec codec;
    ScopedCodec scope(&codec);
    EXPECT_EQ(utf8::toNarrow(L"plain"), "plain");
    EXPECT_EQ(utf8::toWide("plain"), L"plain");
}

TEST(Utf8WithCodec, MakeDirectoryAndRemoveFileUseTheNativePathOfTheCodec)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    FakeCodec codec(dir.path() + "/");
    ScopedCodec scope(&codec);

    EXPECT_TRUE(utf8::makeDirectory("made"));
    EXPECT_TRUE(isDirectory(dir.path("made")));
    EXPECT_TRUE(utf8::removeFile("made"));
    EXPECT_FALSE(pathExists(dir.path("made")));
}

// --- case mapping without a codec -----------------------------------------

TEST_F(Utf8NoCodec, ToLowerMapsAsciiLetters)
{
    EXPECT_EQ(utf8::toLower("Hello, WORLD 42"), "hello, world 42");
}

TEST_F(Utf8NoCodec, ToUpperMapsAsciiLetters)
{
    EXPECT_EQ(utf8::toUpper("Hello, world 42"), "HELLO, WORLD 42");
}

TEST_F(Utf8NoCodec, ToLowerLeavesTheBytesOfNonAsciiLettersUnchanged)
{
    EXPECT_EQ(utf8::toLower(kUpperUmlauts + " ABC"), kUpperUmlauts + " abc");
}

TEST_F(Utf8NoCodec, ToUpperLeavesTheBytesOfNonAsciiLettersUnchanged)
{
    EXPECT_EQ(utf8::toUpper(kLowerUmlauts + " abc"), kLowerUmlauts + " ABC");
}

TEST_F(Utf8NoCodec, CaseMappingStaysByteWiseUnderAUtf8Locale)
{
    ScopedCtypeLocale locale("C.UTF-8");
    ASSERT_TRUE(locale.isActive());
    EXPECT_EQ(utf8::toLower(kUpperUmlauts + "X"), kUpperUmlauts + "x");
    EXPECT_EQ(utf8::toUpper(kLowerUmlauts + "x"), kLowerUmlauts + "X");
}

// --- native paths without a codec -----------------------------------------

TEST_F(Utf8NoCodec, ToNativeReturnsThePathUnchanged)
{
    EXPECT_EQ(utf8::toNative("dir/Gr\xC3\xB6\xC3\x9F"
                             "e.txt"),
        "dir/Gr\xC3\xB6\xC3\x9F"
        "e.txt");
    EXPECT_EQ(utf8::toNative("bad\xFF"), "bad\xFF");
}

TEST_F(Utf8NoCodec, FromNativeReturnsThePathUnchanged)
{
    EXPECT_EQ(utf8::fromNative("dir/Gr\xC3\xB6\xC3\x9F"
                               "e.txt"),
        "dir/Gr\xC3\xB6\xC3\x9F"
        "e.txt");
    EXPECT_EQ(utf8::fromNative("bad\xFF"), "bad\xFF");
}

// --- toNarrow / toWide ------------------------------------------------------

TEST(Utf8Conversion, RoundTripsUnderAUtf8Locale)
{
    ScopedCtypeLocale locale("C.UTF-8");
    ASSERT_TRUE(locale.isActive());
    const std::wstring wide = L"Gr\u00F6\u00DFe \u20AC \U0001D11E";
    const std::string narrow = "Gr\xC3\xB6\xC3\x9F"
                               "e \xE2\x82\xAC \xF0\x9D\x84\x9E";
    EXPECT_EQ(utf8::toNarrow(wide), narrow);
    EXPECT_EQ(utf8::toWide(narrow), wide);
    EXPECT_EQ(utf8::toWide(utf8::toNarrow(wide)), wide);
}

TEST(Utf8Conversion, EmptyTextGivesEmptyText)
{
    ScopedCtypeLocale locale("C.UTF-8");
    ASSERT_TRUE(locale.isActive());
    EXPECT_EQ(utf8::toNarrow(L""), "");
    EXPECT_EQ(utf8::toWide(""), L"");
}

TEST(Utf8Conversion, AsciiRoundTripsUnderTheCLocale)
{
    ScopedCtypeLocale locale("C");
    ASSERT_TRUE(locale.isActive());
    EXPECT_EQ(utf8::toNarrow(L"abc 123"), "abc 123");
    EXPECT_EQ(utf8::toWide("abc 123"), L"abc 123");
}

TEST(Utf8Conversion, FollowsTheLocaleSetWithSetlocale)
{
    const std::wstring wide = L"\u00E4";
    {
        ScopedCtypeLocale locale("C.UTF-8");
        ASSERT_TRUE(locale.isActive());
        EXPECT_EQ(utf8::toNarrow(wide), "\xC3\xA4");
    }
    {
        ScopedCtypeLocale locale("C");
        ASSERT_TRUE(locale.isActive());
        EXPECT_EQ(utf8::toNarrow(wide), "");
    }
}

TEST(Utf8Conversion, ToNarrowOfTextTheLocaleCannotEncodeIsEmpty)
{
    {
        ScopedCtypeLocale locale("C");
        ASSERT_TRUE(locale.isActive());
        EXPECT_EQ(utf8::toNarrow(L"Gr\u00F6\u00DFe"), "");
    }
    {
        // A lone surrogate is no character in UTF-8 either; the readable prefix
        // is not returned.
        ScopedCtypeLocale locale("C.UTF-8");
        ASSERT_TRUE(locale.isActive());
        std::wstring text = L"abc";
        text += static_cast<wchar_t>(0xD800);
        EXPECT_EQ(utf8::toNarrow(text), "");
    }
}

TEST(Utf8Conversion, ToWideOfBytesTheLocaleCannotDecodeIsEmpty)
{
    {
        ScopedCtypeLocale locale("C.UTF-8");
        ASSERT_TRUE(locale.isActive());
        EXPECT_EQ(utf8::toWide("abc\xFF"), L"");
        EXPECT_EQ(utf8::toWide("\xC3"), L"");
    }
    {
        ScopedCtypeLocale locale("C");
        ASSERT_TRUE(locale.isActive());
        EXPECT_EQ(utf8::toWide("Gr\xC3\xB6\xC3\x9F"
                               "e"),
            L"");
    }
}

// --- currentDirectory / realPath -------------------------------------------

TEST_F(Utf8NoCodec, CurrentDirectoryIsTheWorkingDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::currentDirectory(), dir.path());
}

TEST_F(Utf8NoCodec, CurrentDirectoryHandlesLongPaths)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    const std::string name(200, 'd');
    std::string deep = dir.path();
    for (int i = 0; i < 4; ++i) {
        deep += "/" + name;
        ASSERT_TRUE(utf8::makeDirectory(deep));
    }
    ScopedWorkingDirectory cwd(deep);
    EXPECT_EQ(utf8::currentDirectory(), deep);
}

TEST_F(Utf8NoCodec, CurrentDirectoryIsEmptyWhenTheWorkingDirectoryWasRemoved)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("gone"));
    ScopedWorkingDirectory cwd(dir.path("gone"));
    ASSERT_EQ(::rmdir(dir.path("gone").c_str()), 0);
    EXPECT_EQ(utf8::currentDirectory(), "");
}

TEST_F(Utf8NoCodec, RealPathResolvesSymbolicLinksDotsAndDotDots)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("real"));
    ASSERT_TRUE(dir.writeFile("real/f.txt"));
    ASSERT_EQ(::symlink("real", dir.path("link").c_str()), 0);
    EXPECT_EQ(utf8::realPath(dir.path("link/./../link/f.txt")), dir.path("real/f.txt"));
}

TEST_F(Utf8NoCodec, RealPathOfAMissingFileReturnsTheInputUnchanged)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    const std::string missing = dir.path("missing/../x/./y.txt");
    EXPECT_EQ(utf8::realPath(missing), missing);
    EXPECT_EQ(utf8::realPath(""), "");
}

// --- absolutePath without a codec ------------------------------------------

TEST_F(Utf8NoCodec, AbsolutePathOfAnAbsolutePathReturnsItUntouchedEvenWithDotDot)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("a"));
    // The path exists, yet it is neither resolved nor cleaned.
    const std::string path = dir.path("a/../a/./");
    EXPECT_EQ(utf8::absolutePath(path, "/somewhere/else", true), path);
    EXPECT_EQ(utf8::absolutePath("/x/../y", "", false), "/x/../y");
}

TEST_F(Utf8NoCodec, AbsolutePathWithAFileBaseResolvesAgainstTheFilesDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("docs"));
    ASSERT_TRUE(dir.writeFile("docs/base.txt"));
    ASSERT_TRUE(dir.writeFile("docs/other.txt"));
    EXPECT_EQ(utf8::absolutePath("other.txt", dir.path("docs/base.txt"), false), dir.path("docs/other.txt"));
    // The same when the target does not exist: then the joined text is returned.
    EXPECT_EQ(utf8::absolutePath("new.txt", dir.path("docs/base.txt"), false), dir.path("docs/new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathWithADirectoryBaseResolvesInsideIt)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("docs"));
    EXPECT_EQ(utf8::absolutePath("new.txt", dir.path("docs"), true), dir.path("docs/new.txt"));
    // The same base taken as a file means its parent.
    EXPECT_EQ(utf8::absolutePath("new.txt", dir.path("docs"), false), dir.path("new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathDoesNotDoubleTheSeparatorAfterABaseEndingInSlash)
{
    EXPECT_EQ(utf8::absolutePath("new.txt", "/no/such/dir/", true), "/no/such/dir/new.txt");
}

TEST_F(Utf8NoCodec, AbsolutePathWithAnEmptyBaseUsesTheWorkingDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::absolutePath("new.txt", "", true), dir.path("new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", "", false), dir.path("new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathWithDotBaseUsesTheWorkingDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    // Not "<cwd>/./new.txt": the "." base adds nothing.
    EXPECT_EQ(utf8::absolutePath("new.txt", ".", true), dir.path("new.txt"));
    // As a file, "./x.txt" lies in ".".
    EXPECT_EQ(utf8::absolutePath("new.txt", "./x.txt", false), dir.path("new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathWithAFileBaseWithoutSlashUsesTheWorkingDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::absolutePath("new.txt", "base.txt", false), dir.path("new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathWithARelativeBaseStartsFromTheWorkingDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::absolutePath("new.txt", "sub/inner", true), dir.path("sub/inner/new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", "sub/inner/base.txt", false), dir.path("sub/inner/new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathWithABaseFileDirectlyUnderTheRootUsesTheWorkingDirectory)
{
    // Cutting "/base.txt" at its last "/" leaves an empty base.
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::absolutePath("new.txt", "/base.txt", false), dir.path("new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathTurnsBackslashesIntoSlashes)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::absolutePath("sub\\new.txt", dir.path(), true), dir.path("sub/new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", "sub\\inner", true), dir.path("sub/inner/new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", "sub\\inner\\base.txt", false), dir.path("sub/inner/new.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathWithAnEmptyPathIsTheBaseDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("docs"));
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::absolutePath("", dir.path("docs"), true), dir.path("docs"));
    EXPECT_EQ(utf8::absolutePath("", "", true), dir.path());
}

TEST_F(Utf8NoCodec, AbsolutePathResolvesSymbolicLinksWhenTheFileExists)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("real"));
    ASSERT_TRUE(dir.writeFile("real/f.txt"));
    ASSERT_EQ(::symlink("real", dir.path("link").c_str()), 0);
    EXPECT_EQ(utf8::absolutePath("link/f.txt", dir.path(), true), dir.path("real/f.txt"));
    EXPECT_EQ(utf8::absolutePath("f.txt", dir.path("link"), true), dir.path("real/f.txt"));
    EXPECT_EQ(utf8::absolutePath("../real/./f.txt", dir.path("link/x.txt"), false), dir.path("real/f.txt"));
}

TEST_F(Utf8NoCodec, AbsolutePathKeepsTheJoinedTextWhenTheFileDoesNotExist)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_EQ(utf8::absolutePath("missing/../x.txt", dir.path(), true), dir.path("missing/../x.txt"));
}

// --- relativePath without a codec ------------------------------------------

TEST_F(Utf8NoCodec, RelativePathOfASiblingDirectoryClimbsOnce)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("a"));
    ASSERT_TRUE(dir.makeDirectory("b"));
    ASSERT_TRUE(dir.writeFile("a/x.txt"));
    EXPECT_EQ(utf8::relativePath(dir.path("a/x.txt"), dir.path("b"), true), "../a/x.txt");
}

TEST_F(Utf8NoCodec, RelativePathWithAFileBaseIsRelativeToItsDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("a"));
    ASSERT_TRUE(dir.writeFile("a/x.txt"));
    ASSERT_TRUE(dir.writeFile("a/base.txt"));
    EXPECT_EQ(utf8::relativePath(dir.path("a/x.txt"), dir.path("a/base.txt"), false), "x.txt");
    // The same base taken as a directory.
    EXPECT_EQ(utf8::relativePath(dir.path("a/x.txt"), dir.path("a/base.txt"), true), "../x.txt");
}

TEST_F(Utf8NoCodec, RelativePathOfADescendantListsItsComponents)
{
    TempDirectory dir;
    EXPECT_EQ(utf8::relativePath(dir.path("a/b/c.txt"), dir.path(), true), "a/b/c.txt");
}

TEST_F(Utf8NoCodec, RelativePathOfAnAncestorClimbsOncePerComponent)
{
    TempDirectory dir;
    EXPECT_EQ(utf8::relativePath(dir.path(), dir.path("a/b"), true), "../../");
}

TEST_F(Utf8NoCodec, RelativePathOfPathsWithNothingInCommonClimbsToTheRoot)
{
    EXPECT_EQ(utf8::relativePath("/no/such/x.txt", "/other/dir", true), "../../no/such/x.txt");
}

TEST_F(Utf8NoCodec, RelativePathOfThePathEqualToTheBaseIsDot)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("a"));
    ASSERT_TRUE(dir.writeFile("a/base.txt"));
    EXPECT_EQ(utf8::relativePath(dir.path("a"), dir.path("a"), true), ".");
    EXPECT_EQ(utf8::relativePath(dir.path("a"), dir.path("a/base.txt"), false), ".");
    EXPECT_EQ(utf8::relativePath("/no/such", "/no/such", true), ".");
}

TEST_F(Utf8NoCodec, RelativePathIgnoresRepeatedAndTrailingSeparators)
{
    // Missing paths are not cleaned by realPath, so the splitting itself is tested.
    EXPECT_EQ(utf8::relativePath("/no//such///x.txt", "/no/such/", true), "x.txt");
    EXPECT_EQ(utf8::relativePath("/no/such/dir//", "/no//such", true), "dir");
    EXPECT_EQ(utf8::relativePath("/no/such//", "/no/such///", true), ".");
    EXPECT_EQ(utf8::relativePath("/no/x.txt", "/no//such//base.txt", false), "../x.txt");
}

TEST_F(Utf8NoCodec, RelativePathTurnsBackslashesIntoSlashes)
{
    EXPECT_EQ(utf8::relativePath("\\no\\such\\a\\x.txt", "\\no\\such\\b", true), "../a/x.txt");
    EXPECT_EQ(utf8::relativePath("/no/such/a/x.txt", "/no\\such\\b\\base.txt", false), "../a/x.txt");
}

TEST_F(Utf8NoCodec, RelativePathResolvesSymbolicLinksFirst)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("real"));
    ASSERT_TRUE(dir.writeFile("real/f.txt"));
    ASSERT_EQ(::symlink("real", dir.path("link").c_str()), 0);
    EXPECT_EQ(utf8::relativePath(dir.path("link/f.txt"), dir.path("real"), true), "f.txt");
    EXPECT_EQ(utf8::relativePath(dir.path("real/f.txt"), dir.path("link"), true), "f.txt");
    EXPECT_EQ(utf8::relativePath(dir.path("real/../real/f.txt"), dir.path("link/./f.txt"), false), "f.txt");
}

TEST_F(Utf8NoCodec, RelativePathOfRelativeMissingPaths)
{
    EXPECT_EQ(utf8::relativePath("no-such/a/x.txt", "no-such/b", true), "../a/x.txt");
}

// --- makeDirectory / removeFile --------------------------------------------

TEST_F(Utf8NoCodec, MakeDirectoryCreatesADirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_TRUE(utf8::makeDirectory(dir.path("new")));
    EXPECT_TRUE(isDirectory(dir.path("new")));
}

TEST_F(Utf8NoCodec, MakeDirectoryFailsWhenItExists)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(dir.makeDirectory("new"));
    EXPECT_FALSE(utf8::makeDirectory(dir.path("new")));
}

TEST_F(Utf8NoCodec, MakeDirectoryFailsWithoutTheParent)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_FALSE(utf8::makeDirectory(dir.path("missing/new")));
    EXPECT_FALSE(pathExists(dir.path("missing")));
}

TEST_F(Utf8NoCodec, MakeDirectoryKeepsTheUtf8Name)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    const std::string name = "Gr\xC3\xB6\xC3\x9F"
                             "e";
    EXPECT_TRUE(utf8::makeDirectory(dir.path(name)));
    EXPECT_TRUE(isDirectory(dir.path(name)));
}

TEST_F(Utf8NoCodec, RemoveFileRemovesAFile)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.writeFile("f.txt", "x"));
    EXPECT_TRUE(utf8::removeFile(dir.path("f.txt")));
    EXPECT_FALSE(pathExists(dir.path("f.txt")));
}

TEST_F(Utf8NoCodec, RemoveFileFailsForAMissingFile)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_FALSE(utf8::removeFile(dir.path("missing.txt")));
}

TEST_F(Utf8NoCodec, RemoveFileRemovesAnEmptyDirectoryButNotAFullOne)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("empty"));
    ASSERT_TRUE(dir.makeDirectory("full"));
    ASSERT_TRUE(dir.writeFile("full/f.txt"));
    EXPECT_TRUE(utf8::removeFile(dir.path("empty")));
    EXPECT_FALSE(pathExists(dir.path("empty")));
    EXPECT_FALSE(utf8::removeFile(dir.path("full")));
    EXPECT_TRUE(pathExists(dir.path("full/f.txt")));
}

TEST_F(Utf8NoCodec, RemoveFileRemovesAUtf8Name)
{
    TempDirectory dir;
    const std::string name = "Gr\xC3\xB6\xC3\x9F"
                             "e.txt";
    ASSERT_TRUE(dir.writeFile(name, "x"));
    EXPECT_TRUE(utf8::removeFile(dir.path(name)));
    EXPECT_FALSE(pathExists(dir.path(name)));
}
