#pragma once

#include <cstdio>
#include <string>
#include <vector>

// The benchmark's one table: each figure with its value and, where there
// is one, its target and whether it was met.
class FigureTable final
{
public:
    enum class Verdict
    {
        None,
        Met,
        Missed
    };

    FigureTable() = default;
    FigureTable(const FigureTable&) = delete;
    FigureTable& operator=(const FigureTable&) = delete;

    void section(const std::string& title);
    void add(const std::string& figure, const std::string& value, const std::string& target = {},
        Verdict verdict = Verdict::None);
    void print(std::FILE* out) const;

    static Verdict verdict(bool met) { return met ? Verdict::Met : Verdict::Missed; }
    // printf into a string.
    static std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

private:
    struct Row
    {
        std::string figure;
        std::string value;
        std::string target;
        Verdict verdict;
        bool title;
    };

    std::vector<Row> m_rows;
};
