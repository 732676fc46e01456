#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "ctlrunner.h"

struct CtlResult
{
    int code = -1;
    std::string out;
    std::string err;
};

inline CtlResult runCtl(const std::vector<std::string>& args)
{
    std::ostringstream out;
    std::ostringstream err;
    CtlRunner runner(out, err);
    runner.setWatchPace(0, 2);
    CtlResult result;
    result.code = runner.run(args);
    result.out = out.str();
    result.err = err.str();
    return result;
}

// The arguments with --port in front.
inline std::vector<std::string> atPort(int port, std::vector<std::string> args)
{
    args.insert(args.begin(), {"--port", std::to_string(port)});
    return args;
}
