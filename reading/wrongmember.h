#pragma once

#include <string>

#include <json/value.h>

// The record readers of the client library convert strictly: a member of the
// wrong JSON type raises jsoncpp's exception, which names no member. These
// walk a "listBatches" or "listNodes" result by the same rules and name the
// first member the readers cannot convert, as a path such as
// "result[2].task.time_left" or "result[0].task.params.cameras"; empty when
// every member converts.
std::string findWrongBatchMember(const Json::Value& result);
std::string findWrongNodeMember(const Json::Value& result);
