#include "exposition.h"

#include <charconv>
#include <cmath>

namespace {

constexpr std::string_view Replacement = "\xEF\xBF\xBD";

// Length of the valid UTF-8 sequence at text[at] (lead byte >= 0x80), or 0.
std::size_t sequenceLength(std::string_view text, std::size_t at)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0; // overlong
        if (lead == 0xED)
            high = 0x9F; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90;
        if (lead == 0xF4)
            high = 0x8F; // above U+10FFFF
    } else {
        return 0;
    }
    if (at + length > text.size())
        return 0;
    if (byte(at + 1) < low || byte(at + 1) > high)
        return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(at + i) < 0x80 || byte(at + i) > 0xBF)
            return 0;
    }
    return length;
}

} // namespace

void appendLabelValue(std::string& out, std::string_view value)
{
    std::size_t plain = 0; // start of the bytes not yet copied
    std::size_t i = 0;
    while (i < value.size()) {
        const unsigned char c = static_cast<unsigned char>(value[i]);
        if (c < 0x80 && c != '\\' && c != '"' && c != '\n') {
            ++i;
            continue;
        }
        if (c >= 0x80) {
            const std::size_t length = sequenceLength(value, i);
            if (length != 0) {
                i += length;
                continue;
            }
        }
        out.append(value.data() + plain, i - plain);
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '"':
            out += "\\\"";
            break;
        case '\n':
            out += "\\n";
            break;
        default:
            out += Replacement;
            break;
        }
        plain = ++i;
    }
    out.append(value.data() + plain, value.size() - plain);
}

void appendValue(std::string& out, double value)
{
    if (std::isnan(value)) {
        out += "NaN";
        return;
    }
    if (std::isinf(value)) {
        out += value > 0 ? "+Inf" : "-Inf";
        return;
    }
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    out.append(text, end.ptr);
}

void appendValue(std::string& out, std::int64_t value)
{
    char text[24];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    out.append(text, end.ptr);
}

void appendFamily(std::string& out, std::string_view name, std::string_view type, std::string_view help)
{
    out += "# HELP ";
    out += name;
    out += ' ';
    out += help;
    out += "\n# TYPE ";
    out += name;
    out += ' ';
    out += type;
    out += '\n';
}
