#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

// Element type code of a task parameter. The codes are fixed (they travel
// with stored values) and double as the index into the element size table.
enum class ParamType : std::uint32_t
{
    None = 0,
    Int8 = 1,
    UInt8 = 2,
    Int16 = 3,
    UInt16 = 4,
    Int32 = 5,
    UInt32 = 6,
    Int64 = 7,
    UInt64 = 8,
    LongLong = 9,
    ULongLong = 10,
    Float = 11,
    Double = 12,
    String = 13,
};

// Size in bytes of one element; 0 for None and for unknown codes.
std::size_t paramElementSize(ParamType type);

// A typed task parameter: zero, one or many elements of one ParamType.
//
// Storage: count 0 keeps nothing; a numeric value with one element keeps it in
// an inline slot (no allocation, the common case); several numeric elements
// and every String (bytes plus the terminating zero, which count includes) live
// in an owned heap buffer.
class ParamValue final
{
public:
    ParamValue() = default;
    explicit ParamValue(std::int8_t value);
    explicit ParamValue(std::uint8_t value);
    explicit ParamValue(std::int16_t value);
    explicit ParamValue(std::uint16_t value);
    explicit ParamValue(std::int32_t value);
    explicit ParamValue(std::uint32_t value);
    explicit ParamValue(long value);
    explicit ParamValue(unsigned long value);
    explicit ParamValue(long long value);
    explicit ParamValue(unsigned long long value);
    explicit ParamValue(float value);
    explicit ParamValue(double value);

    ParamValue(const std::int8_t* values, std::uint64_t count);
    ParamValue(const std::uint8_t* values, std::uint64_t count);
    ParamValue(const std::int16_t* values, std::uint64_t count);
    ParamValue(const std::uint16_t* values, std::uint64_t count);
    ParamValue(const std::int32_t* values, std::uint64_t count);
    ParamValue(const std::uint32_t* values, std::uint64_t count);
    ParamValue(const long* values, std::uint64_t count);
    ParamValue(const unsigned long* values, std::uint64_t count);
    ParamValue(const long long* values, std::uint64_t count);
    ParamValue(const unsigned long long* values, std::uint64_t count);
    ParamValue(const float* values, std::uint64_t count);
    ParamValue(const double* values, std::uint64_t count);

    explicit ParamValue(const std::vector<std::int8_t>& values);
    explicit ParamValue(const std::vector<std::uint8_t>& values);
    explicit ParamValue(const std::vector<std::int16_t>& values);
    explicit ParamValue(const std::vector<std::uint16_t>& values);
    explicit ParamValue(const std::vector<std::int32_t>& values);
    explicit ParamValue(const std::vector<std::uint32_t>& values);
    explicit ParamValue(const std::vector<long>& values);
    explicit ParamValue(const std::vector<unsigned long>& values);
    explicit ParamValue(const std::vector<long long>& values);
    explicit ParamValue(const std::vector<unsigned long long>& values);
    explicit ParamValue(const std::vector<float>& values);
    explicit ParamValue(const std::vector<double>& values);

    explicit ParamValue(const std::string& text);
    explicit ParamValue(const char* text);

    // Room for count elements of type, zeroed; the caller writes them via data().
    ParamValue(ParamType type, std::uint64_t count);

    ParamValue(const ParamValue& other);
    ParamValue(ParamValue&& other) noexcept;
    ParamValue& operator=(const ParamValue& other);
    ParamValue& operator=(ParamValue&& other) noexcept;
    ~ParamValue();

    ParamType type() const { return m_type; }
    std::uint64_t count() const { return m_count; }
    const void* data() const;
    void* data();

    bool convert(ParamType target);
    ParamValue converted(ParamType target) const;
    std::string toString() const;

    std::int8_t toInt8() const;
    std::uint8_t toUInt8() const;
    std::int16_t toInt16() const;
    std::uint16_t toUInt16() const;
    std::int32_t toInt32() const;
    std::uint32_t toUInt32() const;
    long toInt64() const;
    unsigned long toUInt64() const;
    long long toLongLong() const;
    unsigned long long toULongLong() const;
    float toFloat() const;
    double toDouble() const;

    std::vector<std::int8_t> toInt8Vector() const;
    std::vector<std::uint8_t> toUInt8Vector() const;
    std::vector<std::int16_t> toInt16Vector() const;
    std::vector<std::uint16_t> toUInt16Vector() const;
    std::vector<std::int32_t> toInt32Vector() const;
    std::vector<std::uint32_t> toUInt32Vector() const;
    std::vector<long> toInt64Vector() const;
    std::vector<unsigned long> toUInt64Vector() const;
    std::vector<long long> toLongLongVector() const;
    std::vector<unsigned long long> toULongLongVector() const;
    std::vector<float> toFloatVector() const;
    std::vector<double> toDoubleVector() const;

private:
    template <typename T>
    void assign(const T* values, std::uint64_t count);
    template <typename T>
    T scalar() const;
    template <typename T>
    std::vector<T> elements() const;

    ParamValue toText() const;
    ParamValue fromText(ParamType target) const;
    ParamValue toNumeric(ParamType target) const;
    void release();

    ParamType m_type = ParamType::None;
    std::uint64_t m_count = 0;
    std::unique_ptr<unsigned char[]> m_data;
    std::uint64_t m_size = 0;
    alignas(8) unsigned char m_inline[8] = {};
};

// Parameters of a task by name, ordered byte-wise.
// The same type and the same elements, byte for byte (a NaN equals itself).
bool operator==(const ParamValue& a, const ParamValue& b);
inline bool operator!=(const ParamValue& a, const ParamValue& b)
{
    return !(a == b);
}

using ParamMap = std::map<std::string, ParamValue>;
