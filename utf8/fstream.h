#pragma once

#include <cstddef>
#include <fstream>
#include <vector>

// File streams opened by UTF-8 path: the path goes through utf8::toNative
// before it reaches the file buffer. A failed open sets failbit and never
// throws on its own; a successful one clears the state.
namespace utf8 {

class fstream final : public std::fstream
{
public:
    fstream() = default;
    explicit fstream(
        const char* utf8Path, std::ios_base::openmode mode = std::ios_base::in | std::ios_base::out);

    // The mode is passed on unchanged.
    void open(const char* utf8Path, std::ios_base::openmode mode = std::ios_base::in | std::ios_base::out);
};

class ifstream final : public std::ifstream
{
public:
    ifstream() = default;
    explicit ifstream(const char* utf8Path, std::ios_base::openmode mode = std::ios_base::in);

    // "in" is always added to the mode.
    void open(const char* utf8Path, std::ios_base::openmode mode = std::ios_base::in);
};

class ofstream final : public std::ofstream
{
public:
    // bufferSize > 0 gives the file buffer storage of that many bytes owned by
    // the stream, so the caller chooses how much is collected before a write.
    explicit ofstream(std::size_t bufferSize = 0);
    explicit ofstream(
        const char* utf8Path, std::ios_base::openmode mode = std::ios_base::out, std::size_t bufferSize = 0);
    // Closes the file before the buffer it writes from goes away.
    ~ofstream() override;

    ofstream(const ofstream&) = delete;
    ofstream& operator=(const ofstream&) = delete;

    // "out" is always added to the mode.
    void open(const char* utf8Path, std::ios_base::openmode mode = std::ios_base::out);

private:
    std::vector<char> m_buffer;
};

} // namespace utf8
