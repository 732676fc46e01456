#include "rpchandler.h"

#include <sstream>

#include "farmjson.h"

namespace {

struct RpcError
{
    int code;
    std::string message;
};

[[noreturn]] void invalidParams(const std::string& detail)
{
    throw RpcError {RpcHandler::InvalidParams, "Invalid params: " + detail};
}

bool isInteger(const Json::Value& value)
{
    return value.type() == Json::intValue || value.type() == Json::uintValue;
}

const Json::Value& requireParams(const Json::Value& request)
{
    const Json::Value& params = request["params"];
    if (!params.isObject())
        invalidParams("params must be an object");
    return params;
}

std::uint32_t requireId(const Json::Value& params, const char* key)
{
    const Json::Value& value = params[key];
    if (value.isNull())
        invalidParams(std::string(key) + " is missing");
    if (!isInteger(value) || !value.isUInt())
        invalidParams(std::string(key) + " must be an unsigned 32-bit integer");
    return value.asUInt();
}

int requirePriority(const Json::Value& params)
{
    const Json::Value& value = params["priority"];
    if (value.isNull())
        invalidParams("priority is missing");
    if (!isInteger(value) || !value.isInt() || value.asInt() < -2 || value.asInt() > 2)
        invalidParams("priority must be an integer from -2 to 2");
    return value.asInt();
}

std::string requirePath(const Json::Value& params)
{
    const Json::Value& value = params["path"];
    if (!value.isString() || value.asString().empty())
        invalidParams("path must be a non-empty string");
    return value.asString();
}

std::vector<SimTask> requireTasks(const Json::Value& params)
{
    const Json::Value& list = params["tasks"];
    if (!list.isArray() || list.empty())
        invalidParams("tasks must be a non-empty array");
    std::vector<SimTask> tasks;
    for (Json::ArrayIndex i = 0; i < list.size(); ++i) {
        const Json::Value& item = list[i];
        const std::string which = "task " + std::to_string(i);
        if (!item.isObject() || !item["name"].isString() || item["name"].asString().empty())
            invalidParams(which + " must be an object with a non-empty string name");
        SimTask task;
        task.name = item["name"].asString();
        const Json::Value& taskParams = item["params"];
        if (!taskParams.isNull() && !taskParams.isObject())
            invalidParams("params of " + which + " must be an object or null");
        task.params = taskParams;
        if (item.isMember("chunks")) {
            const Json::Value& chunks = item["chunks"];
            bool good = chunks.isArray();
            for (Json::ArrayIndex c = 0; good && c < chunks.size(); ++c)
                good = isInteger(chunks[c]) && chunks[c].isInt();
            if (!good)
                invalidParams("chunks of " + which + " must be an array of integers");
            task.chunks = chunks;
        }
        if (item.isMember("frames")) {
            const Json::Value& frames = item["frames"];
            bool good = frames.isArray();
            for (Json::ArrayIndex f = 0; good && f < frames.size(); ++f) {
                const Json::Value& pair = frames[f];
                good = pair.isArray() && pair.size() == 2 && isInteger(pair[0]) && pair[0].isUInt()
                    && isInteger(pair[1]) && pair[1].isUInt();
            }
            if (!good)
                invalidParams("frames of " + which + " must be an array of [key, frame] unsigned pairs");
            task.frames = frames;
        }
        tasks.push_back(std::move(task));
    }
    return tasks;
}

void known(bool found, const char* what, std::uint32_t id)
{
    if (!found)
        invalidParams(std::string("unknown ") + what + " id " + std::to_string(id));
}

} // namespace

RpcHandler::RpcHandler(Farm& farm)
    : m_farm(farm)
{
    Json::CharReaderBuilder reader;
    reader["collectComments"] = false;
    reader["allowComments"] = false;
    reader["failIfExtra"] = true;
    m_reader.reset(reader.newCharReader());
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "";
    writer["emitUTF8"] = true;
    writer["precision"] = 10;
    m_writer.reset(writer.newStreamWriter());
}

RpcHandler::~RpcHandler() = default;

std::string RpcHandler::write(const Json::Value& value) const
{
    std::ostringstream stream;
    m_writer->write(value, &stream);
    return stream.str();
}

std::string RpcHandler::errorReply(const Json::Value& id, int code, const std::string& message) const
{
    Json::Value reply(Json::objectValue);
    reply["id"] = id;
    reply["error"]["code"] = code;
    reply["error"]["message"] = message;
    return write(reply) + "\n";
}

std::string RpcHandler::errorLine(int code, const std::string& message) const
{
    return errorReply(Json::Value(), code, message);
}

