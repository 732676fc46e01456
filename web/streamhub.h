#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "eventframe.h"
#include "eventring.h"
#include "farmstate.h"

// The one state of the farm and every open event stream. The reading thread
// publishes each change once, as an encoded frame; the hub hands the same
// frame to every stream's queue. A stream whose queue outgrows its limit
// (its browser reads slower than the farm changes) loses the queue and is
// sent one snapshot of the state when its writer next takes. Neither the
// reading nor the other streams ever wait for a stream. Thread-safe.
class StreamHub final
{
public:
    struct Limits
    {
        std::size_t maxStreams = 256;
        // Bytes a stream may have waiting beyond what its writer has taken.
        std::size_t maxQueuedBytes = std::size_t {8} * 1024 * 1024;
        std::size_t ringEvents = 120;
    };

    struct Counters
    {
        std::atomic<std::uint64_t> events {0};
        std::atomic<std::uint64_t> bytes {0};
        std::atomic<std::uint64_t> resyncs {0};
        std::atomic<std::uint64_t> refused {0};
    };

    using StreamId = std::uint64_t;
    // Called, without the hub's lock, when a stream has something to take
    // or is to close. Must not block.
    using Wake = std::function<void()>;

    StreamHub(const Limits& limits, FarmState initial);
    StreamHub(const StreamHub&) = delete;
    StreamHub& operator=(const StreamHub&) = delete;

    // The reading's side. A new state with the event that leads to it from
    // the last one (a delta or a farm event, numbered state.seq).
    void publish(FarmState state, const EventFrame& event);
    // An event for every stream that changes no state and is not kept for
    // resuming: the time of a reading that found nothing new.
    void publishTransient(const EventFrame& event);
    // A followed batch's status, for the streams that follow it.
    void publishBatch(std::uint32_t batchId, const EventFrame& event);
    // The batches at least one stream follows.
    std::set<std::uint32_t> followedBatches() const;

    // The writers' side. A new stream starts with the events after
    // lastEventId when the ring still has them, else with a snapshot; and
    // with the last status of the batch it follows, if any. Nothing when
    // maxStreams are open.
    std::optional<StreamId> open(
        std::optional<std::uint64_t> lastEventId, std::optional<std::uint32_t> followedBatch, Wake wake);
    void close(StreamId id);
    // What the stream is to send now, oldest first; empty when nothing. False
    // when the stream is to end (the hub is shutting down).
    bool take(StreamId id, std::vector<EventFrame>& frames);
    // Ends every stream: each is woken and its take() says false.
    void shutDown();

    // The state as one document, for GET /api/v1/snapshot; encoded once per state.
    std::string snapshotJson();
    FarmState state() const;
    FarmStatus farm() const;
    std::size_t streamCount() const;
    // Whether the last reading knew the batch or the node.
    bool knowsBatch(std::uint32_t id) const;
    bool knowsNode(std::uint32_t id) const;
    Counters& counters() { return m_counters; }

private:
    struct Stream
    {
        std::vector<EventFrame> queue;
        std::size_t queuedBytes = 0;
        bool resync = false;
        std::optional<std::uint32_t> followedBatch;
        Wake wake;
    };

    // Under m_mutex. Queues a frame, or drops the queue when it is full.
    void push(Stream& stream, const EventFrame& frame);
    // Under m_mutex. Queues the frame for every stream, or only for those
    // that follow the batch; the wakes to call once the lock is released.
    std::vector<Wake> pushToStreams(const EventFrame& event, std::optional<std::uint32_t> followedBatch);
    static void wakeAll(const std::vector<Wake>& wakes);
    EventFrame snapshotFrameLocked();

    const Limits m_limits;
    mutable std::mutex m_mutex;
    FarmState m_state;
    EventRing m_ring;
    std::map<StreamId, Stream> m_streams;
    std::map<std::uint32_t, EventFrame> m_batchEvents;
    StreamId m_nextId = 1;
    bool m_shutDown = false;
    // Encoded on demand, for the state of m_snapshotSeq.
    std::uint64_t m_snapshotSeq = 0;
    EventFrame m_snapshotFrame;
    Counters m_counters;
};
