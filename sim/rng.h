#pragma once

#include <cstdint>
#include <random>

// The farm's one source of chance. Only the raw 64-bit engine is used (its
// sequence is fixed by the standard), so a seed gives the same farm on every
// platform and library.
class Rng final
{
public:
    explicit Rng(std::uint64_t seed)
        : m_engine(seed)
    {
    }

    // [0, 1)
    double uniform() { return static_cast<double>(m_engine() >> 11) * (1.0 / 9007199254740992.0); }
    // [low, high]
    int range(int low, int high)
    {
        const std::uint64_t span = static_cast<std::uint64_t>(high - low) + 1;
        return low + static_cast<int>(m_engine() % span);
    }
    double range(double low, double high) { return low + (high - low) * uniform(); }
    bool chance(double probability) { return uniform() < probability; }

    template <typename T, std::size_t N>
    const T& pick(const T (&items)[N])
    {
        return items[m_engine() % N];
    }

private:
    std::mt19937_64 m_engine;
};
