#include "weblanguages.h"

#include <cstring>

const std::vector<WebLanguage>& webLanguages()
{
    // the same list as KORVANE_LANGUAGES in lang/CMakeLists.txt
    static const std::vector<WebLanguage> languages = {
        {"en", {"one", "other"}},
        {"de", {"one", "other"}},
        {"ru", {"one", "few", "many"}},
        {"fr", {"one", "other"}},
        {"es", {"one", "other"}},
        {"ja", {"other"}},
        {"zh_CN", {"other"}},
    };
    return languages;
}

int pluralSample(const char* category)
{
    if (std::strcmp(category, "one") == 0)
        return 1;
    if (std::strcmp(category, "many") == 0)
        return 5;
    // "few" in Russian; "other" is the second form, or the only one
    return 2;
}
