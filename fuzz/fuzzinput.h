#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Ends the run as a crash, for libFuzzer to keep the input, when a target's
// expectation does not hold.
void fuzzRequire(bool condition, const char* what);

// A fuzz input read from both ends: small numbers that steer a target (piece
// sizes, type codes) come off the back, the bytes it works on off the front,
// so that a mutation of one seldom shifts the other.
class FuzzInput final
{
public:
    FuzzInput(const std::uint8_t* data, std::size_t size);

    std::size_t remaining() const { return m_end - m_begin; }
    // One byte from the back; 0 when none is left.
    std::uint8_t takeByte();
    // A number from 0 to max from the back (up to two bytes).
    std::size_t takeNumber(std::size_t max);
    // Up to count bytes from the front.
    std::string takeBytes(std::size_t count);
    std::string takeRest();

private:
    const std::uint8_t* m_data;
    std::size_t m_begin = 0;
    std::size_t m_end;
};
