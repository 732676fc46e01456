#pragma once

#include <cstddef>
#include <string>
#include <vector>

// One option of a command line, as korvane-sim, korvane-ctl and
// korvane-exporter read them: "--name=value" carries its value; any other
// argument is a bare name, whose value, when the option takes one, is the
// next argument.
struct CommandLineOption final
{
    std::string name;
    std::string value;
    bool hasValue = false;
};

CommandLineOption splitCommandLineOption(const std::string& argument);

// Gives an option that takes a value its value: its own "=value", or
// args[i + 1], in which case i moves past it. False, with "NAME needs a
// value" in error, when the command line ends first.
bool takeCommandLineValue(
    CommandLineOption& option, const std::vector<std::string>& args, std::size_t& i, std::string& error);
