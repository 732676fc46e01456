#include "streamhub.h"

StreamHub::StreamHub(const Limits& limits, FarmState initial)
    : m_limits(limits)
    , m_state(std::move(initial))
    , m_ring(limits.ringEvents)
{
}

void StreamHub::publish(FarmState state, const EventFrame& event)
{
    std::vector<Wake> wakes;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        // The old state (the last reference to its rows, often) and the old
        // snapshot go once the lock is released: freeing them takes a while.
        std::swap(m_state, state);
        m_ring.push(m_state.seq, event);
        // Statuses of batches the farm no longer has are not kept.
        for (auto it = m_batchEvents.begin(); it != m_batchEvents.end();)
            it = hasBatch(*m_state.batches, it->first) ? std::next(it) : m_batchEvents.erase(it);
        wakes = pushToStreams(event, std::nullopt);
    }
    wakeAll(wakes);
}

void StreamHub::publishTransient(const EventFrame& event)
{
    std::vector<Wake> wakes;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        wakes = pushToStreams(event, std::nullopt);
    }
    wakeAll(wakes);
}

void StreamHub::publishBatch(std::uint32_t batchId, const EventFrame& event)
{
    std::vector<Wake> wakes;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_batchEvents[batchId] = event;
        wakes = pushToStreams(event, batchId);
    }
    wakeAll(wakes);
}

std::vector<StreamHub::Wake> StreamHub::pushToStreams(
    const EventFrame& event, std::optional<std::uint32_t> followedBatch)
{
    std::vector<Wake> wakes;
    for (auto& [id, stream] : m_streams) {
        if (followedBatch && stream.followedBatch != followedBatch)
            continue;
        push(stream, event);
        wakes.push_back(stream.wake);
    }
    return wakes;
}

void StreamHub::wakeAll(const std::vector<Wake>& wakes)
{
    for (const Wake& wake : wakes)
        wake();
}

std::set<std::uint32_t> StreamHub::followedBatches() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::set<std::uint32_t> batches;
    for (const auto& [id, stream] : m_streams) {
        if (stream.followedBatch)
            batches.insert(*stream.followedBatch);
    }
    return batches;
}

std::optional<StreamHub::StreamId> StreamHub::open(
    std::optional<std::uint64_t> lastEventId, std::optional<std::uint32_t> followedBatch, Wake wake)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_shutDown || m_streams.size() >= m_limits.maxStreams) {
        ++m_counters.refused;
        return std::nullopt;
    }
    Stream stream;
    stream.followedBatch = followedBatch;
    stream.wake = std::move(wake);
    std::optional<std::vector<EventFrame>> missed;
    if (lastEventId == m_state.seq)
        missed.emplace(); // up to date, also before the first event
    else if (lastEventId)
        missed = m_ring.after(*lastEventId);
    if (missed) {
        for (const EventFrame& frame : *missed)
            push(stream, frame);
    } else {
        push(stream, snapshotFrameLocked());
    }
    if (followedBatch) {
        const auto last = m_batchEvents.find(*followedBatch);
        if (last != m_batchEvents.end())
            push(stream, last->second);
    }
    const StreamId id = m_nextId++;
    m_streams.emplace(id, std::move(stream));
    return id;
}

void StreamHub::close(StreamId id)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_streams.erase(id);
}

bool StreamHub::take(StreamId id, std::vector<EventFrame>& frames)
{
    frames.clear();
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_streams.find(id);
    if (m_shutDown || found == m_streams.end())
        return false;
    Stream& stream = found->second;
    if (stream.resync) {
        stream.resync = false;
        frames.push_back(snapshotFrameLocked());
        if (stream.followedBatch) {
            const auto last = m_batchEvents.find(*stream.followedBatch);
            if (last != m_batchEvents.end())
                frames.push_back(last->second);
        }
    } else {
        frames.swap(stream.queue);
    }
    stream.queue.clear();
    stream.queuedBytes = 0;
    for (const EventFrame& frame : frames)
        m_counters.bytes += frame->size();
    m_counters.events += frames.size();
    return true;
}

void StreamHub::shutDown()
{
    std::vector<Wake> wakes;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_shutDown = true;
        for (auto& [id, stream] : m_streams)
            wakes.push_back(stream.wake);
    }
    wakeAll(wakes);
}

std::string StreamHub::snapshotJson()
{
    EventFrame frame;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        frame = snapshotFrameLocked();
    }
    // The frame's data line, without "event: ...\nid: ...\ndata: " and its end.
    const std::size_t data = frame->find("\ndata: ") + 7;
    return frame->substr(data, frame->size() - data - 2);
}

FarmState StreamHub::state() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_state;
}

FarmStatus StreamHub::farm() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_state.farm;
}

std::size_t StreamHub::streamCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_streams.size();
}

bool StreamHub::knowsBatch(std::uint32_t id) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return hasBatch(*m_state.batches, id);
}

bool StreamHub::knowsNode(std::uint32_t id) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return hasNode(*m_state.nodes, id);
}

void StreamHub::push(Stream& stream, const EventFrame& frame)
{
    if (stream.resync)
        return; // a snapshot comes instead
    if (stream.queuedBytes + frame->size() > m_limits.maxQueuedBytes && !stream.queue.empty()) {
        stream.queue.clear();
        stream.queuedBytes = 0;
        stream.resync = true;
        ++m_counters.resyncs;
        return;
    }
    stream.queue.push_back(frame);
    stream.queuedBytes += frame->size();
}

EventFrame StreamHub::snapshotFrameLocked()
{
    if (!m_snapshotFrame || m_snapshotSeq != m_state.seq) {
        m_snapshotFrame = makeEventFrame("snapshot", m_state.seq, snapshotText(m_state));
        m_snapshotSeq = m_state.seq;
    }
    return m_snapshotFrame;
}
