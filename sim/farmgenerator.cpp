#include "farmgenerator.h"

#include <cstdio>
#include <string>

namespace {

// Method names the monitor knows, in the order a project usually runs them.
const char* const KnownTasks[] = {"AddPhotos", "AnalyzePhotos", "MatchPhotos", "AlignCameras",
    "OptimizeCameras", "BuildDenseCloud", "ClassifyGroundPoints", "BuildModel", "SmoothModel",
    "DecimateModel", "BuildUV", "BuildTexture", "BuildTiledModel", "BuildDem", "BuildOrthomosaic",
    "BuildContours", "DetectMarkers", "RefineMarkers", "ExportModel", "ExportPoints", "ExportDem",
    "ExportOrthomosaic", "ExportTiledModel", "ExportReport", "ExportCameras", "ImportCameras", "ImportMasks",
    "RunScript", "SaveProject", "LoadProject", "MergeChunks", "AlignChunks"};

// Names a newer server might send that the monitor has no display name for.
const char* const UnknownTasks[] = {"ComputeVolumes", "FilterNoise", "RepairTopology"};

const char* const Sites[] = {"harbour", "quarry", "bridge", "campus", "orchard", "dam", "castle", "mine",
    "viaduct", "chapel", "stadium", "forest"};

const char* const Versions[] = {"1.4.2", "1.4.3", "1.5.0"};

const char* const Failures[] = {"out of memory", "not enough disk space", "lost connection to storage",
    "worker process crashed", "timed out reading input data", "GPU driver reset"};

const char* const Formats[] = {"tif", "jpg", "obj", "ply", "las", "pdf"};

int randomPriority(Rng& rng)
{
    if (rng.chance(0.6))
        return 0;
    return rng.range(-2, 2);
}

} // namespace

FarmGenerator::FarmGenerator(Rng& rng, double objectParamRate)
    : m_rng(rng)
    , m_objectParamRate(objectParamRate)
{
}

std::vector<SimNode> FarmGenerator::makeNodes(int count, std::uint32_t now)
{
    std::vector<SimNode> nodes(count > 0 ? count : 0);
    const int width = count > 99 ? static_cast<int>(std::to_string(count).size()) : 2;
    for (int i = 0; i < count; ++i) {
        SimNode& node = nodes[i];
        node.id = static_cast<std::uint32_t>(i + 1);
        char name[64];
        std::snprintf(name, sizeof name, "render-%0*d:5841", width, i + 1);
        node.hostname = name;
        node.version = m_rng.pick(Versions);
        node.priority = randomPriority(m_rng);
        node.idle = m_rng.range(0.0, 1.0);
        if (m_rng.chance(0.25)) {
            // An error from earlier, some of them from before today.
            node.errorCount = static_cast<std::uint32_t>(m_rng.range(1, 4));
            node.lastError.time = now - static_cast<std::uint32_t>(m_rng.range(60, 3 * 86400));
            node.lastError.otherId = static_cast<std::uint32_t>(m_rng.range(1, 50));
            node.lastError.message = failureMessage();
        }
        node.paused = m_rng.chance(0.02);
        node.aborted = m_rng.chance(0.01);
    }
    // A few fixed ones so that every node status shows even on a small farm.
    if (count >= 6) {
        nodes[count - 1].paused = true;
        nodes[count - 2].aborted = true;
        nodes[count - 3].recovering = 30.0;
    }
    return nodes;
}

