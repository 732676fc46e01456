#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

// One server-sent event as it goes on the wire, stamped with the monotonic
// clock when it is made so that a reader on the same host can time it.
class SseEvent final
{
public:
    SseEvent() = delete;

    // About `size` bytes: "id", "event" and one data line of JSON, padded.
    static std::shared_ptr<const std::string> make(std::uint64_t sequence, std::size_t size);
    static std::int64_t monotonicNanoseconds();
};
