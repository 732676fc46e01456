// The simulator's handling of one request line, on a small fresh farm each
// time: whatever the line, the answer is nothing for a blank line, else one
// line holding a JSON object with an id and either a result or an error with
// one of the protocol's codes.
#include <cstddef>
#include <cstdint>
#include <string>

#include <json/reader.h>

#include "farm.h"
#include "fuzzinput.h"
#include "rpchandler.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string line(reinterpret_cast<const char*>(data), size);
    line.erase(std::min(line.find('\n'), line.size())); // the server splits at line feeds

    FarmConfig config;
    config.batches = 4;
    config.nodes = 3;
    config.objectParamRate = 0.5;
    Farm farm(config);
    RpcHandler handler(farm);
    const std::string reply = handler.handleLine(line);

    std::string trimmed = line;
    if (!trimmed.empty() && trimmed.back() == '\r')
        trimmed.pop_back();
    if (trimmed.find_first_not_of(" \t") == std::string::npos) {
        fuzzRequire(reply.empty(), "no answer to a blank line");
        return 0;
    }
    fuzzRequire(!reply.empty() && reply.find('\n') == reply.size() - 1, "one line");
    Json::Value answer;
    fuzzRequire(Json::Reader().parse(reply, answer, false) && answer.isObject(), "a JSON object");
    fuzzRequire(answer.isMember("id"), "an id");
    fuzzRequire(answer.isMember("result") != answer.isMember("error"), "a result or an error");
    if (answer.isMember("error")) {
        const int code = answer["error"]["code"].asInt();
        fuzzRequire(code == RpcHandler::ParseError || code == RpcHandler::InvalidRequest
                || code == RpcHandler::MethodNotFound || code == RpcHandler::InvalidParams,
            "a known error code");
    }
    return 0;
}
