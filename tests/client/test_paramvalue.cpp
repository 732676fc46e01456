#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "paramvalue.h"

namespace {

bool pointsInside(const ParamValue& value)
{
    const auto* object = reinterpret_cast<const unsigned char*>(&value);
    const auto* element = static_cast<const unsigned char*>(value.data());
    return element >= object && element < object + sizeof(ParamValue);
}

} // namespace

TEST(ParamValueStorage, EmptyValueIsNoneWithoutData)
{
    const ParamValue value;
    EXPECT_EQ(value.type(), ParamType::None);
    EXPECT_EQ(value.count(), 0u);
    EXPECT_EQ(value.data(), nullptr);
    EXPECT_EQ(value.toString(), "");
    EXPECT_EQ(value.toInt32(), 0);
    EXPECT_TRUE(value.toDoubleVector().empty());
}

TEST(ParamValueStorage, ElementSizesFollowTheTypeCodes)
{
    const std::size_t expected[] = {0, 1, 1, 2, 2, 4, 4, 8, 8, 8, 8, 4, 8, 1};
    for (std::uint32_t code = 0; code < 14; ++code)
        EXPECT_EQ(paramElementSize(static_cast<ParamType>(code)), expected[code]) << code;
    EXPECT_EQ(paramElementSize(static_cast<ParamType>(14)), 0u);
    EXPECT_EQ(static_cast<std::uint32_t>(ParamType::String), 13u);
    EXPECT_EQ(static_cast<std::uint32_t>(ParamType::LongLong), 9u);
}

TEST(ParamValueStorage, SingleNumberLivesInsideTheValue)
{
    const ParamValue value(std::int32_t(42));
    EXPECT_EQ(value.type(), ParamType::Int32);
    EXPECT_EQ(value.count(), 1u);
    EXPECT_TRUE(pointsInside(value));
    EXPECT_EQ(*static_cast<const std::int32_t*>(value.data()), 42);
}

TEST(ParamValueStorage, SeveralNumbersLiveInABuffer)
{
    const ParamValue value(std::vector<double> {1.5, 2.5, 3.5});
    EXPECT_EQ(value.type(), ParamType::Double);
    EXPECT_EQ(value.count(), 3u);
    EXPECT_FALSE(pointsInside(value));
    const auto* elements = static_cast<const double*>(value.data());
    EXPECT_EQ(elements[0], 1.5);
    EXPECT_EQ(elements[2], 3.5);
}

TEST(ParamValueStorage, StringCountsItsTerminatingZero)
{
    const ParamValue value(std::string("abc"));
    EXPECT_EQ(value.type(), ParamType::String);
    EXPECT_EQ(value.count(), 4u);
    EXPECT_FALSE(pointsInside(value));
    EXPECT_EQ(std::memcmp(value.data(), "abc\0", 4), 0);
    EXPECT_EQ(value.toString(), "abc");

    const ParamValue one(std::string("x"));
    EXPECT_FALSE(pointsInside(one));
}

TEST(ParamValueStorage, StringTextEndsAtTheFirstZeroByte)
{
    const ParamValue value(std::string("ab\0cd", 5));
    EXPECT_EQ(value.count(), 6u);
    EXPECT_EQ(value.toString(), "ab");
}

TEST(ParamValueStorage, EmptySequenceGivesCountZeroOfItsType)
{
    const ParamValue value(std::vector<std::uint16_t> {});
    EXPECT_EQ(value.type(), ParamType::UInt16);
    EXPECT_EQ(value.count(), 0u);
    EXPECT_EQ(value.data(), nullptr);
}

TEST(ParamValueStorage, PointerAndCountCopiesTheElements)
{
    const std::int16_t source[] = {-1, 2, -3};
    const ParamValue value(source, 3);
    EXPECT_EQ(value.type(), ParamType::Int16);
    EXPECT_EQ(value.toInt16Vector(), (std::vector<std::int16_t> {-1, 2, -3}));
}

