#pragma once

#include <string>
#include <vector>

#include <json/value.h>

#include "controlclient.h"

// The task list of "create": a JSON array of {"name", "params", optional
// "chunks", optional "frames"} objects, the shape "createBatch" sends.
// Parameters may be numbers, strings, booleans, null or arrays of numbers and
// booleans; anything the request cannot carry is refused here, before a
// connection is made.
// Neither reader throws: whatever the text, the answer is true, or false
// with a one-line reason.
bool tasksFromJson(
    const Json::Value& list, std::vector<ControlClient::TaskRequest>& tasks, std::string& error);
// The file's text; name is what the reason calls it.
bool tasksFromText(const std::string& text, const std::string& name,
    std::vector<ControlClient::TaskRequest>& tasks, std::string& error);
bool readTaskFile(
    const std::string& fileName, std::vector<ControlClient::TaskRequest>& tasks, std::string& error);
