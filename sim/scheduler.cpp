#include "scheduler.h"

#include <algorithm>

void Scheduler::assign(std::vector<SimBatch>& batches, std::vector<SimNode>& nodes, Rng& rng)
{
    std::vector<SimNode*> free;
    for (SimNode& node : nodes) {
        if (node.available())
            free.push_back(&node);
    }
    if (free.empty())
        return;

    std::vector<SimBatch*> queue;
    for (SimBatch& batch : batches) {
        if (batch.runnable() && batch.currentTask().itemsUnassigned() > 0)
            queue.push_back(&batch);
    }
    if (queue.empty())
        return;

    std::stable_sort(free.begin(), free.end(), [](const SimNode* a, const SimNode* b) {
        if (a->priority != b->priority)
            return a->priority > b->priority;
        return a->id < b->id;
    });
    std::stable_sort(queue.begin(), queue.end(), [](const SimBatch* a, const SimBatch* b) {
        if (a->priority != b->priority)
            return a->priority > b->priority;
        if (a->timeStarted != b->timeStarted)
            return a->timeStarted < b->timeStarted;
        return a->id < b->id;
    });

    std::size_t next = 0;
    for (SimNode* node : free) {
        while (next < queue.size() && queue[next]->currentTask().itemsUnassigned() <= 0)
            ++next;
        if (next == queue.size())
            break;
        SimBatch& batch = *queue[next];
        SimTask& task = batch.currentTask();
        ++task.itemsRunning;
        task.status = SimStatus::InProgress;
        batch.status = SimStatus::InProgress;
        node->batchId = batch.id;
        node->taskIndex = batch.current;
        node->loading = rng.range(1.0, 3.0);
        node->workTotal = task.itemSeconds * rng.range(0.8, 1.2);
        node->workLeft = node->workTotal;
    }
}
