#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

#include "lineproxy.h"
#include "procstats.h"
#include "streamfleet.h"

class FigureTable;

// The phases against one running web monitor, whose reading of the farm
// passes through the proxy: no stream, one, many, many and a slow one, then
// actions; each phase adds its figures to the table.
class WebBench final
{
public:
    struct Settings
    {
        int webPort = 0;
        pid_t webPid = 0;
        std::size_t readings = 60;
        std::size_t streams = 500;
        std::size_t actions = 20;
        double intervalMs = 1000.0;
    };

    WebBench(const Settings& settings, LineProxy& proxy, FigureTable& table);
    WebBench(const WebBench&) = delete;
    WebBench& operator=(const WebBench&) = delete;

    // False, with the reason, when a phase could not be set up.
    bool run(std::string& error);

private:
    // The readings of one phase: listBatches requests bound the intervals.
    struct Window
    {
        std::vector<std::int64_t> bounds;
        std::vector<LineProxy::Exchange> exchanges;
        long peakResidentKiB = 0;
        long residentKiB = 0;
        double webCpuPercent = 0.0;
        double seconds = 0.0;
    };
    struct Fanouts
    {
        std::vector<double> spreadMs;
        std::vector<double> fromReadingMs;
        std::vector<double> betweenMs;
        std::size_t incomplete = 0;
    };

    bool runReadings(Window& window, std::string& error);
    void addRequestCounts(const std::string& label, const Window& window);
    Fanouts fanouts(const Window& window) const;
    void addFanouts(const std::string& label, const Fanouts& fanouts, bool full);
    void addReadingTimes(const Window& window);
    void addMemory(const std::string& label, const Window& window);
    void keepSizes();
    void addSizes();
    bool runActions(std::string& error);
    std::string metric(const std::string& name);

    const Settings m_settings;
    LineProxy& m_proxy;
    FigureTable& m_table;
    StreamFleet m_fleet;
    const ProcStats m_web;

    std::size_t m_snapshotBytes = 0;
    std::size_t m_snapshotGzip = 0;
    std::vector<std::uint32_t> m_batchIds;
    std::vector<std::size_t> m_deltaBytes;
    std::vector<std::size_t> m_deltaGzip;
};
