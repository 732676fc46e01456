#pragma once

#include <chrono>
#include <string>

// One reading's metrics text and its gzip form, made once and shared by
// every scrape that reuses it.
class MetricsPage final
{
public:
    using Clock = std::chrono::steady_clock;

    MetricsPage(std::string text, std::string gzipped, Clock::time_point made);
    MetricsPage(const MetricsPage&) = delete;
    MetricsPage& operator=(const MetricsPage&) = delete;

    const std::string& text() const { return m_text; }
    const std::string& gzipped() const { return m_gzipped; }
    Clock::time_point made() const { return m_made; }

private:
    const std::string m_text;
    const std::string m_gzipped;
    const Clock::time_point m_made;
};
