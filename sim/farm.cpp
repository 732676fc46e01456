#include "farm.h"

#include <cmath>

#include "scheduler.h"

Farm::Farm(const FarmConfig& config)
    : m_config(config)
    , m_rng(config.seed)
    , m_generator(m_rng, config.objectParamRate)
    , m_now(config.startTime)
{
    m_nodes = m_generator.makeNodes(config.nodes, config.startTime);
    m_batches = m_generator.makeBatches(config.batches, config.startTime);
    updateCounters();
}

const SimBatch* Farm::batch(std::uint32_t id) const
{
    return id >= 1 && id <= m_batches.size() ? &m_batches[id - 1] : nullptr;
}

const SimNode* Farm::node(std::uint32_t id) const
{
    return id >= 1 && id <= m_nodes.size() ? &m_nodes[id - 1] : nullptr;
}

SimBatch* Farm::batchById(std::uint32_t id)
{
    return id >= 1 && id <= m_batches.size() ? &m_batches[id - 1] : nullptr;
}

SimNode* Farm::nodeById(std::uint32_t id)
{
    return id >= 1 && id <= m_nodes.size() ? &m_nodes[id - 1] : nullptr;
}

void Farm::tick(double seconds)
{
    if (seconds < 0.0)
        seconds = 0.0;
    m_now += seconds;
    for (SimNode& node : m_nodes)
        advanceNode(node, seconds);
    for (SimBatch& batch : m_batches)
        advanceBatch(batch, seconds);
    Scheduler::assign(m_batches, m_nodes, m_rng);
    updateCounters();
    ++m_revision;
}

void Farm::advanceNode(SimNode& node, double seconds)
{
    if (node.recovering > 0.0)
        node.recovering -= seconds;
    if (!node.holdsItem()) {
        if (node.idle > 0.0)
            node.idle -= seconds;
        return;
    }

    SimBatch& batch = m_batches[node.batchId - 1];
    SimTask& task = batch.tasks[node.taskIndex];
    if (!batch.runnable() || node.aborted || batch.current != node.taskIndex) {
        release(node);
        return;
    }
    if (node.paused || seconds <= 0.0)
        return;

    const double failure = 1.0 - std::exp(-m_config.failuresPerNodeHour * seconds / 3600.0);
    if (m_rng.chance(failure)) {
        fail(node, batch, task);
        return;
    }

    double step = seconds;
    if (node.loading > 0.0) {
        const double taken = node.loading < step ? node.loading : step;
        node.loading -= taken;
        step -= taken;
    }
    node.workLeft -= step;
    if (node.loading <= 0.0 && node.workLeft <= 0.0) {
        --task.itemsRunning;
        ++task.itemsDone;
        node.batchId = SimNoId;
        node.loading = node.workLeft = node.workTotal = 0.0;
        node.idle = m_rng.range(0.5, 3.0);
    }
}

void Farm::release(SimNode& node)
{
    if (!node.holdsItem())
        return;
    --m_batches[node.batchId - 1].tasks[node.taskIndex].itemsRunning;
    node.batchId = SimNoId;
    node.loading = node.workLeft = node.workTotal = 0.0;
}

void Farm::fail(SimNode& node, SimBatch& batch, SimTask& task)
{
    const char* message = m_generator.failureMessage();
    ++node.errorCount;
    node.lastError = {nowSeconds(), batch.id, message};
    batch.lastError = {nowSeconds(), node.id, message};
    ++task.nodesFailed;
    release(node);
    node.recovering = m_rng.range(5.0, 30.0);
}

void Farm::advanceBatch(SimBatch& batch, double seconds)
{
    if (batch.status != SimStatus::InProgress)
        return;
    SimTask& task = batch.currentTask();
    if (task.status == SimStatus::InProgress)
        task.timeElapsed += seconds;
    if (task.itemsDone < task.itemsTotal)
        return;
    task.status = SimStatus::Completed;
    if (batch.current + 1 < batch.tasks.size()) {
        ++batch.current; // the next task waits for its first node
        return;
    }
    batch.status = SimStatus::Completed;
}

