#pragma once

#include <vector>

#include "rng.h"
#include "simrecords.h"

// Hands out work: every available node, highest node priority first (then
// lowest id), takes one item of the first batch that still has items to give,
// batches ordered by priority (highest first), then age (oldest start time,
// then lowest id). A batch that receives its first item starts running.
class Scheduler final
{
public:
    static void assign(std::vector<SimBatch>& batches, std::vector<SimNode>& nodes, Rng& rng);
};
