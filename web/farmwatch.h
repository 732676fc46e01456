#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <iosfwd>
#include <map>
#include <mutex>
#include <string>

#include <json/value.h>

#include "farmcommand.h"
#include "farmreader.h"
#include "farmstate.h"

class StreamHub;

// The web monitor's one reading of the farm, on one connection and one
// thread: "listBatches" and "listNodes" every interval, "getBatchStatus"
// for each batch a stream follows, and the browsers' commands in between,
// in the order they came. Each change becomes one event for the hub: a
// delta of the rows, or a farm event when the farm is lost or back.
//
// Event numbers start from the Unix time in milliseconds when the watch is
// made and rise by one per event, so that the numbers a browser kept from an
// earlier run of the program are never taken for this run's.
//
// run() belongs to one thread; submit() and stop() may be called from any.
class FarmWatch final
{
public:
    struct Settings
    {
        std::string server = "127.0.0.1";
        std::chrono::milliseconds interval {1000};
        // The longest time for one reading, or one command, with the connect.
        std::chrono::milliseconds timeout {5000};
        // Commands waiting beyond this are refused at once as unreachable.
        std::size_t maxQueued = 64;
    };

    FarmWatch(Settings settings, StreamHub& hub, std::ostream& log);
    FarmWatch(const FarmWatch&) = delete;
    FarmWatch& operator=(const FarmWatch&) = delete;

    // The state before the first reading, for the hub: no rows, the farm
    // not yet read, and the first event number (the time now).
    static FarmState initialState();

    // Reads and runs commands until stop().
    void run();
    void stop();

    // Queues a command for the reading's connection. False, without calling
    // command.done, when the queue is full or the watch has stopped.
    bool submit(FarmCommand command);

    // Seconds the last reading took, for the metrics.
    double lastReadingSeconds() const;

private:
    void readOnce();
    void followBatches(std::chrono::steady_clock::time_point deadline);
    void execute(FarmCommand& command);
    FarmCommand::Result runOne(ControlClient& client, const FarmCommand& command, std::uint32_t id);
    void publishFarm(const FarmStatus& status);
    std::int64_t nextTry(std::chrono::steady_clock::time_point nextReading) const;

    const Settings m_settings;
    StreamHub& m_hub;
    std::ostream& m_log;
    FarmReader m_reader;

    // The reading thread's own.
    FarmState m_state;
    FarmSnapshot m_snapshot;
    std::map<std::uint32_t, Json::Value> m_followed;
    std::chrono::steady_clock::time_point m_nextReading;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<FarmCommand> m_commands;
    bool m_stopping = false;
    double m_readingSeconds = 0.0;
};
