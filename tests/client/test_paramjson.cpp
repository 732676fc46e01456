#include <json/value.h>
#include <json/writer.h>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "jsontext.h"
#include "paramjson.h"

namespace {

std::string compact(const Json::Value& value)
{
    Json::FastWriter writer;
    return writer.write(value);
}

} // namespace

TEST(ParamsToJson, EmptyMapGivesNull)
{
    const Json::Value json = paramsToJson(ParamMap());
    EXPECT_TRUE(json.isNull());
    EXPECT_EQ(compact(json), "null\n");
}

TEST(ParamsToJson, MapOfOnlyWideIntegerArraysGivesNull)
{
    ParamMap params;
    params.emplace("a", ParamValue(std::vector<long> {1, 2}));
    params.emplace("b", ParamValue(std::vector<unsigned long long> {3, 4, 5}));
    params.emplace("c", ParamValue(std::vector<std::int16_t> {6, 7}));
    EXPECT_TRUE(paramsToJson(params).isNull());
}

TEST(ParamsToJson, EmptyValuesAreLeftOut)
{
    ParamMap params;
    params.emplace("empty", ParamValue(std::vector<double> {}));
    params.emplace("none", ParamValue());
    params.emplace("x", ParamValue(std::int32_t(1)));
    EXPECT_EQ(compact(paramsToJson(params)), "{\"x\":1}\n");
}

TEST(ParamsToJson, UInt8GoesAsItsText)
{
    ParamMap params;
    params.emplace("level", ParamValue(std::uint8_t(200)));
    const Json::Value json = paramsToJson(params);
    ASSERT_TRUE(json["level"].isString());
    EXPECT_EQ(json["level"].asString(), "200");
    EXPECT_EQ(compact(json), "{\"level\":\"200\"}\n");
}

TEST(ParamsToJson, UInt8ReadBackIsAStringWhoseIntegerIsTheNumber)
{
    ParamMap params;
    params.emplace("level", ParamValue(std::uint8_t(200)));
    const ParamMap back = paramsFromJson(jsonFromText(compact(paramsToJson(params))));
    ASSERT_EQ(back.count("level"), 1u);
    EXPECT_EQ(back.at("level").type(), ParamType::String);
    EXPECT_EQ(back.at("level").toInt32(), 200);
}

TEST(ParamsToJson, FloatGoesAsTheExactDoubleOfTheFloat)
{
    ParamMap params;
    params.emplace("f", ParamValue(0.1f));
    const Json::Value json = paramsToJson(params);
    ASSERT_TRUE(json["f"].isDouble());
    EXPECT_EQ(json["f"].asDouble(), static_cast<double>(0.1f));
    EXPECT_NE(json["f"].asDouble(), 0.1);
    EXPECT_EQ(compact(json), "{\"f\":0.10000000149011612}\n");
}

TEST(ParamsToJson, ScalarsTakeTheirJsonKinds)
{
    ParamMap params;
    params.emplace("i32", ParamValue(std::int32_t(-5)));
    params.emplace("u32", ParamValue(std::uint32_t(4000000000u)));
    params.emplace("d", ParamValue(2.5));
    params.emplace("s", ParamValue(std::string("text")));
    params.emplace("i8", ParamValue(std::int8_t(-3)));
    params.emplace("i16", ParamValue(std::int16_t(-300)));
    params.emplace("u16", ParamValue(std::uint16_t(60000)));
    params.emplace("i64", ParamValue(-7L));
    params.emplace("u64", ParamValue(8UL));
    params.emplace("ll", ParamValue(9LL));
    params.emplace("ull", ParamValue(10ULL));
    const Json::Value json = paramsToJson(params);
    EXPECT_EQ(json["i32"].type(), Json::intValue);
    EXPECT_EQ(json["u32"].type(), Json::uintValue);
    EXPECT_EQ(json["d"].type(), Json::realValue);
    EXPECT_EQ(compact(json),
        "{\"d\":2.5,\"i16\":\"-300\",\"i32\":-5,\"i64\":\"-7\",\"i8\":\"-3\",\"ll\":\"9\",\"s\":\"text\","
        "\"u16\":\"60000\",\"u32\":4000000000,\"u64\":\"8\",\"ull\":\"10\"}\n");
}

