#include "paramjson.h"

#include <ostream>

#include "clientconsole.h"

namespace {

// One element as JSON: 32-bit integers and reals as numbers, everything else
// as its text.
Json::Value elementToJson(const ParamValue& value, std::uint64_t index)
{
    switch (value.type()) {
    case ParamType::Int32:
        return Json::Value(static_cast<const std::int32_t*>(value.data())[index]);
    case ParamType::UInt32:
        return Json::Value(static_cast<const std::uint32_t*>(value.data())[index]);
    case ParamType::Float:
        return Json::Value(static_cast<double>(static_cast<const float*>(value.data())[index]));
    case ParamType::Double:
        return Json::Value(static_cast<const double*>(value.data())[index]);
    default:
        return Json::Value(value.toString());
    }
}

bool isArrayType(ParamType type)
{
    return type == ParamType::Int32 || type == ParamType::UInt32 || type == ParamType::Float
        || type == ParamType::Double;
}

template <typename T>
ParamValue arrayToParam(const Json::Value& array, T (Json::Value::*read)() const)
{
    std::vector<T> elements;
    elements.reserve(array.size());
    for (const Json::Value& element : array)
        elements.push_back((element.*read)());
    return ParamValue(elements);
}

} // namespace

Json::Value paramsToJson(const ParamMap& params)
{
    Json::Value json;
    for (const auto& [name, value] : params) {
        if (value.type() == ParamType::String) {
            json[name] = value.toString();
        } else if (value.count() == 1) {
            json[name] = elementToJson(value, 0);
        } else if (value.count() > 1 && isArrayType(value.type())) {
            Json::Value array(Json::arrayValue);
            for (std::uint64_t i = 0; i < value.count(); ++i)
                array.append(elementToJson(value, i));
            json[name] = std::move(array);
        }
    }
    return json;
}

ParamMap paramsFromJson(const Json::Value& object)
{
    ParamMap params;
    // Anything but an object or null is refused by jsoncpp's own check.
    if (!object.isNull() && !object.isObject())
        (void)object.getMemberNames();

    for (auto it = object.begin(); it != object.end(); ++it) {
        const Json::Value& member = *it;
        ParamValue value;
        switch (member.type()) {
        case Json::nullValue:
            continue;
        case Json::intValue:
            value = ParamValue(static_cast<std::int32_t>(member.asInt()));
            break;
        case Json::uintValue:
            value = ParamValue(static_cast<std::uint32_t>(member.asUInt()));
            break;
        case Json::realValue:
            value = ParamValue(member.asDouble());
            break;
        case Json::stringValue:
            value = ParamValue(member.asString());
            break;
        case Json::booleanValue:
            value = ParamValue(static_cast<std::int32_t>(member.asBool() ? 1 : 0));
            break;
        case Json::arrayValue: {
            if (member.empty())
                continue;
            // Unsigned unless an element says otherwise; a real decides for good.
            ParamType kind = ParamType::UInt32;
            for (const Json::Value& element : member) {
                if (element.type() == Json::realValue)
                    kind = ParamType::Double;
                else if (element.type() == Json::intValue && kind != ParamType::Double)
                    kind = ParamType::Int32;
            }
            if (kind == ParamType::Double)
                value = arrayToParam<double>(member, &Json::Value::asDouble);
            else if (kind == ParamType::Int32)
                value = arrayToParam<Json::Int>(member, &Json::Value::asInt);
            else
                value = arrayToParam<Json::UInt>(member, &Json::Value::asUInt);
            break;
        }
        case Json::objectValue:
            ClientConsole::narrow() << "skipping json param " << it.name() << std::endl;
            continue;
        }
        params.emplace_hint(params.end(), it.name(), std::move(value));
    }
    return params;
}
