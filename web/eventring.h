#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "eventframe.h"

// The last events that changed the state (deltas and farm events), by
// sequence number, so that a stream that comes back with Last-Event-ID gets
// only what it missed. Sequence numbers rise by one per event. Not
// thread-safe: the hub that owns it locks.
class EventRing final
{
public:
    explicit EventRing(std::size_t capacity);

    void push(std::uint64_t seq, EventFrame frame);

    // The events after seq, oldest first: empty when seq is the newest.
    // Nothing when the ring no longer reaches back to seq + 1, or when seq is
    // not one of this run's numbers; the stream then needs a snapshot.
    std::optional<std::vector<EventFrame>> after(std::uint64_t seq) const;

private:
    struct Entry
    {
        std::uint64_t seq;
        EventFrame frame;
    };

    const std::size_t m_capacity;
    std::deque<Entry> m_entries;
};
