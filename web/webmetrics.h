#pragma once

#include <map>
#include <mutex>
#include <string>

class FarmWatch;
class StreamHub;

// The program's own metrics at /metrics, in Prometheus' text format: open
// streams, what they were sent, slow streams resynced, actions by result,
// and the last reading's duration. Thread-safe.
class WebMetrics final
{
public:
    WebMetrics(StreamHub& hub, FarmWatch& watch);
    WebMetrics(const WebMetrics&) = delete;
    WebMetrics& operator=(const WebMetrics&) = delete;

    // result: "accepted", "refused", "unreachable", "timed_out", "forbidden",
    // "cross_origin", "audit_unavailable"
    void countAction(const std::string& result);
    std::string page() const;

private:
    StreamHub& m_hub;
    FarmWatch& m_watch;
    mutable std::mutex m_mutex;
    std::map<std::string, long long> m_actions;
};
