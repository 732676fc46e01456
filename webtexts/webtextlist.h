#pragma once

#include <vector>

// The browser monitor's own texts, translated in the "Web" context of the
// program catalogues so that lupdate finds them beside the desktop's.
struct WebText final
{
    const char* source;
    // translated with a count: one form per plural category of the language
    bool numerus;
};

extern const char* const webTextContext;

const std::vector<WebText>& webTexts();
