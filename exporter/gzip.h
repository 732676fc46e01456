#pragma once

#include <string>
#include <string_view>

// The bytes as one gzip member (RFC 1952), at zlib's fastest level: a page is
// compressed once and then sent to every scraper that asks for gzip.
std::string gzipCompress(std::string_view bytes);
