#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <json/value.h>

// One Server-Sent Event as it goes on the wire, encoded once and shared by
// every stream that sends it:
//
//   event: delta
//   id: 1732450000123
//   data: {"seq":1732450000123,...}
//
// JSON is written compact, so the data is always one line.
using EventFrame = std::shared_ptr<const std::string>;

EventFrame makeEventFrame(const char* event, std::uint64_t id, const Json::Value& data);
// The same for data already encoded as compact JSON.
EventFrame makeEventFrame(const char* event, std::uint64_t id, const std::string& json);

// Compact JSON, for the API's documents and the events' data.
std::string compactJson(const Json::Value& value);

// A comment line, which clients ignore; keeps proxies from closing a quiet stream.
const EventFrame& heartbeatFrame();
