#pragma once

#include <json/value.h>

#include "paramvalue.h"

// Task parameters on the wire. paramsToJson gives JSON null (not {}) when
// nothing in the map can be stored; paramsFromJson lets jsoncpp's conversion
// errors through, as every record reader of the client does.
Json::Value paramsToJson(const ParamMap& params);
ParamMap paramsFromJson(const Json::Value& object);
