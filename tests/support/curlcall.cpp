#include "curlcall.h"

#include <cstdio>

#include "childprocess.h"
#include "tempdirectory.h"

CurlResult curl(const TempDirectory& dir, const std::string& arguments)
{
    CurlResult result;
    std::string output;
    result.exitCode = runCommand("(curl -sS --max-time 20 -o " + dir.path("body") + " -D "
            + dir.path("headers") + " -w '%{http_code}' " + arguments + " 2>" + dir.path("curl.err") + ")",
        output);
    result.status = output;
    result.body = readFile(dir.path("body"));
    result.headers = readFile(dir.path("headers"));
    result.errors = readFile(dir.path("curl.err"));
    std::remove(dir.path("body").c_str());
    std::remove(dir.path("headers").c_str());
    return result;
}
