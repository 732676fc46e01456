#include "buildinfo.h"

#include <string>

#include "version.h"

#ifndef KORVANE_REVISION
#define KORVANE_REVISION "unknown"
#endif

#define KORVANE_TEXT(x) #x
#define KORVANE_NUMBER(x) KORVANE_TEXT(x)

namespace BuildInfo {

const char* version()
{
    static const std::string Full = std::string(Version::Text) + "." + std::to_string(Version::Build);
    return Full.c_str();
}

const char* revision()
{
    return KORVANE_REVISION;
}

const char* compiler()
{
#if defined(__clang__)
    return "clang " KORVANE_NUMBER(__clang_major__) "." KORVANE_NUMBER(__clang_minor__) "." KORVANE_NUMBER(
        __clang_patchlevel__);
#elif defined(__GNUC__)
    return "gcc " KORVANE_NUMBER(__GNUC__) "." KORVANE_NUMBER(__GNUC_MINOR__) "." KORVANE_NUMBER(
        __GNUC_PATCHLEVEL__);
#else
    return "unknown";
#endif
}

} // namespace BuildInfo
