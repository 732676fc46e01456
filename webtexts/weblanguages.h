#pragma once

#include <vector>

// The languages of the program catalogues (lang/monitor_<code>.ts), and the
// plural categories of the browser's Intl.PluralRules that their numerus
// forms stand for, in the order Qt keeps the forms.
struct WebLanguage final
{
    const char* code;
    std::vector<const char*> plurals;
};

const std::vector<WebLanguage>& webLanguages();

// A count that makes Qt pick the form of a category, in every language above.
int pluralSample(const char* category);
