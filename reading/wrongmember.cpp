#include "wrongmember.h"

#include <exception>
#include <string>
#include <type_traits>
#include <vector>

#include "recordmembers.h"

namespace {

template <class T>
bool reads(const Json::Value& value)
{
    try {
        T field {};
        readMember(value, field);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

// A parameter map that does not read: the parameter that spoils it.
std::string wrongParam(const Json::Value& params, const std::string& path)
{
    if (!params.isObject())
        return path;
    for (const std::string& name : params.getMemberNames()) {
        Json::Value single(Json::objectValue);
        single[name] = params[name];
        if (!reads<ParamMap>(single))
            return std::string(path).append(".").append(name);
    }
    return path;
}

// Shown the members in the client's order, tries each as the client reads
// it and keeps the path of the first that fails; the rest are passed over.
class WrongMemberFinder final
{
public:
    template <class Inside>
    void record(const Json::Value& object, const std::string& path, Inside inside)
    {
        within(object, path, inside);
    }

    const std::string& found() const { return m_found; }

    template <class T>
    void member(const char* key, T&)
    {
        if (!m_found.empty())
            return;
        const Json::Value& value = (*m_object)[key];
        if (reads<T>(value))
            return;
        const std::string path = m_path + "." + key;
        m_found = std::is_same_v<T, ParamMap> ? wrongParam(value, path) : path;
    }

    // Present, a member reads as any other; absent it reads as null would.
    template <class T>
    void member(const char* key, T& field, const T&)
    {
        member(key, field);
    }

    template <class Inside>
    void object(const char* key, Inside inside)
    {
        if (m_found.empty())
            within((*m_object)[key], m_path + "." + key, inside);
    }

    template <class Record, class Inside>
    void nullableObject(const char* key, Record&, Inside inside)
    {
        object(key, inside);
    }

    template <class Record, class One>
    void each(const char* key, std::vector<Record>&, One one)
    {
        if (!m_found.empty())
            return;
        const Json::Value& array = (*m_object)[key];
        for (Json::ArrayIndex i = 0; i < array.size(); ++i) {
            Record scratch;
            within(array[i], m_path + "." + key + "[" + std::to_string(i) + "]", [&] { one(scratch); });
        }
    }

private:
    // Members are read with operator[], which only null and objects allow.
    template <class Inside>
    void within(const Json::Value& object, const std::string& path, Inside inside)
    {
        if (!m_found.empty())
            return;
        if (!object.isNull() && !object.isObject()) {
            m_found = path;
            return;
        }
        const Json::Value* outer = m_object;
        std::string outerPath = std::move(m_path);
        m_object = &object;
        m_path = path;
        inside();
        m_object = outer;
        m_path = std::move(outerPath);
    }

    const Json::Value* m_object = nullptr;
    std::string m_path;
    std::string m_found;
};

// The list readers take size() entries and index them; only arrays (and null) can be indexed.
bool indexable(const Json::Value& result)
{
    return result.isArray() || result.size() == 0;
}

template <class Record, class Visit>
std::string findWrongMember(const Json::Value& result, Visit visit)
{
    if (!indexable(result))
        return "result";
    WrongMemberFinder finder;
    for (Json::ArrayIndex i = 0; i < result.size() && finder.found().empty(); ++i) {
        Record scratch;
        finder.record(result[i], "result[" + std::to_string(i) + "]", [&] { visit(finder, scratch); });
    }
    return finder.found();
}

} // namespace

std::string findWrongBatchMember(const Json::Value& result)
{
    return findWrongMember<ControlClient::BatchInfo>(result,
        [](WrongMemberFinder& finder, ControlClient::BatchInfo& batch) { visitBatchMembers(finder, batch); });
}

std::string findWrongNodeMember(const Json::Value& result)
{
    return findWrongMember<ControlClient::NodeInfo>(result,
        [](WrongMemberFinder& finder, ControlClient::NodeInfo& node) { visitNodeMembers(finder, node); });
}
