#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <json/value.h>

// The simulated farm's state. The wire form of these records is built in
// farmjson.cpp; the numbering of SimStatus is the protocol's.

constexpr std::uint32_t SimNoId = 0xFFFFFFFFu;

enum class SimStatus
{
    Pending = 0,
    InProgress = 1,
    Completed = 2,
    Paused = 3,
    Aborted = 4,
    Ready = 5,
};

// "pending", "inprogress", "completed", "paused", "aborted", "ready".
const char* statusWireName(SimStatus status);

struct SimError
{
    std::uint32_t time = 0; // 0: no error yet
    std::uint32_t otherId = SimNoId; // the batch for a node's error, the node for a batch's
    std::string message;
};

struct SimTask
{
    std::string name;
    Json::Value params; // object, or null for none
    Json::Value chunks; // as createBatch gave them, null otherwise
    Json::Value frames;
    SimStatus status = SimStatus::Pending;
    int itemsTotal = 1;
    int itemsDone = 0;
    int itemsRunning = 0; // handed to nodes and not yet done
    double itemSeconds = 10.0; // simulated time one item takes
    double timeElapsed = 0.0;
    // Recomputed from the nodes after every tick.
    double progress = 0.0;
    double timeLeft = 0.0;
    int nodesActive = 0;
    int nodesWaiting = 0;
    int nodesFailed = 0;

    int itemsUnassigned() const { return itemsTotal - itemsDone - itemsRunning; }
};

struct SimBatch
{
    std::uint32_t id = 0;
    std::string path;
    SimStatus status = SimStatus::Pending;
    int priority = 0;
    std::uint32_t timeStarted = 0;
    std::vector<SimTask> tasks; // never empty
    std::size_t current = 0; // the task shown as the batch's; the last one once completed
    SimError lastError;

    const SimTask& currentTask() const { return tasks[current]; }
    SimTask& currentTask() { return tasks[current]; }
    bool runnable() const { return status == SimStatus::Pending || status == SimStatus::InProgress; }
};

struct SimNode
{
    std::uint32_t id = 0;
    std::string hostname;
    std::string version;
    int priority = 0;
    bool paused = false;
    bool aborted = false;
    double recovering = 0.0; // seconds left of a restart after a failure
    double idle = 0.0; // seconds left before it takes the next item
    // The item it holds: batch, task index, loading time left, work left.
    std::uint32_t batchId = SimNoId;
    std::size_t taskIndex = 0;
    double loading = 0.0;
    double workLeft = 0.0;
    double workTotal = 0.0;
    std::uint32_t errorCount = 0;
    SimError lastError;

    bool holdsItem() const { return batchId != SimNoId; }
    bool available() const { return !paused && !aborted && recovering <= 0.0 && idle <= 0.0 && !holdsItem(); }
    // Aborted, then paused, then restarting (pending), working, ready.
    SimStatus status() const;
    // Percentage of the item in hand.
    double progress() const;
};