void Farm::updateCounters()
{
    m_partial.assign(m_batches.size(), 0.0);
    for (SimBatch& batch : m_batches) {
        SimTask& task = batch.currentTask();
        task.nodesActive = 0;
        task.nodesWaiting = 0;
    }
    for (const SimNode& node : m_nodes) {
        if (!node.holdsItem())
            continue;
        SimTask& task = m_batches[node.batchId - 1].tasks[node.taskIndex];
        if (node.paused || node.loading > 0.0)
            ++task.nodesWaiting;
        else
            ++task.nodesActive;
        m_partial[node.batchId - 1] += node.progress() / 100.0;
    }
    for (std::size_t i = 0; i < m_batches.size(); ++i) {
        SimTask& task = m_batches[i].currentTask();
        if (task.status == SimStatus::Completed) {
            task.progress = 100.0;
            task.timeLeft = 0.0;
            continue;
        }
        task.progress = 100.0 * (task.itemsDone + m_partial[i]) / task.itemsTotal;
        if (task.status == SimStatus::InProgress && task.progress > 0.0)
            task.timeLeft = task.timeElapsed * (100.0 - task.progress) / task.progress;
        else
            task.timeLeft = 0.0;
    }
}

bool Farm::pauseBatch(std::uint32_t id)
{
    SimBatch* batch = batchById(id);
    if (!batch)
        return false;
    if (batch->runnable()) {
        batch->status = SimStatus::Paused;
        batch->currentTask().status = SimStatus::Paused;
        updateCounters();
        ++m_revision;
    }
    return true;
}

bool Farm::resumeBatch(std::uint32_t id)
{
    SimBatch* batch = batchById(id);
    if (!batch)
        return false;
    if (batch->status == SimStatus::Paused || batch->status == SimStatus::Aborted) {
        SimTask& task = batch->currentTask();
        const bool taskStarted = task.itemsDone > 0 || task.timeElapsed > 0.0;
        task.status = taskStarted ? SimStatus::InProgress : SimStatus::Pending;
        batch->status = taskStarted || batch->current > 0 ? SimStatus::InProgress : SimStatus::Pending;
        updateCounters();
        ++m_revision;
    }
    return true;
}

bool Farm::abortBatch(std::uint32_t id)
{
    SimBatch* batch = batchById(id);
    if (!batch)
        return false;
    if (batch->status != SimStatus::Completed && batch->status != SimStatus::Aborted) {
        batch->status = SimStatus::Aborted;
        batch->currentTask().status = SimStatus::Aborted;
        updateCounters();
        ++m_revision;
    }
    return true;
}

bool Farm::setBatchPriority(std::uint32_t id, int priority)
{
    SimBatch* batch = batchById(id);
    if (!batch)
        return false;
    batch->priority = priority;
    ++m_revision;
    return true;
}

bool Farm::pauseNode(std::uint32_t id)
{
    SimNode* node = nodeById(id);
    if (!node)
        return false;
    node->paused = true;
    updateCounters();
    ++m_revision;
    return true;
}

bool Farm::resumeNode(std::uint32_t id)
{
    SimNode* node = nodeById(id);
    if (!node)
        return false;
    node->paused = false;
    node->aborted = false;
    updateCounters();
    ++m_revision;
    return true;
}

bool Farm::abortNode(std::uint32_t id)
{
    SimNode* node = nodeById(id);
    if (!node)
        return false;
    node->aborted = true;
    ++m_revision;
    return true;
}

bool Farm::setNodePriority(std::uint32_t id, int priority)
{
    SimNode* node = nodeById(id);
    if (!node)
        return false;
    node->priority = priority;
    ++m_revision;
    return true;
}

std::uint32_t Farm::createBatch(const std::string& path, std::vector<SimTask> tasks)
{
    SimBatch batch;
    batch.id = static_cast<std::uint32_t>(m_batches.size() + 1);
    batch.path = path;
    batch.timeStarted = nowSeconds();
    batch.tasks = std::move(tasks);
    if (batch.tasks.empty())
        batch.tasks.emplace_back();
    for (SimTask& task : batch.tasks)
        m_generator.sizeTask(task);
    m_batches.push_back(std::move(batch));
    updateCounters();
    ++m_revision;
    return m_batches.back().id;
}

std::uint32_t Farm::findBatch(const std::string& path) const
{
    for (auto it = m_batches.rbegin(); it != m_batches.rend(); ++it) {
        if (it->path == path)
            return it->id;
    }
    return SimNoId;
}
