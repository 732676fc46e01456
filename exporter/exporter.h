#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <mutex>
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
// while a reading is under way wait for it and share it.
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

    Exporter(const Settings& settings, std::ostream& log);
    ~Exporter();
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    // The current page; null only once stop() was called.
    std::shared_ptr<const MetricsPage> page();
    // Ends the thread, cutting a request to the server short.
    void stop();

    // Readings made so far.
    std::uint64_t readings() const;

private:
    void run();

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
    std::uint64_t m_readings = 0;
    std::shared_ptr<const MetricsPage> m_page;
    std::thread m_thread;
};
