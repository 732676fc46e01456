#include <ios>
#include <string>

#include <gtest/gtest.h>

#include "fakecodec.h"
#include "fstream.h"
#include "qtutf8codec.h"
#include "scopedcodec.h"
#include "tempdirectory.h"

namespace {

const std::string kGroesseTxt = "Gr\xC3\xB6\xC3\x9F"
                                "e.txt"; // Größe.txt

// The stream tests run twice: without a codec and with the Qt codec.
class Utf8Streams : public ::testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        utf8::setCodec(GetParam() ? &m_codec : nullptr);
    }

    std::string path(const std::string& name) const { return m_dir.path(name); }

    TempDirectory m_dir;
    QtUtf8Codec m_codec;
    ScopedCodec m_scope {nullptr};
};

std::string readAll(std::istream& in)
{
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Codec, Utf8Streams, ::testing::Values(false, true), [](const ::testing::TestParamInfo<bool>& info) {
        return info.param ? std::string("QtCodec") : std::string("NoCodec");
    });

// --- ifstream ------------------------------------------------------------------

TEST_P(Utf8Streams, IfstreamOnAMissingFileFailsWithoutException)
{
    EXPECT_NO_THROW({
        utf8::ifstream in(path("missing.txt").c_str());
        EXPECT_TRUE(in.fail());
        EXPECT_FALSE(in.is_open());
    });
    EXPECT_NO_THROW({
        utf8::ifstream in;
        in.open(path("missing.txt").c_str());
        EXPECT_TRUE(in.fail());
        EXPECT_FALSE(in.is_open());
    });
}

TEST_P(Utf8Streams, IfstreamReadsAFile)
{
    ASSERT_TRUE(m_dir.writeFile("in.txt", "line one\nline two\n"));
    utf8::ifstream in(path("in.txt").c_str());
    ASSERT_TRUE(in.is_open());
    EXPECT_TRUE(in.good());
    std::string line;
    ASSERT_TRUE(std::getline(in, line));
    EXPECT_EQ(line, "line one");
}

TEST_P(Utf8Streams, IfstreamAddsInToTheMode)
{
    ASSERT_TRUE(m_dir.writeFile("in.txt", "data"));
    // binary alone is no valid mode for a file buffer; "in" makes it one.
    utf8::ifstream in(path("in.txt").c_str(), std::ios_base::binary);
    ASSERT_TRUE(in.is_open());
    EXPECT_EQ(readAll(in), "data");
}

TEST_P(Utf8Streams, IfstreamOpenClearsAnEarlierFailure)
{
    ASSERT_TRUE(m_dir.writeFile("in.txt", "data"));
    utf8::ifstream in(path("missing.txt").c_str());
    ASSERT_TRUE(in.fail());
    in.open(path("in.txt").c_str());
    EXPECT_TRUE(in.good());
    EXPECT_EQ(readAll(in), "data");
}

TEST_P(Utf8Streams, FailedOpenAddsFailbitToTheState)
{
    utf8::ifstream in;
    in.setstate(std::ios_base::eofbit);
    in.open(path("missing.txt").c_str());
    EXPECT_TRUE(in.eof());
    EXPECT_TRUE(in.fail());
}

TEST_P(Utf8Streams, IfstreamOpensANonAsciiName)
{
    ASSERT_TRUE(m_dir.writeFile(kGroesseTxt, "umlaut"));
    utf8::ifstream in(path(kGroesseTxt).c_str());
    ASSERT_TRUE(in.is_open());
    EXPECT_EQ(readAll(in), "umlaut");
}

// --- ofstream ------------------------------------------------------------------

TEST_P(Utf8Streams, OfstreamWritesAFile)
{
    {
        utf8::ofstream out(path("out.txt").c_str());
        ASSERT_TRUE(out.is_open());
        EXPECT_TRUE(out.good());
        out << "written";
    }
    EXPECT_EQ(readFile(path("out.txt")), "written");
}

TEST_P(Utf8Streams, OfstreamAddsOutToTheMode)
{
    ASSERT_TRUE(m_dir.writeFile("out.txt", "old content"));
    {
        // trunc alone is no valid mode for a file buffer; "out" makes it one.
        utf8::ofstream out(path("out.txt").c_str(), std::ios_base::trunc);
        ASSERT_TRUE(out.is_open());
        out << "new";
    }
    EXPECT_EQ(readFile(path("out.txt")), "new");
    {
        utf8::ofstream out;
        out.open(path("out.txt").c_str(), std::ios_base::app);
        ASSERT_TRUE(out.is_open());
        out << "+more";
    }
    EXPECT_EQ(readFile(path("out.txt")), "new+more");
}

TEST_P(Utf8Streams, OfstreamInAMissingDirectoryFailsWithoutException)
{
    EXPECT_NO_THROW({
        utf8::ofstream out(path("missing/out.txt").c_str());
        EXPECT_TRUE(out.fail());
        EXPECT_FALSE(out.is_open());
    });
    EXPECT_NO_THROW({
        utf8::ofstream out(64);
        out.open(path("missing/out.txt").c_str());
        EXPECT_TRUE(out.fail());
    });
    EXPECT_FALSE(pathExists(path("missing")));
}

TEST_P(Utf8Streams, OfstreamOpenClearsAnEarlierFailure)
{
    utf8::ofstream out(path("missing/out.txt").c_str());
    ASSERT_TRUE(out.fail());
    out.open(path("out.txt").c_str());
    EXPECT_TRUE(out.good());
}

