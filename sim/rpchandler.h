#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <json/reader.h>
#include <json/writer.h>

#include "farm.h"

// JSON-RPC over lines, server side: one request line in, one reply line out,
// {"id":<the request's id>,"result":…} or {"error":{"code":…,"message":…},"id":…}.
// Error codes are JSON-RPC 2.0's: -32700 a line that is not JSON (id null),
// -32600 not a request object (or a line longer than the server takes),
// -32601 an unknown method, -32602 missing or wrongly typed params or an id
// or path the farm does not know; -32000 the server is busy.
class RpcHandler final
{
public:
    static constexpr int ParseError = -32700;
    static constexpr int InvalidRequest = -32600;
    static constexpr int MethodNotFound = -32601;
    static constexpr int InvalidParams = -32602;
    static constexpr int ServerBusy = -32000;

    explicit RpcHandler(Farm& farm);
    ~RpcHandler();
    RpcHandler(const RpcHandler&) = delete;
    RpcHandler& operator=(const RpcHandler&) = delete;

    // A request line without its line feed (a trailing carriage return is
    // ignored). Returns the reply with its line feed, or nothing for a blank line.
    std::string handleLine(std::string_view line);

    // Compact one-line JSON, as replies are written.
    std::string write(const Json::Value& value) const;
    // An error reply line to no request in particular (id null).
    std::string errorLine(int code, const std::string& message) const;

private:
    Json::Value dispatch(const std::string& method, const Json::Value& request, bool& cachedList);
    const std::string& listText(bool batches);
    std::string errorReply(const Json::Value& id, int code, const std::string& message) const;

    Farm& m_farm;
    std::unique_ptr<Json::CharReader> m_reader;
    std::unique_ptr<Json::StreamWriter> m_writer;
    // The lists' result text, kept while the farm's revision stays the same.
    std::string m_batchesText;
    std::string m_nodesText;
    std::uint64_t m_batchesRevision = 0;
    std::uint64_t m_nodesRevision = 0;
    bool m_batchesValid = false;
    bool m_nodesValid = false;
};
