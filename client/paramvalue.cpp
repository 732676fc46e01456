#include "paramvalue.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>
#include <type_traits>

namespace {

template <typename T>
struct TypeCode;
template <>
struct TypeCode<std::int8_t>
{
    static constexpr ParamType value = ParamType::Int8;
};
template <>
struct TypeCode<std::uint8_t>
{
    static constexpr ParamType value = ParamType::UInt8;
};
template <>
struct TypeCode<std::int16_t>
{
    static constexpr ParamType value = ParamType::Int16;
};
template <>
struct TypeCode<std::uint16_t>
{
    static constexpr ParamType value = ParamType::UInt16;
};
template <>
struct TypeCode<std::int32_t>
{
    static constexpr ParamType value = ParamType::Int32;
};
template <>
struct TypeCode<std::uint32_t>
{
    static constexpr ParamType value = ParamType::UInt32;
};
template <>
struct TypeCode<long>
{
    static constexpr ParamType value = ParamType::Int64;
};
template <>
struct TypeCode<unsigned long>
{
    static constexpr ParamType value = ParamType::UInt64;
};
template <>
struct TypeCode<long long>
{
    static constexpr ParamType value = ParamType::LongLong;
};
template <>
struct TypeCode<unsigned long long>
{
    static constexpr ParamType value = ParamType::ULongLong;
};
template <>
struct TypeCode<float>
{
    static constexpr ParamType value = ParamType::Float;
};
template <>
struct TypeCode<double>
{
    static constexpr ParamType value = ParamType::Double;
};

// Calls f with a value of the element type of a numeric code; false when the
// code is not numeric.
template <typename F>
bool visitNumeric(ParamType type, F&& f)
{
    switch (type) {
    case ParamType::Int8:
        f(std::int8_t {});
        return true;
    case ParamType::UInt8:
        f(std::uint8_t {});
        return true;
    case ParamType::Int16:
        f(std::int16_t {});
        return true;
    case ParamType::UInt16:
        f(std::uint16_t {});
        return true;
    case ParamType::Int32:
        f(std::int32_t {});
        return true;
    case ParamType::UInt32:
        f(std::uint32_t {});
        return true;
    case ParamType::Int64:
        f(long {});
        return true;
    case ParamType::UInt64:
        f(static_cast<unsigned long>(0));
        return true;
    case ParamType::LongLong:
        f(static_cast<long long>(0));
        return true;
    case ParamType::ULongLong:
        f(static_cast<unsigned long long>(0));
        return true;
    case ParamType::Float:
        f(float {});
        return true;
    case ParamType::Double:
        f(double {});
        return true;
    default:
        return false;
    }
}

template <typename T>
T readElement(const void* data, std::uint64_t index)
{
    T value;
    std::memcpy(&value, static_cast<const unsigned char*>(data) + index * sizeof(T), sizeof(T));
    return value;
}

template <typename T>
void writeElement(void* data, std::uint64_t index, T value)
{
    std::memcpy(static_cast<unsigned char*>(data) + index * sizeof(T), &value, sizeof(T));
}

// The language's arithmetic conversion. A floating value whose truncation does
// not fit the integer type has no defined result there; it gives 0 here.
template <typename To, typename From>
To convertElement(From value)
{
    if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>) {
        const long double v = value;
        const long double low = static_cast<long double>(std::numeric_limits<To>::min()) - 1.0L;
        const long double high = static_cast<long double>(std::numeric_limits<To>::max()) + 1.0L;
        if (!(v > low && v < high))
            return 0;
    }
    return static_cast<To>(value);
}

template <typename T>
T parsePiece(const std::string& piece)
{
    std::istringstream in(piece);
    in.imbue(std::locale::classic());
    if constexpr (sizeof(T) == 1) {
        // Read as a number, not as a character; the low 8 bits are kept.
        std::int32_t number = 0;
        in >> number;
        return static_cast<T>(number);
    } else {
        T number {};
        in >> number;
        if (in.fail())
            return 0;
        return number;
    }
}

} // namespace

std::size_t paramElementSize(ParamType type)
{
    static const std::size_t sizes[] = {0, 1, 1, 2, 2, 4, 4, 8, 8, 8, 8, 4, 8, 1};
    const auto code = static_cast<std::uint32_t>(type);
    return code < sizeof(sizes) / sizeof(sizes[0]) ? sizes[code] : 0;
}

template <typename T>
void ParamValue::assign(const T* values, std::uint64_t count)
{
    m_type = TypeCode<T>::value;
    m_count = count;
    if (count == 1) {
        std::memcpy(m_inline, values, sizeof(T));
    } else if (count > 1) {
        m_size = count * sizeof(T);
        m_data = std::make_unique<unsigned char[]>(m_size);
        std::memcpy(m_data.get(), values, m_size);
    }
}

