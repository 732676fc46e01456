#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Pieces of Prometheus' text exposition format, appended to a string.

// The format's Content-Type.
constexpr const char* ExpositionContentType = "text/plain; version=0.0.4; charset=utf-8";

// A label value between its quotes: backslash, double quote and line feed
// escaped; bytes that are not UTF-8 become U+FFFD, which Prometheus requires.
void appendLabelValue(std::string& out, std::string_view value);

// Shortest text that reads back as the same double; +Inf, -Inf and NaN as
// the format spells them.
void appendValue(std::string& out, double value);
void appendValue(std::string& out, std::int64_t value);

// "# HELP name help" and "# TYPE name type" lines.
void appendFamily(std::string& out, std::string_view name, std::string_view type, std::string_view help);
