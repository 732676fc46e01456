#pragma once

#include <string>

// web/openapi.json, built into the program.
const std::string& openApiDocument();
