#pragma once

#include <cstdint>
#include <vector>

#include "rng.h"
#include "simrecords.h"

// Makes up the farm a simulation starts with: worker nodes named like
// "render-07:5841", and batches of 2 to 8 tasks with parameters of every
// JSON kind tasks use (objects only when asked for). The first batches are put into the finished states
// (completed, aborted, paused) so that every status shows from the start.
class FarmGenerator final
{
public:
    // objectParamRate: the share of tasks given an object-valued parameter.
    FarmGenerator(Rng& rng, double objectParamRate);

    std::vector<SimNode> makeNodes(int count, std::uint32_t now);
    // Oldest first, started before now; ids from 1.
    std::vector<SimBatch> makeBatches(int count, std::uint32_t now);

    SimTask makeTask();
    Json::Value makeParams();
    // Items and per-item time of a task created by a client.
    void sizeTask(SimTask& task);
    const char* failureMessage();

private:
    void finishTasksBefore(SimBatch& batch, std::size_t index);

    Rng& m_rng;
    double m_objectParamRate;
};
