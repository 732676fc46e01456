#include "eventframe.h"

#include <json/writer.h>

std::string compactJson(const Json::Value& value)
{
    static const Json::StreamWriterBuilder Builder = [] {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        builder["emitUTF8"] = true;
        return builder;
    }();
    return Json::writeString(Builder, value);
}

EventFrame makeEventFrame(const char* event, std::uint64_t id, const Json::Value& data)
{
    return makeEventFrame(event, id, compactJson(data));
}

EventFrame makeEventFrame(const char* event, std::uint64_t id, const std::string& json)
{
    std::string frame = "event: ";
    frame += event;
    frame += "\nid: ";
    frame += std::to_string(id);
    frame += "\ndata: ";
    frame.reserve(frame.size() + json.size() + 2);
    frame += json;
    frame += "\n\n";
    return std::make_shared<const std::string>(std::move(frame));
}

const EventFrame& heartbeatFrame()
{
    static const EventFrame Frame = std::make_shared<const std::string>(":\n\n");
    return Frame;
}
