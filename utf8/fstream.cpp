#include "fstream.h"

#include <string>

#include "utf8.h"

namespace utf8 {

namespace {

template <typename Stream>
void openStream(Stream& stream, const char* utf8Path, std::ios_base::openmode mode)
{
    const std::string native = toNative(utf8Path ? std::string(utf8Path) : std::string());
    if (stream.rdbuf()->open(native.c_str(), mode))
        stream.clear();
    else
        stream.setstate(std::ios_base::failbit);
}

} // namespace

fstream::fstream(const char* utf8Path, std::ios_base::openmode mode)
{
    open(utf8Path, mode);
}

void fstream::open(const char* utf8Path, std::ios_base::openmode mode)
{
    openStream(*this, utf8Path, mode);
}

ifstream::ifstream(const char* utf8Path, std::ios_base::openmode mode)
{
    open(utf8Path, mode);
}

void ifstream::open(const char* utf8Path, std::ios_base::openmode mode)
{
    openStream(*this, utf8Path, mode | std::ios_base::in);
}

ofstream::ofstream(std::size_t bufferSize)
    : m_buffer(bufferSize, '\0')
{
}

ofstream::ofstream(const char* utf8Path, std::ios_base::openmode mode, std::size_t bufferSize)
    : m_buffer(bufferSize, '\0')
{
    open(utf8Path, mode);
}

ofstream::~ofstream()
{
    if (is_open() && !rdbuf()->close()) {
        try {
            setstate(std::ios_base::failbit);
        } catch (...) { // NOLINT(bugprone-empty-catch): see below
            // The caller asked for exceptions, but a destructor cannot throw.
        }
    }
}

void ofstream::open(const char* utf8Path, std::ios_base::openmode mode)
{
    // libstdc++ only accepts a buffer while the file is closed; it keeps it
    // across later opens and never frees it.
    if (!m_buffer.empty() && !is_open())
        rdbuf()->pubsetbuf(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
    openStream(*this, utf8Path, mode | std::ios_base::out);
}

} // namespace utf8
