#include <unistd.h>

#include <gtest/gtest.h>

#include "qtutf8codec.h"
#include "scopedcodec.h"
#include "scopedworkingdirectory.h"
#include "tempdirectory.h"
#include "utf8.h"

namespace {

// Runs each test with a QtUtf8Codec installed, as the application does.
class QtUtf8CodecInstalled : public ::testing::Test
{
protected:
    QtUtf8Codec m_codec;
    ScopedCodec m_scope {&m_codec};
};

const std::string kUpperUmlauts = "\xC3\x84\xC3\x96\xC3\x9C"; // ÄÖÜ
const std::string kLowerUmlauts = "\xC3\xA4\xC3\xB6\xC3\xBC"; // äöü
const std::string kGroesse = "Gr\xC3\xB6\xC3\x9F"
                             "e"; // Größe

} // namespace

TEST(QtUtf8Codec, SetCodecReturnsTheInstalledQtCodec)
{
    QtUtf8Codec codec;
    utf8::Utf8Codec* const original = utf8::setCodec(&codec);
    EXPECT_EQ(utf8::setCodec(original), &codec);
}

// --- case mapping ------------------------------------------------------------

TEST_F(QtUtf8CodecInstalled, ToLowerLowersUpperCaseLettersOutsideAscii)
{
    EXPECT_EQ(utf8::toLower(kUpperUmlauts + " ABC"), kLowerUmlauts + " abc");
}

TEST_F(QtUtf8CodecInstalled, ToUpperRaisesLowerCaseLettersOutsideAscii)
{
    EXPECT_EQ(utf8::toUpper(kLowerUmlauts + " abc"), kUpperUmlauts + " ABC");
}

TEST_F(QtUtf8CodecInstalled, ToUpperUsesFullCaseMapping)
{
    // Sharp s has no single upper-case letter: it becomes "SS".
    EXPECT_EQ(utf8::toUpper("stra\xC3\x9F"
                            "e"),
        "STRASSE");
}

TEST_F(QtUtf8CodecInstalled, CaseMappingWorksOnOtherScripts)
{
    EXPECT_EQ(utf8::toLower("\xCE\xA9\xD0\x96"), "\xCF\x89\xD0\xB6"); // ΩЖ -> ωж
    EXPECT_EQ(utf8::toUpper("\xCF\x89\xD0\xB6"), "\xCE\xA9\xD0\x96");
}

TEST_F(QtUtf8CodecInstalled, CaseMappingOfEmptyTextIsEmpty)
{
    EXPECT_EQ(utf8::toLower(""), "");
    EXPECT_EQ(utf8::toUpper(""), "");
}

// --- native names ------------------------------------------------------------

TEST_F(QtUtf8CodecInstalled, ToNativeEncodesFileNamesAsUtf8)
{
    EXPECT_EQ(utf8::toNative("/tmp/" + kGroesse + ".txt"), "/tmp/" + kGroesse + ".txt");
}

TEST_F(QtUtf8CodecInstalled, FromNativeDecodesUtf8FileNames)
{
    EXPECT_EQ(utf8::fromNative("/tmp/" + kGroesse + ".txt"), "/tmp/" + kGroesse + ".txt");
}

TEST_F(QtUtf8CodecInstalled, FromNativeReplacesBytesThatAreNotUtf8)
{
    EXPECT_EQ(utf8::fromNative("a\xFF"), "a\xEF\xBF\xBD");
}

// --- absolutePath ------------------------------------------------------------

TEST_F(QtUtf8CodecInstalled, AbsolutePathOfAnAbsolutePathIsOnlyCleaned)
{
    EXPECT_EQ(utf8::absolutePath("/no/such/../dir/./x.txt", "/elsewhere", true), "/no/dir/x.txt");
    EXPECT_EQ(utf8::absolutePath("/no/such/x.txt", "/elsewhere/base.txt", false), "/no/such/x.txt");
}

TEST_F(QtUtf8CodecInstalled, AbsolutePathWithAFileBaseResolvesAgainstTheFilesDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("docs"));
    ASSERT_TRUE(dir.writeFile("docs/base.txt"));
    EXPECT_EQ(utf8::absolutePath("other.txt", dir.path("docs/base.txt"), false), dir.path("docs/other.txt"));
}

TEST_F(QtUtf8CodecInstalled, AbsolutePathWithADirectoryBaseResolvesInsideIt)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("docs"));
    EXPECT_EQ(utf8::absolutePath("new.txt", dir.path("docs"), true), dir.path("docs/new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", dir.path("docs"), false), dir.path("new.txt"));
}

TEST_F(QtUtf8CodecInstalled, AbsolutePathCleansDotsAndDotDots)
{
    TempDirectory dir;
    EXPECT_EQ(utf8::absolutePath("a/./b/../c.txt", dir.path(), true), dir.path("a/c.txt"));
    EXPECT_EQ(utf8::absolutePath("a//c.txt", dir.path() + "/", true), dir.path("a/c.txt"));
}

