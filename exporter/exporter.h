#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "collectmode.h"
#include "farmreader.h"
#include "farmsnapshot.h"
#include "metricspage.h"

// Turns scrapes into readings of the farm. All reading, writing and
// compressing of the text happens on one thread of its own, so the big
// short-lived allocations of a reading always come from the same heap,
// whichever HTTP thread asked.
// A page younger than reuseFor is handed out again; scrapes that arrive
// while a reading is under way wait for it and share it. Readings never
// stack: there is one at a time.
//
// Every reading has one deadline, that of the scrape that asked for it: the
// scraper's own time-out less a margin, at most the server time-out. A
// scrape whose deadline comes before the page gets a page of its own that
// says korvane_up 0, so that Prometheus sees the server down rather than a
// failed scrape.
class Exporter final
{
public:
    struct Settings
    {
        std::string server = "127.0.0.1";
        CollectMode collectBatches = CollectMode::Unfinished;
        int serverTimeoutSeconds = 5;
        std::chrono::milliseconds reuseFor {1000};
    };

    // Taken from the scraper's time-out, for writing the page and sending it.
    static constexpr std::chrono::milliseconds ScrapeMargin {500};
    // How long past a reading's deadline a scrape waits for its page to be written.
    static constexpr std::chrono::milliseconds PageGrace {250};

    Exporter(const Settings& settings, std::ostream& log);
    ~Exporter();
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    // The current page; null only once stop() was called. scrapeTimeout:
    // what the scraper said it waits (X-Prometheus-Scrape-Timeout-Seconds).
    std::shared_ptr<const MetricsPage> page(std::optional<std::chrono::milliseconds> scrapeTimeout = {});
    // Ends the thread, cutting a request to the server short.
    void stop();

    // Readings made so far.
    std::uint64_t readings() const;

private:
    void run();
    // korvane_up 0, for a scrape whose time ran out before the page came.
    std::shared_ptr<const MetricsPage> downPage(MetricsPage::Clock::time_point asked) const;

    const Settings m_settings;
    FarmReader m_reader;
    FarmSnapshot m_snapshot;
    std::size_t m_lastSize = 0;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_ready;
    bool m_wanted = false;
    bool m_reading = false;
    bool m_stopping = false;
    SteadyClock::time_point m_readingDeadline {};
    std::uint64_t m_readings = 0;
    std::shared_ptr<const MetricsPage> m_page;
    std::thread m_thread;
};
