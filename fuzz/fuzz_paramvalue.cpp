// ParamValue's conversions for every pair of types: a value of the type the
// input names, made from the input's bytes (elements) or text, converted to
// every type code and read back with every getter. Besides the sanitizers'
// word, it checks what the conversions promise: counts are kept, integers
// come back unchanged from their text, and the storage rule holds.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

#include "fuzzinput.h"
#include "paramvalue.h"

namespace {

constexpr std::uint32_t HighestCode = 14; // one past String: an unknown code

void checkStorage(const ParamValue& value)
{
    // (a code without an element size keeps no elements however many it counts)
    if (paramElementSize(value.type()) > 0)
        fuzzRequire(
            (value.data() == nullptr) == (value.count() == 0), "an element pointer exactly when counted");
}

void readEverything(const ParamValue& value)
{
    checkStorage(value);
    (void)value.toString();
    (void)value.toInt8();
    (void)value.toUInt8();
    (void)value.toInt16();
    (void)value.toUInt16();
    (void)value.toInt32();
    (void)value.toUInt32();
    (void)value.toInt64();
    (void)value.toUInt64();
    (void)value.toLongLong();
    (void)value.toULongLong();
    (void)value.toFloat();
    (void)value.toDouble();
    (void)value.toInt8Vector();
    (void)value.toUInt8Vector();
    (void)value.toInt16Vector();
    (void)value.toUInt16Vector();
    (void)value.toInt32Vector();
    (void)value.toUInt32Vector();
    (void)value.toInt64Vector();
    (void)value.toUInt64Vector();
    (void)value.toLongLongVector();
    (void)value.toULongLongVector();
    (void)value.toFloatVector();
    (void)value.toDoubleVector();
}

bool isNumeric(ParamType type)
{
    return type >= ParamType::Int8 && type <= ParamType::Double;
}

bool isInteger(ParamType type)
{
    return type >= ParamType::Int8 && type <= ParamType::ULongLong;
}

std::size_t pieces(const std::string& text)
{
    std::istringstream in(text);
    std::string piece;
    std::size_t count = 0;
    while (std::getline(in, piece, ';'))
        ++count;
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const auto source = static_cast<ParamType>(input.takeNumber(HighestCode));
    const std::string bytes = input.takeRest();

    ParamValue value;
    if (source == ParamType::String) {
        value = ParamValue(bytes);
    } else if (isNumeric(source)) {
        const std::size_t width = paramElementSize(source);
        value = ParamValue(source, bytes.size() / width);
        if (value.count() > 0)
            std::memcpy(value.data(), bytes.data(), value.count() * width);
    } else if (source != ParamType::None) {
        value = ParamValue(source, bytes.size());
    }
    readEverything(value);

    for (std::uint32_t code = 0; code <= HighestCode; ++code) {
        const auto target = static_cast<ParamType>(code);
        const ParamValue result = value.converted(target);
        readEverything(result);
        ParamValue inPlace = value;
        const bool converted = inPlace.convert(target);
        // true at once for the type the value has, else whether a value came out
        fuzzRequire(
            converted == (source == target || inPlace.type() != ParamType::None), "convert()'s answer");
        fuzzRequire(inPlace.type() == result.type() && inPlace.count() == result.count(),
            "convert() and converted() agree");

        if (isNumeric(source) && isNumeric(target) && value.count() > 0)
            fuzzRequire(result.type() == target && result.count() == value.count(),
                "a numeric conversion keeps the count");
        if (source == ParamType::String && isNumeric(target))
            fuzzRequire(result.count() == pieces(value.toString()), "one element per piece of text");
    }

    // Integers written as text read back as the same numbers.
    if (isInteger(source) && value.count() > 0) {
        const ParamValue back = value.converted(ParamType::String).converted(source);
        fuzzRequire(back.count() == value.count()
                && std::memcmp(back.data(), value.data(), value.count() * paramElementSize(source)) == 0,
            "integers survive their text");
    }
    return 0;
}
