#include "rowdelta.h"

namespace {

Json::Value changedMembers(const Json::Value& before, const Json::Value& after, const char* idKey)
{
    Json::Value changed(Json::objectValue);
    for (const std::string& key : after.getMemberNames()) {
        const Json::Value& value = after[key];
        const Json::Value* old = before.find(key.data(), key.data() + key.size());
        if (!old || *old != value)
            changed[key] = value;
    }
    if (!changed.empty())
        changed[idKey] = after[idKey];
    return changed;
}

} // namespace

Json::Value rowDelta(const RowMap& before, const RowMap& after, const char* idKey)
{
    Json::Value delta(Json::objectValue);
    Json::Value& added = delta["added"] = Json::Value(Json::arrayValue);
    Json::Value& removed = delta["removed"] = Json::Value(Json::arrayValue);
    Json::Value& changed = delta["changed"] = Json::Value(Json::arrayValue);

    // Both maps in id order, walked side by side.
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        if (now == after.end() || (old != before.end() && old->first < now->first)) {
            removed.append(Json::UInt(old->first));
            ++old;
        } else if (old == before.end() || now->first < old->first) {
            added.append(now->second);
            ++now;
        } else {
            Json::Value members = changedMembers(old->second, now->second, idKey);
            if (!members.empty())
                changed.append(std::move(members));
            ++old;
            ++now;
        }
    }
    return delta;
}

bool deltaIsEmpty(const Json::Value& delta)
{
    return delta["added"].empty() && delta["removed"].empty() && delta["changed"].empty();
}
