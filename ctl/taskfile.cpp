#include "taskfile.h"

#include <fstream>
#include <memory>
#include <sstream>

#include <json/reader.h>
#include <json/writer.h>

#include "paramjson.h"

namespace {

bool isInteger(const Json::Value& value)
{
    return value.type() == Json::intValue || value.type() == Json::uintValue;
}

bool checkParams(const Json::Value& params, const std::string& which, std::string& error)
{
    if (params.isNull())
        return true;
    if (!params.isObject()) {
        error = which + ": \"params\" must be an object";
        return false;
    }
    for (const std::string& name : params.getMemberNames()) {
        const Json::Value& value = params[name];
        bool good = !value.isObject();
        if (value.isArray()) {
            for (Json::ArrayIndex i = 0; good && i < value.size(); ++i)
                good = value[i].isNumeric() || value[i].isBool() || value[i].isNull();
        }
        if (!good) {
            // quoted as JSON: a name may hold line feeds or escape sequences
            error = which + ": parameter " + Json::valueToQuotedString(name.c_str())
                + " must be a number, a string, a boolean or an array of numbers";
            return false;
        }
    }
    return true;
}

} // namespace

bool tasksFromJson(
    const Json::Value& list, std::vector<ControlClient::TaskRequest>& tasks, std::string& error)
{
    if (!list.isArray() || list.empty()) {
        error = "the task file must hold a non-empty JSON array of tasks";
        return false;
    }
    tasks.clear();
    for (Json::ArrayIndex i = 0; i < list.size(); ++i) {
        const Json::Value& item = list[i];
        const std::string which = "task " + std::to_string(i + 1);
        if (!item.isObject() || !item["name"].isString() || item["name"].asString().empty()) {
            error = which + ": needs a non-empty string \"name\"";
            return false;
        }
        if (!checkParams(item["params"], which, error))
            return false;
        ControlClient::TaskRequest task;
        task.name = item["name"].asString();
        try {
            if (item["params"].isObject())
                task.params = paramsFromJson(item["params"]);
        } catch (const Json::Exception&) {
            // integers are carried as 32-bit numbers, signed or not as the request reads them
            error = which + ": a parameter holds an integer that does not fit in 32 bits";
            return false;
        }

        const Json::Value& chunks = item["chunks"];
        if (!chunks.isNull()) {
            bool good = chunks.isArray();
            for (Json::ArrayIndex c = 0; good && c < chunks.size(); ++c)
                good = isInteger(chunks[c]) && chunks[c].isInt();
            if (!good) {
                error = which + ": \"chunks\" must be an array of integers";
                return false;
            }
            for (const Json::Value& chunk : chunks)
                task.chunks.insert(chunk.asInt());
        }
        const Json::Value& frames = item["frames"];
        if (!frames.isNull()) {
            bool good = frames.isArray();
            for (Json::ArrayIndex f = 0; good && f < frames.size(); ++f) {
                const Json::Value& pair = frames[f];
                good = pair.isArray() && pair.size() == 2 && isInteger(pair[0]) && pair[0].isUInt()
                    && isInteger(pair[1]) && pair[1].isUInt();
            }
            if (!good) {
                error = which + ": \"frames\" must be an array of [key, frame] pairs of unsigned integers";
                return false;
            }
            for (const Json::Value& pair : frames)
                task.frames[pair[0].asUInt()].insert(pair[1].asUInt());
        }
        tasks.push_back(std::move(task));
    }
    return true;
}

bool tasksFromText(const std::string& text, const std::string& name,
    std::vector<ControlClient::TaskRequest>& tasks, std::string& error)
{
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value list;
    std::string errors;
    bool parsed = false;
    try {
        parsed = reader->parse(text.data(), text.data() + text.size(), &list, &errors);
    } catch (const Json::Exception& exception) {
        // nesting deeper than the reader's stack limit
        errors = exception.what();
    }
    if (!parsed) {
        // First line of jsoncpp's report is enough
        const std::string first = errors.substr(0, errors.find('\n'));
        error = name + " is not JSON: " + first;
        return false;
    }
    if (!tasksFromJson(list, tasks, error)) {
        error = name + ": " + error;
        return false;
    }
    return true;
}

bool readTaskFile(
    const std::string& fileName, std::vector<ControlClient::TaskRequest>& tasks, std::string& error)
{
    std::ifstream file(fileName, std::ios::binary);
    if (!file) {
        error = "cannot read " + fileName;
        return false;
    }
    std::ostringstream text;
    text << file.rdbuf();
    return tasksFromText(text.str(), fileName, tasks, error);
}