ParamValue::ParamValue(std::int8_t value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(std::uint8_t value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(std::int16_t value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(std::uint16_t value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(std::int32_t value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(std::uint32_t value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(long value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(unsigned long value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(long long value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(unsigned long long value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(float value)
{
    assign(&value, 1);
}
ParamValue::ParamValue(double value)
{
    assign(&value, 1);
}

ParamValue::ParamValue(const std::int8_t* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const std::uint8_t* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const std::int16_t* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const std::uint16_t* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const std::int32_t* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const std::uint32_t* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const long* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const unsigned long* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const long long* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const unsigned long long* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const float* values, std::uint64_t count)
{
    assign(values, count);
}
ParamValue::ParamValue(const double* values, std::uint64_t count)
{
    assign(values, count);
}

ParamValue::ParamValue(const std::vector<std::int8_t>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<std::uint8_t>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<std::int16_t>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<std::uint16_t>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<std::int32_t>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<std::uint32_t>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<long>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<unsigned long>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<long long>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<unsigned long long>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<float>& values)
{
    assign(values.data(), values.size());
}
ParamValue::ParamValue(const std::vector<double>& values)
{
    assign(values.data(), values.size());
}

ParamValue::ParamValue(const std::string& text)
    : m_type(ParamType::String)
    , m_count(text.size() + 1)
    , m_data(std::make_unique<unsigned char[]>(text.size() + 1))
    , m_size(text.size() + 1)
{
    std::memcpy(m_data.get(), text.data(), text.size());
}

ParamValue::ParamValue(const char* text)
    : ParamValue(std::string(text))
{
}

ParamValue::ParamValue(ParamType type, std::uint64_t count)
    : m_type(type)
    , m_count(count)
{
    if (count > 1 || (type == ParamType::String && count > 0)) {
        m_size = count * paramElementSize(type);
        if (m_size > 0)
            m_data = std::make_unique<unsigned char[]>(m_size);
    }
}

ParamValue::ParamValue(const ParamValue& other)
    : m_type(other.m_type)
    , m_count(other.m_count)
    , m_size(other.m_size)
{
    if (other.m_data) {
        m_data = std::make_unique<unsigned char[]>(m_size);
        std::memcpy(m_data.get(), other.m_data.get(), m_size);
    }
    std::memcpy(m_inline, other.m_inline, sizeof(m_inline));
}

ParamValue::ParamValue(ParamValue&& other) noexcept
    : m_type(other.m_type)
    , m_count(other.m_count)
    , m_data(std::move(other.m_data))
    , m_size(other.m_size)
{
    std::memcpy(m_inline, other.m_inline, sizeof(m_inline));
    other.release();
}

ParamValue& ParamValue::operator=(const ParamValue& other)
{
    if (this != &other) {
        release();
        m_type = other.m_type;
        m_count = other.m_count;
        m_size = other.m_size;
        if (other.m_data) {
            m_data = std::make_unique<unsigned char[]>(m_size);
            std::memcpy(m_data.get(), other.m_data.get(), m_size);
        }
        std::memcpy(m_inline, other.m_inline, sizeof(m_inline));
    }
    return *this;
}

ParamValue& ParamValue::operator=(ParamValue&& other) noexcept
{
    if (this != &other) {
        m_type = other.m_type;
        m_count = other.m_count;
        m_data = std::move(other.m_data);
        m_size = other.m_size;
        std::memcpy(m_inline, other.m_inline, sizeof(m_inline));
        other.release();
    }
    return *this;
}

ParamValue::~ParamValue()
{
    release();
}

void ParamValue::release()
{
    m_data.reset();
    m_size = 0;
    m_count = 0;
    m_type = ParamType::None;
    std::memset(m_inline, 0, sizeof(m_inline));
}

const void* ParamValue::data() const
{
    if (m_count == 0)
        return nullptr;
    if (m_count > 1 || m_type == ParamType::String)
        return m_data.get();
    return m_inline;
}

void* ParamValue::data()
{
    return const_cast<void*>(static_cast<const ParamValue*>(this)->data());
}

bool ParamValue::convert(ParamType target)
{
    if (target == m_type)
        return true;
    *this = converted(target);
    return m_type != ParamType::None;
}

ParamValue ParamValue::converted(ParamType target) const
{
    if (m_type == ParamType::None || target == ParamType::None)
        return {};
    if (target == m_type)
        return *this;
    if (static_cast<std::uint32_t>(target) > static_cast<std::uint32_t>(ParamType::String))
        return {};
    if (target == ParamType::String)
        return toText();
    if (m_type == ParamType::String)
        return fromText(target);
    return toNumeric(target);
}

ParamValue ParamValue::toText() const
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    if (m_type == ParamType::Float)
        out.precision(6);
    else if (m_type == ParamType::Double)
        out.precision(15);

    const void* elements = data();
    visitNumeric(m_type, [&](auto tag) {
        using T = decltype(tag);
        for (std::uint64_t i = 0; i < m_count; ++i) {
            if (i > 0)
                out << ';';
            const T element = readElement<T>(elements, i);
            if constexpr (std::is_same_v<T, std::int8_t>)
                out << static_cast<int>(element);
            else if constexpr (std::is_same_v<T, std::uint8_t>)
                out << static_cast<unsigned>(element);
            else if constexpr (std::is_same_v<T, float>)
                out << static_cast<double>(element);
            else
                out << element;
        }
    });

    const std::string text = out.str();
    if (text.empty())
        return {};
    return ParamValue(text);
}

ParamValue ParamValue::fromText(ParamType target) const
{
    std::vector<std::string> pieces;
    {
        std::istringstream in(toString());
        std::string piece;
        while (std::getline(in, piece, ';'))
            pieces.push_back(piece);
    }

    ParamValue result(target, pieces.size());
    void* elements = result.data();
    visitNumeric(target, [&](auto tag) {
        using T = decltype(tag);
        for (std::size_t i = 0; i < pieces.size(); ++i)
            writeElement<T>(elements, i, parsePiece<T>(pieces[i]));
    });
    return result;
}

ParamValue ParamValue::toNumeric(ParamType target) const
{
    ParamValue result;
    const void* source = data();
    visitNumeric(m_type, [&](auto sourceTag) {
        using From = decltype(sourceTag);
        visitNumeric(target, [&](auto targetTag) {
            using To = decltype(targetTag);
            result = ParamValue(target, m_count);
            void* destination = result.data();
            for (std::uint64_t i = 0; i < m_count; ++i)
                writeElement<To>(destination, i, convertElement<To>(readElement<From>(source, i)));
        });
    });
    return result;
}

std::string ParamValue::toString() const
{
    if (m_type == ParamType::None)
        return {};
    if (m_type == ParamType::String) {
        if (!m_data)
            return {};
        const char* text = reinterpret_cast<const char*>(m_data.get());
        return std::string(text, ::strnlen(text, m_size));
    }
    return converted(ParamType::String).toString();
}

template <typename T>
T ParamValue::scalar() const
{
    if (m_type == ParamType::None)
        return 0;
    if (m_type == TypeCode<T>::value)
        return m_count > 0 ? readElement<T>(data(), 0) : T(0);
    const ParamValue value = converted(TypeCode<T>::value);
    return value.m_count > 0 ? readElement<T>(value.data(), 0) : T(0);
}

template <typename T>
std::vector<T> ParamValue::elements() const
{
    if (m_type == ParamType::None)
        return {};
    if (m_type == TypeCode<T>::value) {
        std::vector<T> result(m_count);
        if (m_count > 0)
            std::memcpy(result.data(), data(), m_count * sizeof(T));
        return result;
    }
    const ParamValue value = converted(TypeCode<T>::value);
    if (value.m_type != TypeCode<T>::value)
        return {};
    return value.elements<T>();
}

std::int8_t ParamValue::toInt8() const
{
    return scalar<std::int8_t>();
}
std::uint8_t ParamValue::toUInt8() const
{
    return scalar<std::uint8_t>();
}
std::int16_t ParamValue::toInt16() const
{
    return scalar<std::int16_t>();
}
std::uint16_t ParamValue::toUInt16() const
{
    return scalar<std::uint16_t>();
}
std::int32_t ParamValue::toInt32() const
{
    return scalar<std::int32_t>();
}
std::uint32_t ParamValue::toUInt32() const
{
    return scalar<std::uint32_t>();
}
long ParamValue::toInt64() const
{
    return scalar<long>();
}
unsigned long ParamValue::toUInt64() const
{
    return scalar<unsigned long>();
}
long long ParamValue::toLongLong() const
{
    return scalar<long long>();
}
unsigned long long ParamValue::toULongLong() const
{
    return scalar<unsigned long long>();
}
float ParamValue::toFloat() const
{
    return scalar<float>();
}
double ParamValue::toDouble() const
{
    return scalar<double>();
}

std::vector<std::int8_t> ParamValue::toInt8Vector() const
{
    return elements<std::int8_t>();
}
std::vector<std::uint8_t> ParamValue::toUInt8Vector() const
{
    return elements<std::uint8_t>();
}
std::vector<std::int16_t> ParamValue::toInt16Vector() const
{
    return elements<std::int16_t>();
}
std::vector<std::uint16_t> ParamValue::toUInt16Vector() const
{
    return elements<std::uint16_t>();
}
std::vector<std::int32_t> ParamValue::toInt32Vector() const
{
    return elements<std::int32_t>();
}
std::vector<std::uint32_t> ParamValue::toUInt32Vector() const
{
    return elements<std::uint32_t>();
}
std::vector<long> ParamValue::toInt64Vector() const
{
    return elements<long>();
}
std::vector<unsigned long> ParamValue::toUInt64Vector() const
{
    return elements<unsigned long>();
}
std::vector<long long> ParamValue::toLongLongVector() const
{
    return elements<long long>();
}
std::vector<unsigned long long> ParamValue::toULongLongVector() const
{
    return elements<unsigned long long>();
}
std::vector<float> ParamValue::toFloatVector() const
{
    return elements<float>();
}
std::vector<double> ParamValue::toDoubleVector() const
{
    return elements<double>();
}

bool operator==(const ParamValue& a, const ParamValue& b)
{
    if (a.type() != b.type() || a.count() != b.count())
        return false;
    const std::size_t bytes = static_cast<std::size_t>(a.count()) * paramElementSize(a.type());
    return bytes == 0 || std::memcmp(a.data(), b.data(), bytes) == 0;
}
