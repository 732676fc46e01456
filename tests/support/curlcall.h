#pragma once

#include <string>

class TempDirectory;

// curl's answer: the HTTP status ("000" without one), the body, the
// response's head and curl's exit code and messages.
struct CurlResult
{
    int exitCode = -1;
    std::string status;
    std::string body;
    std::string headers;
    std::string errors;
};

// Runs curl -sS with the arguments (a shell's words), its files in dir.
CurlResult curl(const TempDirectory& dir, const std::string& arguments);