std::string RpcHandler::handleLine(std::string_view line)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if (line.find_first_not_of(" \t") == std::string_view::npos)
        return {};

    Json::Value request;
    std::string errors;
    bool parsed = false;
    try {
        parsed = m_reader->parse(line.data(), line.data() + line.size(), &request, &errors);
    } catch (const Json::Exception&) {
        // nesting deeper than the reader's stack limit
        parsed = false;
    }
    if (!parsed)
        return errorReply(Json::Value(), ParseError, "Parse error");
    if (!request.isObject())
        return errorReply(Json::Value(), InvalidRequest, "Invalid Request: not an object");

    Json::Value id = request["id"];
    switch (id.type()) {
    case Json::nullValue:
    case Json::intValue:
    case Json::uintValue:
    case Json::realValue:
    case Json::stringValue:
        break;
    default:
        return errorReply(
            Json::Value(), InvalidRequest, "Invalid Request: id must be a number, a string or null");
    }
    const Json::Value& method = request["method"];
    if (!method.isString())
        return errorReply(id, InvalidRequest, "Invalid Request: method must be a string");

    try {
        bool cachedList = false;
        Json::Value result = dispatch(method.asString(), request, cachedList);
        if (cachedList) {
            // The list text is spliced in as it is, not parsed and written again.
            return "{\"id\":" + write(id) + ",\"result\":" + listText(result.asBool()) + "}\n";
        }
        Json::Value reply(Json::objectValue);
        reply["id"] = id;
        reply["result"] = std::move(result);
        return write(reply) + "\n";
    } catch (const RpcError& error) {
        return errorReply(id, error.code, error.message);
    }
}

const std::string& RpcHandler::listText(bool batches)
{
    if (batches) {
        if (!m_batchesValid || m_batchesRevision != m_farm.revision()) {
            m_batchesText = write(batchListToJson(m_farm.batches()));
            m_batchesRevision = m_farm.revision();
            m_batchesValid = true;
        }
        return m_batchesText;
    }
    if (!m_nodesValid || m_nodesRevision != m_farm.revision()) {
        m_nodesText = write(nodeListToJson(m_farm.nodes(), m_farm.batches()));
        m_nodesRevision = m_farm.revision();
        m_nodesValid = true;
    }
    return m_nodesText;
}

Json::Value RpcHandler::dispatch(const std::string& method, const Json::Value& request, bool& cachedList)
{
    // The two lists come back through listText(); the result only says which.
    if (method == "listBatches" || method == "listNodes") {
        cachedList = true;
        return method == "listBatches";
    }
    if (method == "getBatchStatus") {
        const std::uint32_t id = requireId(requireParams(request), "batch_id");
        const SimBatch* batch = m_farm.batch(id);
        known(batch, "batch", id);
        return batchStatusToJson(*batch);
    }

    using BatchCommand = bool (Farm::*)(std::uint32_t);
    struct Command
    {
        const char* method;
        BatchCommand run;
        const char* key;
        const char* what;
    };
    static const Command commands[] = {
        {"pauseBatch", &Farm::pauseBatch, "batch_id", "batch"},
        {"resumeBatch", &Farm::resumeBatch, "batch_id", "batch"},
        {"abortBatch", &Farm::abortBatch, "batch_id", "batch"},
        {"pauseNode", &Farm::pauseNode, "node_id", "node"},
        {"resumeNode", &Farm::resumeNode, "node_id", "node"},
        {"abortNode", &Farm::abortNode, "node_id", "node"},
    };
    for (const Command& command : commands) {
        if (method == command.method) {
            const std::uint32_t id = requireId(requireParams(request), command.key);
            known((m_farm.*command.run)(id), command.what, id);
            return true;
        }
    }

    if (method == "setBatchPriority" || method == "setNodePriority") {
        const bool batch = method == "setBatchPriority";
        const Json::Value& params = requireParams(request);
        const std::uint32_t id = requireId(params, batch ? "batch_id" : "node_id");
        const int priority = requirePriority(params);
        known(batch ? m_farm.setBatchPriority(id, priority) : m_farm.setNodePriority(id, priority),
            batch ? "batch" : "node", id);
        return true;
    }
    if (method == "createBatch") {
        const Json::Value& params = requireParams(request);
        const std::string path = requirePath(params);
        std::vector<SimTask> tasks = requireTasks(params);
        return Json::UInt(m_farm.createBatch(path, std::move(tasks)));
    }
    if (method == "findBatch") {
        const std::string path = requirePath(requireParams(request));
        const std::uint32_t id = m_farm.findBatch(path);
        if (id == SimNoId)
            invalidParams("no batch with path " + path);
        return Json::UInt(id);
    }
    throw RpcError {MethodNotFound, "Method not found: " + method};
}