TEST_F(QtUtf8CodecInstalled, AbsolutePathWithRelativeOrEmptyBaseUsesTheWorkingDirectory)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::absolutePath("new.txt", "", true), dir.path("new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", ".", true), dir.path("new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", "base.txt", false), dir.path("new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", "sub/inner", true), dir.path("sub/inner/new.txt"));
    EXPECT_EQ(utf8::absolutePath("new.txt", "sub/base.txt", false), dir.path("sub/new.txt"));
}

TEST_F(QtUtf8CodecInstalled, AbsolutePathDoesNotResolveSymbolicLinks)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("real"));
    ASSERT_TRUE(dir.writeFile("real/f.txt"));
    ASSERT_EQ(::symlink("real", dir.path("link").c_str()), 0);
    EXPECT_EQ(utf8::absolutePath("link/f.txt", dir.path(), true), dir.path("link/f.txt"));
}

TEST_F(QtUtf8CodecInstalled, AbsolutePathKeepsBackslashesAsPartOfTheName)
{
    EXPECT_EQ(utf8::absolutePath("a\\b.txt", "/no/such", true), "/no/such/a\\b.txt");
}

TEST_F(QtUtf8CodecInstalled, AbsolutePathKeepsNonAsciiNames)
{
    EXPECT_EQ(utf8::absolutePath(kGroesse + ".txt", "/no/" + kGroesse, true),
        "/no/" + kGroesse + "/" + kGroesse + ".txt");
}

// --- relativePath ------------------------------------------------------------

TEST_F(QtUtf8CodecInstalled, RelativePathOfASiblingDirectoryClimbsOnce)
{
    EXPECT_EQ(utf8::relativePath("/no/such/a/x.txt", "/no/such/b", true), "../a/x.txt");
}

TEST_F(QtUtf8CodecInstalled, RelativePathWithAFileBaseIsRelativeToItsDirectory)
{
    EXPECT_EQ(utf8::relativePath("/no/such/a/x.txt", "/no/such/a/base.txt", false), "x.txt");
    EXPECT_EQ(utf8::relativePath("/no/such/a/x.txt", "/no/such/a/base.txt", true), "../x.txt");
}

TEST_F(QtUtf8CodecInstalled, RelativePathOfAnAncestorHasNoTrailingSlash)
{
    EXPECT_EQ(utf8::relativePath("/no", "/no/such/dir", true), "../..");
}

TEST_F(QtUtf8CodecInstalled, RelativePathOfThePathEqualToTheBaseIsDot)
{
    EXPECT_EQ(utf8::relativePath("/no/such", "/no/such", true), ".");
    EXPECT_EQ(utf8::relativePath("/no/such", "/no/such/base.txt", false), ".");
}

TEST_F(QtUtf8CodecInstalled, RelativePathDoesNotResolveSymbolicLinks)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("real"));
    ASSERT_TRUE(dir.writeFile("real/f.txt"));
    ASSERT_EQ(::symlink("real", dir.path("link").c_str()), 0);
    EXPECT_EQ(utf8::relativePath(dir.path("link/f.txt"), dir.path("real"), true), "../link/f.txt");
}

TEST_F(QtUtf8CodecInstalled, RelativePathOfARelativePathIsOnlyCleaned)
{
    // QDir leaves a relative file name as it is, whatever the working directory.
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    ScopedWorkingDirectory cwd(dir.path());
    EXPECT_EQ(utf8::relativePath("a/./b/../x.txt", dir.path("b"), true), "a/x.txt");
}

// --- operations that stay with the C library ---------------------------------

TEST_F(QtUtf8CodecInstalled, CurrentDirectoryAndRealPathStillUseTheCLibrary)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("real"));
    ASSERT_EQ(::symlink("real", dir.path("link").c_str()), 0);
    ScopedWorkingDirectory cwd(dir.path("link"));
    EXPECT_EQ(utf8::currentDirectory(), dir.path("real"));
    EXPECT_EQ(utf8::realPath(dir.path("link")), dir.path("real"));
}

TEST_F(QtUtf8CodecInstalled, MakeDirectoryAndRemoveFileWorkWithNonAsciiNames)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_TRUE(utf8::makeDirectory(dir.path(kGroesse)));
    EXPECT_TRUE(isDirectory(dir.path(kGroesse)));
    EXPECT_FALSE(utf8::makeDirectory(dir.path(kGroesse)));
    ASSERT_TRUE(dir.writeFile(kGroesse + "/" + kGroesse + ".txt", "x"));
    EXPECT_FALSE(utf8::removeFile(dir.path(kGroesse)));
    EXPECT_TRUE(utf8::removeFile(dir.path(kGroesse + "/" + kGroesse + ".txt")));
    EXPECT_TRUE(utf8::removeFile(dir.path(kGroesse)));
    EXPECT_FALSE(pathExists(dir.path(kGroesse)));
    EXPECT_FALSE(utf8::removeFile(dir.path(kGroesse)));
}

TEST_F(QtUtf8CodecInstalled, MakeDirectoryFailsWithoutTheParent)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_FALSE(utf8::makeDirectory(dir.path("missing/" + kGroesse)));
}
