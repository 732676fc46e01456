#pragma once

#include <cstddef>
#include <string>

// Bytes of a text once gzip-compressed at zlib's default level, as a
// browser would receive it with Content-Encoding: gzip.
class GzipSize final
{
public:
    GzipSize() = delete;

    static std::size_t of(const std::string& text);
};