TEST(ParamsToJson, ArraysOfThirtyTwoBitAndRealTypesBecomeJsonArrays)
{
    ParamMap params;
    params.emplace("i", ParamValue(std::vector<std::int32_t> {1, -2}));
    params.emplace("u", ParamValue(std::vector<std::uint32_t> {3, 4}));
    params.emplace("f", ParamValue(std::vector<float> {0.5f, 0.25f}));
    params.emplace("d", ParamValue(std::vector<double> {1.5, 2}));
    params.emplace("w", ParamValue(std::vector<std::uint8_t> {1, 2}));
    EXPECT_EQ(compact(paramsToJson(params)), "{\"d\":[1.5,2.0],\"f\":[0.5,0.25],\"i\":[1,-2],\"u\":[3,4]}\n");
}

TEST(ParamsToJson, StringValueGoesAsItsText)
{
    ParamMap params;
    params.emplace("path", ParamValue(std::string("/data/a b.kproj")));
    EXPECT_EQ(compact(paramsToJson(params)), "{\"path\":\"/data/a b.kproj\"}\n");
}

TEST(ParamsFromJson, ArrayWithARealBecomesDouble)
{
    const ParamMap params = paramsFromJson(jsonFromText("{\"v\":[1, 2.5, 3]}"));
    ASSERT_EQ(params.count("v"), 1u);
    EXPECT_EQ(params.at("v").type(), ParamType::Double);
    EXPECT_EQ(params.at("v").toDoubleVector(), (std::vector<double> {1, 2.5, 3}));
}

TEST(ParamsFromJson, ArrayOfIntegersBecomesInt32)
{
    const ParamMap params = paramsFromJson(jsonFromText("{\"v\":[1, 2]}"));
    EXPECT_EQ(params.at("v").type(), ParamType::Int32);
    EXPECT_EQ(params.at("v").toInt32Vector(), (std::vector<std::int32_t> {1, 2}));
}

TEST(ParamsFromJson, RealBeforeIntegerStillGivesDouble)
{
    const ParamMap params = paramsFromJson(jsonFromText("{\"v\":[0.5, 2]}"));
    EXPECT_EQ(params.at("v").type(), ParamType::Double);
}

TEST(ParamsFromJson, EmptyArrayIsLeftOut)
{
    const ParamMap params = paramsFromJson(jsonFromText("{\"v\":[], \"w\":1}"));
    EXPECT_EQ(params.count("v"), 0u);
    EXPECT_EQ(params.size(), 1u);
}

TEST(ParamsFromJson, ArrayOfBooleansBecomesUInt32OnesAndZeros)
{
    const ParamMap params = paramsFromJson(jsonFromText("{\"v\":[true, false, true]}"));
    EXPECT_EQ(params.at("v").type(), ParamType::UInt32);
    EXPECT_EQ(params.at("v").toUInt32Vector(), (std::vector<std::uint32_t> {1, 0, 1}));
}

TEST(ParamsFromJson, ArrayOfLargeUnsignedStaysUInt32)
{
    const ParamMap params = paramsFromJson(jsonFromText("{\"v\":[3000000000, 4000000000]}"));
    EXPECT_EQ(params.at("v").type(), ParamType::UInt32);
    EXPECT_EQ(params.at("v").toUInt32Vector(), (std::vector<std::uint32_t> {3000000000u, 4000000000u}));
}

TEST(ParamsFromJson, NullsAndBooleansInsideAnArrayConvert)
{
    const ParamMap params = paramsFromJson(jsonFromText("{\"v\":[null, true, -4]}"));
    EXPECT_EQ(params.at("v").type(), ParamType::Int32);
    EXPECT_EQ(params.at("v").toInt32Vector(), (std::vector<std::int32_t> {0, 1, -4}));
}

