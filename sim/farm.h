#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "farmgenerator.h"
#include "rng.h"
#include "simrecords.h"

struct FarmConfig
{
    std::uint64_t seed = 1;
    int batches = 30;
    int nodes = 12;
    std::uint32_t startTime = 1700000000; // simulated clock at the start, Unix seconds
    double failuresPerNodeHour = 6.0;
    // Share of generated tasks with an object-valued parameter, which the
    // monitor skips with a console line each time it reads one (0: none).
    double objectParamRate = 0.0;
};

// The simulated processing farm. Simulated time moves only through tick();
// with the same configuration and the same ticks two farms stay identical.
//
// Commands change the batch or node at once (so the next poll shows them);
// what follows from them for the work (nodes letting go of items, new items
// handed out) happens at the next tick. Batch and node ids count from 1 and
// are positions in the lists; completed batches stay listed.
class Farm final
{
public:
    explicit Farm(const FarmConfig& config);

    void tick(double seconds);

    double now() const { return m_now; }
    std::uint32_t nowSeconds() const { return static_cast<std::uint32_t>(m_now); }
    // Goes up with every change, so that replies built from the state can be reused.
    std::uint64_t revision() const { return m_revision; }

    const std::vector<SimBatch>& batches() const { return m_batches; }
    const std::vector<SimNode>& nodes() const { return m_nodes; }
    const SimBatch* batch(std::uint32_t id) const;
    const SimNode* node(std::uint32_t id) const;

    // False for an unknown id. A command that has nothing to change (pausing
    // a completed batch, say) is accepted and does nothing.
    bool pauseBatch(std::uint32_t id);
    bool resumeBatch(std::uint32_t id);
    bool abortBatch(std::uint32_t id);
    bool setBatchPriority(std::uint32_t id, int priority);
    bool pauseNode(std::uint32_t id);
    bool resumeNode(std::uint32_t id);
    bool abortNode(std::uint32_t id);
    bool setNodePriority(std::uint32_t id, int priority);

    // Tasks need name, params and optionally chunks and frames; their size is made up here.
    std::uint32_t createBatch(const std::string& path, std::vector<SimTask> tasks);
    // The newest batch with exactly this path, or SimNoId.
    std::uint32_t findBatch(const std::string& path) const;

private:
    SimBatch* batchById(std::uint32_t id);
    SimNode* nodeById(std::uint32_t id);
    void advanceNode(SimNode& node, double seconds);
    void release(SimNode& node);
    void fail(SimNode& node, SimBatch& batch, SimTask& task);
    void advanceBatch(SimBatch& batch, double seconds);
    void updateCounters();

    FarmConfig m_config;
    Rng m_rng;
    FarmGenerator m_generator;
    double m_now;
    std::uint64_t m_revision = 0;
    std::vector<SimBatch> m_batches;
    std::vector<SimNode> m_nodes;
    std::vector<double> m_partial; // per batch, fractions of items in hand
};