TEST(ParamValueStorage, TypeAndCountGivesWritableZeroedElements)
{
    ParamValue value(ParamType::UInt32, 3);
    EXPECT_EQ(value.count(), 3u);
    auto* elements = static_cast<std::uint32_t*>(value.data());
    EXPECT_EQ(elements[1], 0u);
    elements[1] = 7;
    EXPECT_EQ(value.toUInt32Vector(), (std::vector<std::uint32_t> {0, 7, 0}));

    ParamValue single(ParamType::Double, 1);
    *static_cast<double*>(single.data()) = 2.25;
    EXPECT_EQ(single.toDouble(), 2.25);
}

TEST(ParamValueStorage, SixtyFourBitTypesKeepTheirOwnCodes)
{
    EXPECT_EQ(ParamValue(5L).type(), ParamType::Int64);
    EXPECT_EQ(ParamValue(5UL).type(), ParamType::UInt64);
    EXPECT_EQ(ParamValue(5LL).type(), ParamType::LongLong);
    EXPECT_EQ(ParamValue(5ULL).type(), ParamType::ULongLong);

    ParamValue value(std::vector<long> {1, 2});
    EXPECT_TRUE(value.convert(ParamType::LongLong));
    EXPECT_EQ(value.type(), ParamType::LongLong);
    EXPECT_EQ(value.toLongLongVector(), (std::vector<long long> {1, 2}));
}

TEST(ParamValueStorage, CopyOwnsItsOwnBuffer)
{
    ParamValue original(std::vector<std::int32_t> {1, 2, 3});
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is tested
    const ParamValue copy(original);
    static_cast<std::int32_t*>(original.data())[0] = 99;
    EXPECT_EQ(copy.toInt32Vector(), (std::vector<std::int32_t> {1, 2, 3}));
    EXPECT_NE(copy.data(), original.data());

    ParamValue assigned(std::string("old"));
    assigned = original;
    EXPECT_EQ(assigned.toInt32Vector(), (std::vector<std::int32_t> {99, 2, 3}));
}

TEST(ParamValueStorage, SelfAssignmentKeepsTheValue)
{
    ParamValue value(std::string("keep"));
    ParamValue& alias = value;
    value = alias;
    EXPECT_EQ(value.toString(), "keep");
}

TEST(ParamValueStorage, MovedFromValueIsNone)
{
    ParamValue source(std::vector<double> {1, 2});
    const ParamValue target(std::move(source));
    EXPECT_EQ(target.toDoubleVector(), (std::vector<double> {1, 2}));
    EXPECT_EQ(source.type(), ParamType::None); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(source.count(), 0u);
}

TEST(ParamValueText, DoubleArrayIsWrittenWithSemicolons)
{
    EXPECT_EQ(ParamValue(std::vector<double> {1.5, 2}).toString(), "1.5;2");
}

TEST(ParamValueText, DoubleUsesFifteenSignificantDigits)
{
    EXPECT_EQ(ParamValue(1.0 / 3.0).toString(), "0.333333333333333");
}

TEST(ParamValueText, FloatUsesSixSignificantDigits)
{
    EXPECT_EQ(ParamValue(1.0f / 3.0f).toString(), "0.333333");
}

TEST(ParamValueText, LargeDoubleUsesScientificForm)
{
    EXPECT_EQ(ParamValue(1e20).toString(), "1e+20");
    EXPECT_EQ(ParamValue(123456.0f).toString(), "123456");
    EXPECT_EQ(ParamValue(1234567.0f).toString(), "1.23457e+06");
}

TEST(ParamValueText, EightBitValuesAreWrittenAsNumbers)
{
    EXPECT_EQ(ParamValue(std::int8_t(-5)).toString(), "-5");
    EXPECT_EQ(ParamValue(std::uint8_t(200)).toString(), "200");
    EXPECT_EQ(ParamValue(std::vector<std::uint8_t> {65, 66}).toString(), "65;66");
}

TEST(ParamValueText, IntegersAreWrittenInDecimal)
{
    EXPECT_EQ(ParamValue(std::vector<long long> {-9223372036854775807LL - 1, 1}).toString(),
        "-9223372036854775808;1");
    EXPECT_EQ(ParamValue(std::numeric_limits<unsigned long>::max()).toString(), "18446744073709551615");
    EXPECT_EQ(ParamValue(std::int32_t(1234567)).toString(), "1234567");
}

