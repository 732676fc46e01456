#include "sseevent.h"

#include <time.h>

std::int64_t SseEvent::monotonicNanoseconds()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

std::shared_ptr<const std::string> SseEvent::make(std::uint64_t sequence, std::size_t size)
{
    const std::string seq = std::to_string(sequence);
    std::string text = "id: " + seq + "\nevent: delta\ndata: {\"seq\":" + seq + ",\"stamp\":";
    const std::string tail = "\"}\n\n";
    std::string pad;
    static const char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    const std::size_t fixed = text.size() + 20 + 8 + tail.size();
    pad.reserve(size > fixed ? size - fixed : 0);
    for (std::size_t i = 0; i + fixed < size; ++i)
        pad += letters[i % (sizeof letters - 1)];
    // Stamped last, so that building a large padding is not counted.
    text += std::to_string(monotonicNanoseconds()) + ",\"pad\":\"" + pad + tail;
    return std::make_shared<const std::string>(std::move(text));
}
