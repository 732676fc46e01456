#include "farmstate.h"

#include "eventframe.h"

Json::Value farmStatusJson(const FarmStatus& status)
{
    Json::Value object(Json::objectValue);
    object["state"] = status.connected ? "connected" : "disconnected";
    object["since"] = Json::Int64(status.since);
    if (!status.connected) {
        object["reason"] = status.reason;
        object["next_try"] = Json::Int64(status.nextTry);
    }
    return object;
}

namespace {

template <class Rows, class Row>
void appendRows(std::string& text, const Rows& rows, Row row)
{
    text += '[';
    for (const auto& record : rows) {
        if (text.back() != '[')
            text += ',';
        text += compactJson(row(record));
    }
    text += ']';
}

} // namespace

std::string snapshotText(const FarmState& state)
{
    std::string text = "{\"batches\":";
    appendRows(text, *state.batches, batchRow);
    text += ",\"farm\":";
    text += compactJson(farmStatusJson(state.farm));
    text += ",\"nodes\":";
    appendRows(text, *state.nodes, nodeRow);
    text += ",\"seq\":";
    text += std::to_string(state.seq);
    text += '}';
    return text;
}