TEST(ParamValueText, EmptyNumericValueConvertsToNoneNotEmptyString)
{
    ParamValue value(std::vector<std::int32_t> {});
    const ParamValue text = value.converted(ParamType::String);
    EXPECT_EQ(text.type(), ParamType::None);
    EXPECT_FALSE(value.convert(ParamType::String));
    EXPECT_EQ(value.type(), ParamType::None);
}

TEST(ParamValueText, TextWithInvalidPieceGivesZeroForThatElement)
{
    const ParamValue value = ParamValue(std::string("4;x;6")).converted(ParamType::Int8);
    EXPECT_EQ(value.type(), ParamType::Int8);
    EXPECT_EQ(value.toInt8Vector(), (std::vector<std::int8_t> {4, 0, 6}));
}

TEST(ParamValueText, TextToUInt8KeepsTheLowEightBits)
{
    const ParamValue value = ParamValue(std::string("300")).converted(ParamType::UInt8);
    EXPECT_EQ(value.type(), ParamType::UInt8);
    EXPECT_EQ(value.toUInt8(), 44);
    EXPECT_EQ(ParamValue(std::string("-1")).toUInt8(), 255);
}

TEST(ParamValueText, ScalarGetterReadsTheFirstPiece)
{
    EXPECT_EQ(ParamValue(std::string("5;7")).toInt32(), 5);
}

TEST(ParamValueText, PiecesAreSplitAtEverySemicolon)
{
    EXPECT_EQ(ParamValue(std::string("1;2;3")).toInt32Vector(), (std::vector<std::int32_t> {1, 2, 3}));
    EXPECT_EQ(ParamValue(std::string("1;2;")).toInt32Vector(), (std::vector<std::int32_t> {1, 2}));
    EXPECT_EQ(ParamValue(std::string(";5")).toInt32Vector(), (std::vector<std::int32_t> {0, 5}));
}

TEST(ParamValueText, EmptyTextGivesCountZeroOfTheTarget)
{
    ParamValue value(std::string(""));
    EXPECT_TRUE(value.convert(ParamType::Double));
    EXPECT_EQ(value.type(), ParamType::Double);
    EXPECT_EQ(value.count(), 0u);
    EXPECT_EQ(value.toDouble(), 0.0);
}

TEST(ParamValueText, LeadingSpaceIsSkippedAndTrailingTextIgnored)
{
    EXPECT_EQ(ParamValue(std::string(" 7")).toInt32(), 7);
    EXPECT_EQ(ParamValue(std::string("12abc")).toInt32(), 12);
    EXPECT_EQ(ParamValue(std::string("2.5;1e3")).toDoubleVector(), (std::vector<double> {2.5, 1000.0}));
}

TEST(ParamValueText, UnparsablePieceOfWideTypeGivesZero)
{
    EXPECT_EQ(ParamValue(std::string("abc")).toInt64(), 0);
    EXPECT_EQ(ParamValue(std::string("abc")).toDouble(), 0.0);
    EXPECT_EQ(ParamValue(std::string("99999999999")).toInt32(), 0);
}

TEST(ParamValueText, TextRoundTripKeepsTheNumbers)
{
    const ParamValue numbers(std::vector<std::int16_t> {-300, 0, 300});
    const ParamValue text = numbers.converted(ParamType::String);
    EXPECT_EQ(text.toString(), "-300;0;300");
    EXPECT_EQ(text.toInt16Vector(), (std::vector<std::int16_t> {-300, 0, 300}));
}

TEST(ParamValueConversion, FloatingToIntegerTruncatesTowardZero)
{
    EXPECT_EQ(ParamValue(2.9).toInt32(), 2);
    EXPECT_EQ(ParamValue(-2.9).toInt32(), -2);
    EXPECT_EQ(ParamValue(std::vector<float> {1.99f, -0.5f}).toInt64Vector(), (std::vector<long> {1, 0}));
}

TEST(ParamValueConversion, NarrowingKeepsTheLowBits)
{
    EXPECT_EQ(ParamValue(std::int32_t(300)).toUInt8(), 44);
    EXPECT_EQ(ParamValue(std::int32_t(-1)).toUInt16(), 65535);
    EXPECT_EQ(ParamValue(0x123456789ULL).toUInt32(), 0x23456789u);
}

