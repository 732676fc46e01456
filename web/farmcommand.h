#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <json/value.h>

// One request from a browser for the reading's connection: an action on
// one or more batches or nodes, or the status of one batch.
struct FarmCommand
{
    enum class Target
    {
        Batch,
        Node,
    };

    enum class Action
    {
        Pause,
        Resume,
        Abort, // batches
        Stop, // nodes: pause, then abort
        Priority,
        Status, // one batch's status with its tasks
    };

    // How the server took it, for each id.
    enum class Outcome
    {
        Accepted,
        Refused, // answered, without a result
        Unreachable, // no connection to the server
        TimedOut, // sent, not answered in time
    };

    struct Result
    {
        std::uint32_t id = 0;
        Outcome outcome = Outcome::Unreachable;
        // Why it was not accepted, as the log says it.
        std::string reason;
        // Status: the batch's status in its wire form.
        Json::Value status;
    };

    Target target = Target::Batch;
    Action action = Action::Pause;
    std::vector<std::uint32_t> ids;
    int priority = 0;
    // Called on the reading's thread with one result per id, in order.
    std::function<void(std::vector<Result>)> done;
};

// "pause", "resume", "abort", "stop", "priority", "status"
const char* actionWord(FarmCommand::Action action);
// "accepted", "refused", "unreachable", "timed out"
const char* outcomeWord(FarmCommand::Outcome outcome);
