#include "metricstext.h"

#include <array>
#include <functional>
#include <vector>

#include "exposition.h"

namespace {

using Batch = ControlClient::BatchInfo;
using Node = ControlClient::NodeInfo;

constexpr int StatusCount = 6;
const char* const StatusLabels[StatusCount]
    = {"pending", "working", "completed", "paused", "aborted", "ready"};

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

// The labels that name one node or batch: its id and its host or project.
std::string idLabels(const char* idName, std::uint32_t id, const char* textName, const std::string& text)
{
    std::string labels = idName;
    labels += "=\"";
    appendValue(labels, std::int64_t {id});
    labels += "\",";
    labels += textName;
    labels += "=\"";
    appendLabelValue(labels, text);
    labels += '"';
    return labels;
}

bool exported(const Batch& batch, bool allBatches)
{
    return allBatches || batch.status == ControlClient::Pending || batch.status == ControlClient::InProgress
        || batch.status == ControlClient::Paused;
}

void writeNodes(const ControlClient::NodeList& nodes, std::string& out)
{
    std::vector<std::string> labels;
    labels.reserve(nodes.size());
    for (const Node& node : nodes)
        labels.push_back(idLabels("node_id", node.nodeId, "host", node.hostname));

    appendFamily(
        out, "korvane_node_info", "gauge", "A worker node's version and status; the value is always 1.");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        std::string info = labels[i] + ",version=\"";
        appendLabelValue(info, nodes[i].version);
        info += "\",status=\"";
        info += statusLabel(nodes[i].status);
        info += '"';
        appendSeries(out, "korvane_node_info", info, std::int64_t {1});
    }

    appendFamily(
        out, "korvane_node_priority", "gauge", "A worker node's priority, from -2 (lowest) to 2 (highest).");
    for (std::size_t i = 0; i < nodes.size(); ++i)
        appendSeries(out, "korvane_node_priority", labels[i], std::int64_t {nodes[i].priority});

    appendFamily(out, "korvane_node_progress_ratio", "gauge",
        "Progress of the node's share of its current task, 0 to 1.");
    for (std::size_t i = 0; i < nodes.size(); ++i)
        appendSeries(out, "korvane_node_progress_ratio", labels[i], nodes[i].progress / 100.0);

    appendFamily(out, "korvane_node_errors_total", "counter", "Errors the worker node has reported.");
    for (std::size_t i = 0; i < nodes.size(); ++i)
        appendSeries(out, "korvane_node_errors_total", labels[i], std::int64_t {nodes[i].errorCount});

    appendFamily(out, "korvane_node_last_error_timestamp_seconds", "gauge",
        "Time of the worker node's last error, in seconds since the Unix epoch; absent before the first.");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].lastError.time != 0)
            appendSeries(out, "korvane_node_last_error_timestamp_seconds", labels[i],
                std::int64_t {nodes[i].lastError.time});
    }
}

void writeBatches(const ControlClient::BatchList& all, bool allBatches, std::string& out)
{
    std::vector<const Batch*> batches;
    std::vector<std::string> labels;
    for (const Batch& batch : all) {
        if (!exported(batch, allBatches))
            continue;
        batches.push_back(&batch);
        labels.push_back(idLabels("batch_id", batch.batchId, "project", batch.path));
    }

    appendFamily(
        out, "korvane_batch_info", "gauge", "A batch's current task and status; the value is always 1.");
    for (std::size_t i = 0; i < batches.size(); ++i) {
        std::string info = labels[i] + ",task=\"";
        appendLabelValue(info, batches[i]->task.name);
        info += "\",status=\"";
        info += statusLabel(batches[i]->status);
        info += '"';
        appendSeries(out, "korvane_batch_info", info, std::int64_t {1});
    }

    const auto family
        = [&](const char* name, const char* help, const std::function<double(const Batch&)>& value) {
              appendFamily(out, name, "gauge", help);
              for (std::size_t i = 0; i < batches.size(); ++i)
                  appendSeries(out, name, labels[i], value(*batches[i]));
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
            appendSeries(out, "korvane_batch_started_timestamp_seconds", labels[i],
                std::int64_t {batches[i]->timeStarted});
    }
}

} // namespace

const char* statusLabel(int status)
{
    // The client reads unknown words as pending; values outside the range cannot come from it.
    return status >= 0 && status < StatusCount ? StatusLabels[status] : StatusLabels[0];
}

void writeFarmMetrics(const FarmSnapshot& farm, bool allBatches, std::string& out)
{
    appendFamily(out, "korvane_up", "gauge",
        "1 when this scrape's requests to the processing server succeeded, else 0.");
    out += farm.up ? "korvane_up 1\n" : "korvane_up 0\n";
    if (!farm.up)
        return;

    std::array<std::int64_t, StatusCount> batchCounts {};
    for (const Batch& batch : farm.batches)
        ++batchCounts[batch.status >= 0 && batch.status < StatusCount ? batch.status : 0];
    std::array<std::int64_t, StatusCount> nodeCounts {};
    for (const Node& node : farm.nodes)
        ++nodeCounts[node.status >= 0 && node.status < StatusCount ? node.status : 0];

    appendFamily(out, "korvane_batches", "gauge", "Batches on the processing server, by status.");
    appendStatusCounts(out, "korvane_batches", batchCounts);
    appendFamily(out, "korvane_nodes", "gauge", "Worker nodes of the processing server, by status.");
    appendStatusCounts(out, "korvane_nodes", nodeCounts);

    writeNodes(farm.nodes, out);
    writeBatches(farm.batches, allBatches, out);
}

void writeScrapeDuration(double seconds, std::string& out)
{
    appendFamily(out, "korvane_scrape_duration_seconds", "gauge",
        "Seconds this exporter took to read the farm's state from the processing server and write it out.");
    out += "korvane_scrape_duration_seconds ";
    appendValue(out, seconds);
    out += '\n';
}