TEST(ParamValueConversion, DoubleToFloatIsRounded)
{
    EXPECT_EQ(ParamValue(0.1).toFloat(), 0.1f);
    EXPECT_EQ(ParamValue(std::int32_t(3)).toDouble(), 3.0);
}

TEST(ParamValueConversion, ConvertedLeavesTheOriginalAlone)
{
    const ParamValue value(std::int32_t(7));
    const ParamValue text = value.converted(ParamType::String);
    EXPECT_EQ(text.toString(), "7");
    EXPECT_EQ(value.type(), ParamType::Int32);
}

TEST(ParamValueConversion, ConvertKeepsTheCountAndReplacesTheType)
{
    ParamValue value(std::vector<std::int32_t> {1, -2, 3});
    EXPECT_TRUE(value.convert(ParamType::Double));
    EXPECT_EQ(value.type(), ParamType::Double);
    EXPECT_EQ(value.toDoubleVector(), (std::vector<double> {1, -2, 3}));
}

TEST(ParamValueConversion, ConvertToItsOwnTypeIsTrueAndUnchanged)
{
    ParamValue value(std::uint8_t(9));
    EXPECT_TRUE(value.convert(ParamType::UInt8));
    EXPECT_EQ(value.toUInt8(), 9);
}

TEST(ParamValueConversion, NoneOnEitherSideGivesNone)
{
    ParamValue value(std::int32_t(1));
    EXPECT_FALSE(value.convert(ParamType::None));
    EXPECT_EQ(value.type(), ParamType::None);
    EXPECT_EQ(ParamValue().converted(ParamType::Int32).type(), ParamType::None);
}

TEST(ParamValueConversion, UnknownTargetCodeGivesNone)
{
    ParamValue value(std::int32_t(1));
    EXPECT_FALSE(value.convert(static_cast<ParamType>(20)));
    EXPECT_EQ(value.type(), ParamType::None);
    EXPECT_EQ(ParamValue(std::string("1")).converted(static_cast<ParamType>(14)).type(), ParamType::None);
}

TEST(ParamValueConversion, GettersOfOtherTypesConvert)
{
    const ParamValue value(std::vector<double> {1.5, 2.5});
    EXPECT_EQ(value.toInt32(), 1);
    EXPECT_EQ(value.toInt32Vector(), (std::vector<std::int32_t> {1, 2}));
    EXPECT_EQ(value.toFloatVector(), (std::vector<float> {1.5f, 2.5f}));
    EXPECT_EQ(value.toULongLong(), 1u);
}

TEST(ParamValueConversion, GetterOfEmptyValueOfSameTypeIsZero)
{
    const ParamValue value(std::vector<float> {});
    EXPECT_EQ(value.toFloat(), 0.0f);
    EXPECT_TRUE(value.toFloatVector().empty());
    EXPECT_EQ(value.toInt8(), 0);
}

TEST(ParamValue, EqualWhenTypeAndEveryElementAreTheSame)
{
    EXPECT_EQ(ParamValue(std::int32_t {7}), ParamValue(std::int32_t {7}));
    EXPECT_NE(ParamValue(std::int32_t {7}), ParamValue(std::int32_t {8}));
    EXPECT_NE(ParamValue(std::int32_t {7}), ParamValue(std::int64_t {7}));
    EXPECT_EQ(ParamValue(std::vector<double> {1.5, 2.5}), ParamValue(std::vector<double> {1.5, 2.5}));
    EXPECT_NE(ParamValue(std::vector<double> {1.5, 2.5}), ParamValue(std::vector<double> {1.5}));
    EXPECT_EQ(ParamValue("castle"), ParamValue(std::string("castle")));
    EXPECT_NE(ParamValue("castle"), ParamValue("castles"));
    EXPECT_EQ(ParamValue(), ParamValue());
    EXPECT_EQ(ParamValue(ParamType::Float, 0), ParamValue(ParamType::Float, 0));
    EXPECT_NE(ParamValue(ParamType::Float, 0), ParamValue(ParamType::Double, 0));
}
