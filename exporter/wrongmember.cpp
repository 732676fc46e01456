#include "wrongmember.h"

#include <exception>

#include "paramjson.h"

namespace {

enum class Want
{
    String,
    Int,
    UInt,
    Double,
    Params,
};

struct Member
{
    const char* key;
    Want want;
};

const Member TaskMembers[] = {{"name", Want::String}, {"params", Want::Params}, {"status", Want::String},
    {"time_elapsed", Want::Double}, {"time_left", Want::Double}, {"progress", Want::Double},
    {"items_total", Want::Int}, {"items_done", Want::Int}, {"nodes_active", Want::Int},
    {"nodes_waiting", Want::Int}, {"nodes_failed", Want::Int}};
const Member BatchMembers[] = {{"batch_id", Want::UInt}, {"path", Want::String}, {"status", Want::String},
    {"priority", Want::Int}, {"time_started", Want::UInt}};
const Member NodeMembers[] = {{"hostname", Want::String}, {"node_id", Want::UInt}, {"version", Want::String},
    {"status", Want::String}, {"priority", Want::Int}, {"batch_id", Want::UInt}, {"progress", Want::Double},
    {"error_count", Want::UInt}};
const Member NodeTaskMembers[] = {{"name", Want::String}, {"params", Want::Params}};
const Member ErrorMembers[] = {{"time", Want::UInt}, {"batch_id", Want::UInt}, {"message", Want::String}};

bool converts(const Json::Value& value, Want want)
{
    try {
        switch (want) {
        case Want::String:
            value.asString();
            break;
        case Want::Int:
            value.asInt();
            break;
        case Want::UInt:
            value.asUInt();
            break;
        case Want::Double:
            value.asDouble();
            break;
        case Want::Params:
            paramsFromJson(value);
            break;
        }
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

// A parameter map that does not convert: the parameter that spoils it.
std::string wrongParam(const Json::Value& params, const std::string& path)
{
    if (!params.isObject())
        return path;
    for (const std::string& name : params.getMemberNames()) {
        Json::Value single(Json::objectValue);
        single[name] = params[name];
        if (!converts(single, Want::Params))
            return std::string(path).append(".").append(name);
    }
    return path;
}

template <std::size_t Count>
std::string wrongIn(const Json::Value& object, const Member (&members)[Count], const std::string& path)
{
    // Members are read with operator[], which only null and objects allow.
    if (!object.isNull() && !object.isObject())
        return path;
    for (const Member& member : members) {
        const Json::Value& value = object[member.key];
        if (converts(value, member.want))
            continue;
        const std::string memberPath = path + "." + member.key;
        return member.want == Want::Params ? wrongParam(value, memberPath) : memberPath;
    }
    return {};
}

std::string element(Json::ArrayIndex index)
{
    return "result[" + std::to_string(index) + "]";
}

// The list readers take size() entries and index them; only arrays (and null) can be indexed.
bool indexable(const Json::Value& result)
{
    return result.isArray() || result.size() == 0;
}

} // namespace

std::string findWrongBatchMember(const Json::Value& result)
{
    if (!indexable(result))
        return "result";
    for (Json::ArrayIndex i = 0; i < result.size(); ++i) {
        const Json::Value& batch = result[i];
        std::string path = wrongIn(batch, BatchMembers, element(i));
        if (path.empty())
            path = wrongIn(batch["task"], TaskMembers, element(i) + ".task");
        if (!path.empty())
            return path;
    }
    return {};
}

std::string findWrongNodeMember(const Json::Value& result)
{
    if (!indexable(result))
        return "result";
    for (Json::ArrayIndex i = 0; i < result.size(); ++i) {
        const Json::Value& node = result[i];
        std::string path = wrongIn(node, NodeMembers, element(i));
        if (path.empty())
            path = wrongIn(node["task"], NodeTaskMembers, element(i) + ".task");
        if (path.empty())
            path = wrongIn(node["last_error"], ErrorMembers, element(i) + ".last_error");
        if (!path.empty())
            return path;
    }
    return {};
}
