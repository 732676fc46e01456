#include "webmetrics.h"

#include "exposition.h"
#include "farmwatch.h"
#include "streamhub.h"

namespace {

void appendOne(std::string& out, const char* name, const char* type, const char* help, std::int64_t value)
{
    appendFamily(out, name, type, help);
    out += name;
    out += ' ';
    appendValue(out, value);
    out += '\n';
}

} // namespace

WebMetrics::WebMetrics(StreamHub& hub, FarmWatch& watch)
    : m_hub(hub)
    , m_watch(watch)
{
    // Every result has a series from the start, so that rate() sees the first one.
    for (const char* result :
        {"accepted", "refused", "unreachable", "timed_out", "forbidden", "cross_origin", "audit_unavailable"})
        m_actions[result] = 0;
}

void WebMetrics::countAction(const std::string& result)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_actions[result];
}

std::string WebMetrics::page() const
{
    StreamHub::Counters& counters = m_hub.counters();
    std::string out;
    appendOne(out, "korvane_web_streams_open", "gauge", "Event streams open now.",
        static_cast<std::int64_t>(m_hub.streamCount()));
    appendOne(out, "korvane_web_streams_refused_total", "counter",
        "Event streams refused because too many were open.",
        static_cast<std::int64_t>(counters.refused.load()));
    appendOne(out, "korvane_web_events_sent_total", "counter", "Events handed to the streams' connections.",
        static_cast<std::int64_t>(counters.events.load()));
    appendOne(out, "korvane_web_events_sent_bytes_total", "counter",
        "Bytes of events handed to the streams' connections.",
        static_cast<std::int64_t>(counters.bytes.load()));
    appendOne(out, "korvane_web_stream_resyncs_total", "counter",
        "Slow streams whose queue was dropped and replaced by one snapshot.",
        static_cast<std::int64_t>(counters.resyncs.load()));
    appendFamily(out, "korvane_web_actions_total", "counter", "Actions asked for, by their result.");
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& [result, count] : m_actions) {
            out += "korvane_web_actions_total{result=\"";
            appendLabelValue(out, result);
            out += "\"} ";
            appendValue(out, static_cast<std::int64_t>(count));
            out += '\n';
        }
    }
    appendFamily(
        out, "korvane_web_reading_duration_seconds", "gauge", "Seconds the last reading of the farm took.");
    out += "korvane_web_reading_duration_seconds ";
    appendValue(out, m_watch.lastReadingSeconds());
    out += '\n';
    appendOne(out, "korvane_web_farm_up", "gauge", "Whether the last reading of the farm succeeded.",
        m_hub.farm().connected ? 1 : 0);
    return out;
}
