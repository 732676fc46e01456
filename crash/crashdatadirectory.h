#pragma once

#include <string>

// Where crash reports live: ~/.<vendor>/<product>/Crash Reports, both names in
// lower case (ASCII). The crash handler makes the directory and passes it to
// the reporter in the environment; the reporter falls back to the same rule
// from a report's annotations when started by hand.

constexpr const char* CrashDataDirectoryVariable = "MOZ_CRASHREPORTER_DATA_DIRECTORY";

std::string crashDataDirectory(
    const std::string& home, const std::string& vendor, const std::string& product);
