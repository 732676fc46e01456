#include "figuretable.h"

#include <algorithm>
#include <cstdarg>

void FigureTable::section(const std::string& title)
{
    m_rows.push_back({title, {}, {}, Verdict::None, true});
}

void FigureTable::add(
    const std::string& figure, const std::string& value, const std::string& target, Verdict verdict)
{
    m_rows.push_back({figure, value, target, verdict, false});
}

void FigureTable::print(std::FILE* out) const
{
    std::size_t figureWidth = 6;
    std::size_t valueWidth = 5;
    std::size_t targetWidth = 6;
    for (const Row& row : m_rows) {
        if (row.title)
            continue;
        figureWidth = std::max(figureWidth, row.figure.size());
        valueWidth = std::max(valueWidth, row.value.size());
        targetWidth = std::max(targetWidth, row.target.size());
    }
    const int fw = static_cast<int>(figureWidth);
    const int vw = static_cast<int>(valueWidth);
    const int tw = static_cast<int>(targetWidth);
    std::fprintf(out, "%-*s  %-*s  %-*s  %s\n", fw, "figure", vw, "value", tw, "target", "met");
    for (const Row& row : m_rows) {
        if (row.title) {
            std::fprintf(out, "-- %s\n", row.figure.c_str());
            continue;
        }
        const char* verdict = row.verdict == Verdict::Met ? "yes"
            : row.verdict == Verdict::Missed              ? "NO"
                                                          : "";
        std::fprintf(out, "%-*s  %-*s  %-*s  %s\n", fw, row.figure.c_str(), vw, row.value.c_str(), tw,
            row.target.c_str(), verdict);
    }
}

std::string FigureTable::format(const char* pattern, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}
