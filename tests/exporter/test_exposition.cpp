#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "exposition.h"

namespace {

std::string label(std::string_view value)
{
    std::string out;
    appendLabelValue(out, value);
    return out;
}

std::string number(double value)
{
    std::string out;
    appendValue(out, value);
    return out;
}

} // namespace

TEST(Exposition, PlainLabelValuesStayAsTheyAre)
{
    EXPECT_EQ(label("/srv/projects/castle-319/castle.kproj"), "/srv/projects/castle-319/castle.kproj");
    EXPECT_EQ(label(""), "");
}

TEST(Exposition, QuoteBackslashAndLineFeedAreEscaped)
{
    EXPECT_EQ(label("a\"b\\c\nd"), "a\\\"b\\\\c\\nd");
    EXPECT_EQ(label("\\\\"), "\\\\\\\\");
    EXPECT_EQ(label("\n"), "\\n");
    // Other control characters are allowed as they are.
    EXPECT_EQ(label("tab\there\r"), "tab\there\r");
}

TEST(Exposition, Utf8NamesStayAsTheyAre)
{
    EXPECT_EQ(label("/projekte/Brücke-Süd/größe.kproj"), "/projekte/Brücke-Süd/größe.kproj");
    EXPECT_EQ(label("測量/ダム.kproj"), "測量/ダム.kproj");
    EXPECT_EQ(label("\xF0\x9F\x93\xB7 camera"), "\xF0\x9F\x93\xB7 camera");
    EXPECT_EQ(label("\xEF\xBF\xBF"), "\xEF\xBF\xBF");
}

TEST(Exposition, BytesThatAreNotUtf8BecomeReplacementCharacters)
{
    const std::string replacement = "\xEF\xBF\xBD";
    // Latin-1 ü, a lone continuation byte, a cut-off sequence at the end.
    EXPECT_EQ(label("Br\xFC"
                    "cke"),
        "Br" + replacement + "cke");
    EXPECT_EQ(label("a\x80z"), "a" + replacement + "z");
    EXPECT_EQ(label("end\xE2\x82"), "end" + replacement + replacement);
    // Overlong forms, surrogates and code points above U+10FFFF.
    EXPECT_EQ(label("\xC0\xAF"), replacement + replacement);
    EXPECT_EQ(label("\xE0\x80\xAF"), replacement + replacement + replacement);
    EXPECT_EQ(label("\xED\xA0\x80"), replacement + replacement + replacement);
    EXPECT_EQ(label("\xF4\x90\x80\x80"), replacement + replacement + replacement + replacement);
    // A quote right after a bad byte is still escaped.
    EXPECT_EQ(label("\xFF\""), replacement + "\\\"");
}

TEST(Exposition, NumbersAreTheShortestTextThatReadsBack)
{
    EXPECT_EQ(number(0.0), "0");
    EXPECT_EQ(number(42.0), "42");
    EXPECT_EQ(number(-2.0), "-2");
    EXPECT_EQ(number(0.5), "0.5");
    EXPECT_EQ(number(0.1), "0.1");
    EXPECT_EQ(number(0.0652173913), "0.0652173913");
    EXPECT_EQ(number(1e21), "1e+21");
    EXPECT_EQ(number(1.0 / 3.0), "0.3333333333333333");
}

TEST(Exposition, InfinitiesAndNanAreSpelledAsTheFormatWants)
{
    EXPECT_EQ(number(std::numeric_limits<double>::infinity()), "+Inf");
    EXPECT_EQ(number(-std::numeric_limits<double>::infinity()), "-Inf");
    EXPECT_EQ(number(std::nan("")), "NaN");
}

TEST(Exposition, IntegersKeepEveryDigit)
{
    std::string out;
    appendValue(out, std::int64_t {4294967295});
    out += ' ';
    appendValue(out, std::int64_t {-2});
    EXPECT_EQ(out, "4294967295 -2");
}

TEST(Exposition, FamilyHeaderHasHelpThenType)
{
    std::string out;
    appendFamily(out, "korvane_up", "gauge", "Whether it worked.");
    EXPECT_EQ(out, "# HELP korvane_up Whether it worked.\n# TYPE korvane_up gauge\n");
}
