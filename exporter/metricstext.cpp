#include "metricstext.h"

#include <array>
#include <functional>
#include <vector>

#include "buildinfo.h"
#include "exposition.h"

namespace {

using Batch = ControlClient::BatchInfo;
using Node = ControlClient::NodeInfo;

constexpr int StatusCount = 6;
const char* const StatusLabels[StatusCount]
    = {"pending", "working", "completed", "paused", "aborted", "ready"};

int statusIndex(int status)
{
    // The client reads unknown words as pending; values outside the range cannot come from it.
    return status >= 0 && status < StatusCount ? status : 0;
}

// One series of a family: name{labels} value
template <typename Value>
void appendSeries(std::string& out, const char* name, const std::string& labels, Value value)
{
    out += name;
    out += '{';
    out += labels;
    out += "} ";
    appendValue(out, value);
    out += '\n';
}

void appendStatusCounts(
    std::string& out, const char* name, const std::array<std::int64_t, StatusCount>& counts)
{
    for (int status = 0; status < StatusCount; ++status) {
        out += name;
        out += "{status=\"";
        out += StatusLabels[status];
        out += "\"} ";
        appendValue(out, counts[status]);
        out += '\n';
    }
}

std::string idLabel(const char* idName, std::uint32_t id)
{
    std::string label = idName;
    label += "=\"";
    appendValue(label, std::int64_t {id});
    label += '"';
    return label;
}

void appendTextLabel(std::string& labels, const char* name, const std::string& value)
{
    labels += ',';
    labels += name;
    labels += "=\"";
    appendLabelValue(labels, value);
    labels += '"';
}

// One 0/1 series per status word of the list, 1 for the current one.
void appendStatusSeries(
    std::string& out, const char* name, const std::string& id, int status, const std::vector<int>& statuses)
{
    for (const int each : statuses) {
        out += name;
        out += '{';
        out += id;
        out += ",status=\"";
        out += StatusLabels[each];
        out += "\"} ";
        out += each == statusIndex(status) ? '1' : '0';
        out += '\n';
    }
}

bool collected(const Batch& batch, CollectMode mode)
{
    switch (mode) {
    case CollectMode::All:
        return true;
    case CollectMode::None:
        return false;
    case CollectMode::Working:
        return batch.status == ControlClient::InProgress;
    case CollectMode::Unfinished:
        break;
    }
    return batch.status == ControlClient::Pending || batch.status == ControlClient::InProgress
        || batch.status == ControlClient::Paused;
}

// The status words a collected batch can have: a batch that leaves them
// leaves the series altogether.
std::vector<int> batchStatuses(CollectMode mode)
{
    switch (mode) {
    case CollectMode::All:
        return {0, 1, 2, 3, 4, 5};
    case CollectMode::Working:
        return {ControlClient::InProgress};
    case CollectMode::None:
        return {};
    case CollectMode::Unfinished:
        break;
    }
    return {ControlClient::Pending, ControlClient::InProgress, ControlClient::Paused};
}

void writeNodes(const ControlClient::NodeList& nodes, std::string& out)
{
    std::vector<std::string> ids;
    ids.reserve(nodes.size());
    for (const Node& node : nodes)
        ids.push_back(idLabel("node_id", node.nodeId));

    appendFamily(
        out, "korvane_node_info", "gauge", "A worker node's host and version; the value is always 1.");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        std::string info = ids[i];
        appendTextLabel(info, "host", nodes[i].hostname);
        appendTextLabel(info, "version", nodes[i].version);
        appendSeries(out, "korvane_node_info", info, std::int64_t {1});
    }

    static const std::vector<int> AllStatuses {0, 1, 2, 3, 4, 5};
    appendFamily(
        out, "korvane_node_status", "gauge", "1 for the worker node's current status, 0 for the others.");
    for (std::size_t i = 0; i < nodes.size(); ++i)
        appendStatusSeries(out, "korvane_node_status", ids[i], nodes[i].status, AllStatuses);

    appendFamily(
        out, "korvane_node_priority", "gauge", "A worker node's priority, from -2 (lowest) to 2 (highest).");
    for (std::size_t i = 0; i < nodes.size(); ++i)
        appendSeries(out, "korvane_node_priority", ids[i], std::int64_t {nodes[i].priority});

    appendFamily(out, "korvane_node_progress_ratio", "gauge",
        "Progress of the node's share of its current task, 0 to 1.");
    for (std::size_t i = 0; i < nodes.size(); ++i)
        appendSeries(out, "korvane_node_progress_ratio", ids[i], nodes[i].progress / 100.0);

    appendFamily(out, "korvane_node_errors_total", "counter", "Errors the worker node has reported.");
    for (std::size_t i = 0; i < nodes.size(); ++i)
        appendSeries(out, "korvane_node_errors_total", ids[i], std::int64_t {nodes[i].errorCount});

    appendFamily(out, "korvane_node_last_error_timestamp_seconds", "gauge",
        "Time of the worker node's last error, in seconds since the Unix epoch; absent before the first.");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].lastError.time != 0)
            appendSeries(out, "korvane_node_last_error_timestamp_seconds", ids[i],
                std::int64_t {nodes[i].lastError.time});
    }
}

