#include "commandlineoption.h"

CommandLineOption splitCommandLineOption(const std::string& argument)
{
    CommandLineOption option;
    const std::size_t equals = argument.find('=');
    if (argument.rfind("--", 0) == 0 && equals != std::string::npos) {
        option.name = argument.substr(0, equals);
        option.value = argument.substr(equals + 1);
        option.hasValue = true;
    } else {
        option.name = argument;
    }
    return option;
}

bool takeCommandLineValue(
    CommandLineOption& option, const std::vector<std::string>& args, std::size_t& i, std::string& error)
{
    if (option.hasValue)
        return true;
    if (i + 1 >= args.size()) {
        error = option.name + " needs a value";
        return false;
    }
    option.value = args[++i];
    option.hasValue = true;
    return true;
}
