#include "gzipsize.h"

#include <vector>
#include <zlib.h>

std::size_t GzipSize::of(const std::string& text)
{
    z_stream stream {};
    // 15 bits of window, +16 for the gzip wrapper.
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return 0;
    std::vector<unsigned char> out(deflateBound(&stream, text.size()));
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    const int result = deflate(&stream, Z_FINISH);
    const std::size_t size = result == Z_STREAM_END ? stream.total_out : 0;
    deflateEnd(&stream);
    return size;
}