void writeBatches(const ControlClient::BatchList& all, CollectMode mode, std::string& out)
{
    if (mode == CollectMode::None)
        return;
    std::vector<const Batch*> batches;
    std::vector<std::string> ids;
    for (const Batch& batch : all) {
        if (!collected(batch, mode))
            continue;
        batches.push_back(&batch);
        ids.push_back(idLabel("batch_id", batch.batchId));
    }

    appendFamily(
        out, "korvane_batch_info", "gauge", "A batch's project and current task; the value is always 1.");
    for (std::size_t i = 0; i < batches.size(); ++i) {
        std::string info = ids[i];
        appendTextLabel(info, "project", batches[i]->path);
        appendTextLabel(info, "task", batches[i]->task.name);
        appendSeries(out, "korvane_batch_info", info, std::int64_t {1});
    }

    const std::vector<int> statuses = batchStatuses(mode);
    appendFamily(out, "korvane_batch_status", "gauge", "1 for the batch's current status, 0 for the others.");
    for (std::size_t i = 0; i < batches.size(); ++i)
        appendStatusSeries(out, "korvane_batch_status", ids[i], batches[i]->status, statuses);

    const auto family
        = [&](const char* name, const char* help, const std::function<double(const Batch&)>& value) {
              appendFamily(out, name, "gauge", help);
              for (std::size_t i = 0; i < batches.size(); ++i)
                  appendSeries(out, name, ids[i], value(*batches[i]));
          };
    family("korvane_batch_priority", "A batch's priority, from -2 (lowest) to 2 (highest).",
        [](const Batch& batch) { return batch.priority; });
    family("korvane_batch_progress_ratio", "Progress of the batch's current task, 0 to 1.",
        [](const Batch& batch) { return batch.task.progress / 100.0; });
    family("korvane_batch_task_elapsed_seconds", "Seconds the batch's current task has run.",
        [](const Batch& batch) { return batch.task.timeElapsed; });
    family("korvane_batch_task_remaining_seconds",
        "Seconds the batch's current task is expected to take still.",
        [](const Batch& batch) { return batch.task.timeLeft; });
    family("korvane_batch_nodes_active", "Worker nodes at work on the batch's current task.",
        [](const Batch& batch) { return batch.task.nodesActive; });
    family("korvane_batch_nodes_waiting", "Worker nodes waiting for work of the batch's current task.",
        [](const Batch& batch) { return batch.task.nodesWaiting; });
    family("korvane_batch_nodes_failed", "Worker nodes that failed on the batch's current task.",
        [](const Batch& batch) { return batch.task.nodesFailed; });

    appendFamily(out, "korvane_batch_started_timestamp_seconds", "gauge",
        "Time the batch started, in seconds since the Unix epoch; absent before it starts.");
    for (std::size_t i = 0; i < batches.size(); ++i) {
        if (batches[i]->timeStarted != 0)
            appendSeries(out, "korvane_batch_started_timestamp_seconds", ids[i],
                std::int64_t {batches[i]->timeStarted});
    }
}

void writeBuildInfo(std::string& out)
{
    appendFamily(out, "korvane_exporter_build_info", "gauge",
        "The exporter's version, source revision and compiler; the value is always 1.");
    std::string labels = "version=\"";
    appendLabelValue(labels, BuildInfo::version());
    labels += '"';
    appendTextLabel(labels, "revision", BuildInfo::revision());
    appendTextLabel(labels, "compiler", BuildInfo::compiler());
    appendSeries(out, "korvane_exporter_build_info", labels, std::int64_t {1});
}

} // namespace

const char* statusLabel(int status)
{
    return StatusLabels[statusIndex(status)];
}

void writeFarmMetrics(const FarmSnapshot& farm, CollectMode batches, std::string& out)
{
    appendFamily(out, "korvane_up", "gauge",
        "1 when this scrape's requests to the processing server succeeded, else 0.");
    out += farm.up ? "korvane_up 1\n" : "korvane_up 0\n";
    writeBuildInfo(out);
    if (!farm.up)
        return;

    std::array<std::int64_t, StatusCount> batchCounts {};
    for (const Batch& batch : farm.batches)
        ++batchCounts[statusIndex(batch.status)];
    std::array<std::int64_t, StatusCount> nodeCounts {};
    for (const Node& node : farm.nodes)
        ++nodeCounts[statusIndex(node.status)];

    appendFamily(out, "korvane_batches", "gauge", "Batches on the processing server, by status.");
    appendStatusCounts(out, "korvane_batches", batchCounts);
    appendFamily(out, "korvane_nodes", "gauge", "Worker nodes of the processing server, by status.");
    appendStatusCounts(out, "korvane_nodes", nodeCounts);

    writeNodes(farm.nodes, out);
    writeBatches(farm.batches, batches, out);
}

void writeScrapeDuration(double seconds, std::string& out)
{
    appendFamily(out, "korvane_scrape_duration_seconds", "gauge",
        "Seconds this exporter took to read the farm's state from the processing server and write it out.");
    out += "korvane_scrape_duration_seconds ";
    appendValue(out, seconds);
    out += '\n';
}