TEST_P(Utf8Streams, OfstreamWithoutABufferSizeKeepsTheLibraryBuffer)
{
    utf8::ofstream out(path("out.txt").c_str());
    ASSERT_TRUE(out.is_open());
    out << std::string(100, 'x');
    // The standard buffer holds far more than 100 bytes.
    EXPECT_EQ(fileSize(path("out.txt")), 0);
    out.close();
    EXPECT_EQ(fileSize(path("out.txt")), 100);
}

TEST_P(Utf8Streams, OfstreamCollectsWritesInABufferOfTheGivenSize)
{
    utf8::ofstream out(path("out.txt").c_str(), std::ios_base::out, 16);
    ASSERT_TRUE(out.is_open());
    // One byte at a time, so every byte passes through the buffer (large
    // writes may go to the file directly).
    for (int i = 0; i < 10; ++i)
        out.put('a');
    EXPECT_EQ(fileSize(path("out.txt")), 0);
    for (int i = 0; i < 90; ++i)
        out.put('b');
    // A 16-byte buffer cannot hold 100 bytes: most of them have reached the file.
    const long long written = fileSize(path("out.txt"));
    EXPECT_GE(written, 100 - 16);
    EXPECT_LT(written, 100);
    out.close();
    EXPECT_EQ(readFile(path("out.txt")), std::string(10, 'a') + std::string(90, 'b'));
}

TEST_P(Utf8Streams, OfstreamKeepsItsBufferAcrossReopening)
{
    utf8::ofstream out(32);
    out.open(path("first.txt").c_str());
    ASSERT_TRUE(out.is_open());
    out << "first";
    out.close();
    out.open(path("second.txt").c_str());
    ASSERT_TRUE(out.is_open());
    for (int i = 0; i < 200; ++i)
        out.put('z');
    EXPECT_GE(fileSize(path("second.txt")), 200 - 32);
    out.close();
    EXPECT_EQ(readFile(path("first.txt")), "first");
    EXPECT_EQ(readFile(path("second.txt")), std::string(200, 'z'));
}

TEST_P(Utf8Streams, OfstreamDestructorWritesWhatIsLeftInItsBuffer)
{
    {
        utf8::ofstream out(path("out.txt").c_str(), std::ios_base::out, 4096);
        ASSERT_TRUE(out.is_open());
        out << "held in the buffer";
        EXPECT_EQ(fileSize(path("out.txt")), 0);
    }
    EXPECT_EQ(readFile(path("out.txt")), "held in the buffer");
}

TEST_P(Utf8Streams, OfstreamCreatesANonAsciiName)
{
    {
        utf8::ofstream out(path(kGroesseTxt).c_str());
        ASSERT_TRUE(out.is_open());
        out << "umlaut";
    }
    // On disk the name is the UTF-8 bytes.
    EXPECT_EQ(readFile(m_dir.path()
                  + "/Gr\xC3\xB6\xC3\x9F"
                    "e.txt"),
        "umlaut");
    utf8::ifstream in(path(kGroesseTxt).c_str());
    EXPECT_EQ(readAll(in), "umlaut");
}

// --- fstream -------------------------------------------------------------------

TEST_P(Utf8Streams, FstreamDefaultModeReadsAndWritesAnExistingFile)
{
    ASSERT_TRUE(m_dir.writeFile("rw.txt", "abcdef"));
    {
        utf8::fstream io(path("rw.txt").c_str());
        ASSERT_TRUE(io.is_open());
        std::string word;
        io >> word;
        EXPECT_EQ(word, "abcdef");
        io.clear();
        io.seekp(0);
        io << "XY";
    }
    EXPECT_EQ(readFile(path("rw.txt")), "XYcdef");
}

TEST_P(Utf8Streams, FstreamPassesTheModeUnchanged)
{
    ASSERT_TRUE(m_dir.writeFile("rw.txt", "abc"));
    // Nothing is added: binary alone cannot open a file buffer.
    utf8::fstream io(path("rw.txt").c_str(), std::ios_base::binary);
    EXPECT_TRUE(io.fail());
    EXPECT_FALSE(io.is_open());
    // "in" alone opens for reading only.
    io.open(path("rw.txt").c_str(), std::ios_base::in);
    ASSERT_TRUE(io.is_open());
    EXPECT_TRUE(io.good());
    io << "no";
    EXPECT_TRUE(io.bad());
}

TEST_P(Utf8Streams, FstreamOnAMissingFileFailsUnlessTruncating)
{
    EXPECT_NO_THROW({
        utf8::fstream io(path("missing.txt").c_str());
        EXPECT_TRUE(io.fail());
    });
    utf8::fstream io;
    io.open(path(kGroesseTxt).c_str(), std::ios_base::in | std::ios_base::out | std::ios_base::trunc);
    ASSERT_TRUE(io.is_open());
    EXPECT_TRUE(io.good());
    io << "created";
    io.close();
    EXPECT_EQ(readFile(path(kGroesseTxt)), "created");
}

// --- the path goes through the codec ----------------------------------------------

TEST(Utf8StreamsWithCodec, StreamsOpenTheNativePathOfTheCodec)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.isValid());
    FakeCodec codec(dir.path() + "/native-");
    ScopedCodec scope(&codec);
    {
        utf8::ofstream out("a.txt");
        ASSERT_TRUE(out.is_open());
        out << "via codec";
    }
    EXPECT_EQ(readFile(dir.path("native-a.txt")), "via codec");
    utf8::ifstream in("a.txt");
    EXPECT_EQ(readAll(in), "via codec");
    utf8::fstream io("a.txt");
    EXPECT_TRUE(io.is_open());
}
