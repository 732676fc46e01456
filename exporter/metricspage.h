#pragma once

#include <chrono>
#include <mutex>
#include <string>

// One scrape's metrics text, made once and shared by every scrape that
// reuses it; the gzip form is made on the first request for it.
class MetricsPage final
{
public:
    using Clock = std::chrono::steady_clock;

    MetricsPage(std::string text, Clock::time_point made);
    MetricsPage(const MetricsPage&) = delete;
    MetricsPage& operator=(const MetricsPage&) = delete;

    const std::string& text() const { return m_text; }
    const std::string& gzipped() const;
    Clock::time_point made() const { return m_made; }

private:
    const std::string m_text;
    const Clock::time_point m_made;
    mutable std::once_flag m_gzipOnce;
    mutable std::string m_gzipped;
};
