#pragma once

#include <cstddef>
#include <cstdint>

// Misbehaviour on demand, per connection, for tests and demonstrations of a
// client's failure handling. Every switch is off by default.
struct FaultSwitches
{
    // Close the connection once this many replies have gone out (-1: never).
    long long closeAfterReplies = -1;
    // Answer this many requests, then read and ignore the rest, keeping the
    // socket open (-1: answer all).
    long long muteAfterRequests = -1;
    // Write replies one byte per send().
    bool byteWrites = false;
    // Put a line that is not JSON before every Nth reply (0: never).
    std::uint64_t garbageEvery = 0;
    // Hold every reply back this many milliseconds.
    int delayMs = 0;
    // Send replies one byte every this many milliseconds: a server, or a
    // link, that trickles (0: off).
    int trickleMs = 0;
    // Pad the first reply of each connection to a line of this many bytes,
    // line feed included, with a "padding" member (0: no padding).
    std::size_t bigReplyBytes = 0;
};

// The text of the non-JSON line.
constexpr const char* GarbageLine = "*** this line is not JSON ***\n";