TEST(ParamsFromJson, ObjectMemberIsSkippedAndReported)
{
    const ConsoleCapture console;
    const ParamMap params = paramsFromJson(jsonFromText("{\"a\":{\"x\":1}, \"b\":2}"));
    EXPECT_EQ(params.count("a"), 0u);
    EXPECT_EQ(params.at("b").toInt32(), 2);
    EXPECT_EQ(console.text(), "skipping json param a\n");
}

TEST(ParamsFromJson, ScalarsTakeTheirParamTypes)
{
    const ConsoleCapture console;
    const ParamMap params = paramsFromJson(jsonFromText(
        "{\"n\":null, \"i\":-7, \"u\":3000000000, \"r\":0.25, \"s\":\"x;y\", \"t\":true, \"f\":false}"));
    EXPECT_EQ(params.count("n"), 0u);
    EXPECT_EQ(params.at("i").type(), ParamType::Int32);
    EXPECT_EQ(params.at("i").toInt32(), -7);
    EXPECT_EQ(params.at("u").type(), ParamType::UInt32);
    EXPECT_EQ(params.at("u").toUInt32(), 3000000000u);
    EXPECT_EQ(params.at("r").type(), ParamType::Double);
    EXPECT_EQ(params.at("r").toDouble(), 0.25);
    EXPECT_EQ(params.at("s").type(), ParamType::String);
    EXPECT_EQ(params.at("s").toString(), "x;y");
    EXPECT_EQ(params.at("t").type(), ParamType::Int32);
    EXPECT_EQ(params.at("t").toInt32(), 1);
    EXPECT_EQ(params.at("f").toInt32(), 0);
    EXPECT_EQ(console.text(), "");
}

TEST(ParamsFromJson, SmallPositiveIntegerIsInt32)
{
    // jsoncpp keeps non-negative numbers that fit an int as signed integers.
    const ParamMap params = paramsFromJson(jsonFromText("{\"n\":5}"));
    EXPECT_EQ(params.at("n").type(), ParamType::Int32);
}

TEST(ParamsFromJson, NullOrMissingParamsGiveAnEmptyMap)
{
    EXPECT_TRUE(paramsFromJson(Json::Value()).empty());
    EXPECT_TRUE(paramsFromJson(jsonFromText("{}")).empty());
}

TEST(ParamsFromJson, StringInsideAnArrayRaisesJsoncppError)
{
    EXPECT_THROW(paramsFromJson(jsonFromText("{\"v\":[1, \"x\"]}")), Json::LogicError);
    EXPECT_THROW(paramsFromJson(jsonFromText("{\"v\":[\"x\"]}")), Json::LogicError);
    EXPECT_THROW(paramsFromJson(jsonFromText("{\"v\":[[1]]}")), Json::LogicError);
}

TEST(ParamsFromJson, ParamsThatAreNotAnObjectRaiseJsoncppError)
{
    EXPECT_THROW(paramsFromJson(Json::Value("text")), Json::LogicError);
    EXPECT_THROW(paramsFromJson(jsonFromText("[1]")), Json::LogicError);
}

TEST(ParamsFromJson, RoundTripKeepsNamesInByteOrder)
{
    ParamMap params;
    params.emplace("b", ParamValue(std::int32_t(2)));
    params.emplace("B", ParamValue(std::uint32_t(3)));
    params.emplace("ab", ParamValue(std::vector<double> {0.5, 1.5}));
    params.emplace("a", ParamValue(std::string("s")));
    const ParamMap back = paramsFromJson(paramsToJson(params));
    std::vector<std::string> names;
    for (const auto& entry : back)
        names.push_back(entry.first);
    EXPECT_EQ(names, (std::vector<std::string> {"B", "a", "ab", "b"}));
    EXPECT_EQ(back.at("ab").toDoubleVector(), (std::vector<double> {0.5, 1.5}));
    EXPECT_EQ(back.at("B").type(), ParamType::UInt32);
}