std::vector<SimBatch> FarmGenerator::makeBatches(int count, std::uint32_t now)
{
    std::vector<SimBatch> batches(count > 0 ? count : 0);
    // Started one after the other, a few minutes apart, the last just now.
    std::uint32_t started = now;
    for (int i = count - 1; i >= 0; --i) {
        started -= static_cast<std::uint32_t>(m_rng.range(60, 900));
        batches[i].timeStarted = started;
    }
    for (int i = 0; i < count; ++i) {
        SimBatch& batch = batches[i];
        batch.id = static_cast<std::uint32_t>(i + 1);
        char path[128];
        const char* site = m_rng.pick(Sites);
        std::snprintf(path, sizeof path, "/srv/projects/%s-%03d/%s.kproj", site, m_rng.range(1, 999), site);
        batch.path = path;
        batch.priority = randomPriority(m_rng);
        const int tasks = m_rng.range(2, 8);
        for (int t = 0; t < tasks; ++t)
            batch.tasks.push_back(makeTask());

        SimStatus state = SimStatus::Pending;
        const double roll = m_rng.uniform();
        if (i == 0 || (i > 2 && roll < 0.25))
            state = SimStatus::Completed;
        else if (i == 1 || (i > 2 && roll < 0.28))
            state = SimStatus::Aborted;
        else if (i == 2 || (i > 2 && roll < 0.31))
            state = SimStatus::Paused;

        if (state == SimStatus::Completed) {
            finishTasksBefore(batch, batch.tasks.size());
            batch.current = batch.tasks.size() - 1;
            batch.status = SimStatus::Completed;
        } else if (state != SimStatus::Pending) {
            // Stopped part way through one task.
            const std::size_t at = static_cast<std::size_t>(m_rng.range(0, tasks - 1));
            finishTasksBefore(batch, at);
            SimTask& task = batch.tasks[at];
            task.itemsDone = m_rng.range(0, task.itemsTotal - 1);
            task.timeElapsed = task.itemsDone * task.itemSeconds + m_rng.range(1.0, task.itemSeconds);
            task.progress = 100.0 * task.itemsDone / task.itemsTotal;
            task.status = state;
            batch.current = at;
            batch.status = state;
        }
        if (state == SimStatus::Aborted || (state == SimStatus::Completed && m_rng.chance(0.2))) {
            batch.lastError.time = batch.timeStarted + static_cast<std::uint32_t>(m_rng.range(30, 600));
            batch.lastError.otherId = static_cast<std::uint32_t>(m_rng.range(1, 20));
            batch.lastError.message = failureMessage();
            batch.currentTask().nodesFailed = m_rng.range(1, 3);
        }
    }
    return batches;
}

void FarmGenerator::finishTasksBefore(SimBatch& batch, std::size_t index)
{
    for (std::size_t t = 0; t < index; ++t) {
        SimTask& task = batch.tasks[t];
        task.status = SimStatus::Completed;
        task.itemsDone = task.itemsTotal;
        task.progress = 100.0;
        // Several nodes shared the work.
        task.timeElapsed = task.itemsTotal * task.itemSeconds / m_rng.range(1, 6);
    }
}

SimTask FarmGenerator::makeTask()
{
    SimTask task;
    task.name = m_rng.chance(0.04) ? m_rng.pick(UnknownTasks) : m_rng.pick(KnownTasks);
    task.params = makeParams();
    task.itemsTotal = m_rng.range(4, 60);
    task.itemSeconds = m_rng.range(5.0, 120.0);
    return task;
}

Json::Value FarmGenerator::makeParams()
{
    Json::Value params(Json::objectValue);
    if (m_rng.chance(0.1))
        return Json::Value(); // a task without parameters
    params["quality"] = m_rng.range(0, 4);
    if (m_rng.chance(0.5))
        params["keypoint_limit"] = static_cast<Json::UInt>(m_rng.range(1, 8) * 10000);
    if (m_rng.chance(0.5))
        params["offset"] = m_rng.range(-50, 50);
    if (m_rng.chance(0.6))
        params["max_error"] = static_cast<double>(m_rng.range(1, 40)) / 8.0;
    if (m_rng.chance(0.5))
        params["format"] = m_rng.pick(Formats);
    if (m_rng.chance(0.3))
        params["path"] = "/srv/exports/out_" + std::to_string(m_rng.range(1, 9999));
    if (m_rng.chance(0.5))
        params["keep_keypoints"] = m_rng.chance(0.5);
    if (m_rng.chance(0.3)) {
        Json::Value cameras(Json::arrayValue);
        const int count = m_rng.range(1, 6);
        for (int i = 0; i < count; ++i)
            cameras.append(m_rng.range(0, 500));
        params["cameras"] = cameras;
    }
    if (m_rng.chance(0.3)) {
        Json::Value region(Json::arrayValue);
        for (int i = 0; i < 3; ++i)
            region.append(static_cast<double>(m_rng.range(-4000, 4000)) / 16.0);
        params["region"] = region;
    }
    // Drawn whatever the rate, so that the rate changes nothing else of a seed's farm.
    const bool withOptions = m_rng.chance(m_objectParamRate);
    Json::Value options(Json::objectValue);
    options["threads"] = m_rng.range(1, 32);
    options["use_gpu"] = m_rng.chance(0.5);
    if (withOptions)
        params["options"] = std::move(options);
    return params;
}

void FarmGenerator::sizeTask(SimTask& task)
{
    const int chunks
        = task.chunks.isArray() && task.chunks.size() > 0 ? static_cast<int>(task.chunks.size()) : 1;
    const int frames
        = task.frames.isArray() && task.frames.size() > 0 ? static_cast<int>(task.frames.size()) : 1;
    task.itemsTotal = 4 * chunks * frames;
    task.itemSeconds = m_rng.range(5.0, 60.0);
}

const char* FarmGenerator::failureMessage()
{
    return m_rng.pick(Failures);
}
