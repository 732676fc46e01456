#include "exporter.h"

#include <algorithm>

#include "gzip.h"
#include "metricstext.h"

Exporter::Exporter(const Settings& settings, std::ostream& log)
    : m_settings(settings)
    , m_reader(settings.server, log, "korvane-exporter")
    , m_thread([this] { run(); })
{
}

Exporter::~Exporter()
{
    stop();
}

std::shared_ptr<const MetricsPage> Exporter::page(std::optional<std::chrono::milliseconds> scrapeTimeout)
{
    const auto asked = MetricsPage::Clock::now();
    std::chrono::milliseconds budget = std::chrono::seconds(m_settings.serverTimeoutSeconds);
    if (scrapeTimeout)
        budget = std::max(std::chrono::milliseconds(0), std::min(budget, *scrapeTimeout - ScrapeMargin));
    const SteadyClock::time_point deadline = asked + budget;

    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_stopping)
        return nullptr;
    if (m_page && asked - m_page->made() < m_settings.reuseFor)
        return m_page;
    // A reading under way started after the last page went stale: its page will do.
    if (!m_reading) {
        m_wanted = true;
        m_readingDeadline = deadline;
        m_wake.notify_one();
    }
    const std::uint64_t seen = m_readings;
    if (!m_ready.wait_until(lock, deadline + PageGrace, [&] { return m_readings != seen || m_stopping; })) {
        lock.unlock();
        return downPage(asked);
    }
    return m_stopping ? nullptr : m_page;
}

std::shared_ptr<const MetricsPage> Exporter::downPage(MetricsPage::Clock::time_point asked) const
{
    FarmSnapshot down;
    std::string text;
    writeFarmMetrics(down, m_settings.collectBatches, text);
    const auto now = MetricsPage::Clock::now();
    writeScrapeDuration(std::chrono::duration<double>(now - asked).count(), text);
    std::string gzipped = gzipCompress(text);
    return std::make_shared<const MetricsPage>(std::move(text), std::move(gzipped), now);
}

void Exporter::stop()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    m_ready.notify_all();
    m_reader.interrupt();
    if (m_thread.joinable())
        m_thread.join();
}

std::uint64_t Exporter::readings() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_readings;
}

void Exporter::run()
{
    for (;;) {
        SteadyClock::time_point deadline;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_wake.wait(lock, [this] { return m_wanted || m_stopping; });
            if (m_stopping)
                return;
            m_wanted = false;
            m_reading = true;
            deadline = m_readingDeadline;
        }

        const auto start = MetricsPage::Clock::now();
        m_reader.read(m_snapshot, deadline, start);
        std::string text;
        text.reserve(m_lastSize + m_lastSize / 8);
        writeFarmMetrics(m_snapshot, m_settings.collectBatches, text);
        const auto end = MetricsPage::Clock::now();
        writeScrapeDuration(std::chrono::duration<double>(end - start).count(), text);
        m_lastSize = text.size();
        // Compressed here rather than for the first scraper that asks (all
        // of Prometheus do), so that no HTTP thread grows a heap of its own.
        std::string gzipped = gzipCompress(text);
        auto page = std::make_shared<const MetricsPage>(std::move(text), std::move(gzipped), end);

        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_page = std::move(page);
            m_reading = false;
            ++m_readings;
        }
        m_ready.notify_all();
    }
}
