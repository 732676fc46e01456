#pragma once

#include <string>

#include <json/reader.h>
#include <json/value.h>

#include <gtest/gtest.h>

// JSON that a test writes out by hand; a slip in it fails the test.
inline Json::Value jsonFromText(const std::string& text)
{
    Json::Value value;
    Json::Reader reader;
    EXPECT_TRUE(reader.parse(text, value)) << text;
    return value;
}
