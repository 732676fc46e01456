#pragma once

#include <string>

#include "apimessage.h"

// The API's errors, as RFC 9457 problem details (application/problem+json):
//
//   {"type": "urn:korvane-web:problem:bad-id", "title": "Not a batch or node id",
//    "status": 400, "detail": "\"x7\" is not an unsigned 32-bit number"}
//
// Each kind has its own type, which scripts may test, and its own status.
enum class Problem
{
    BadId, // 400
    BadPriority, // 400
    UnknownAction, // 400
    BadJson, // 400
    BodyTooLarge, // 400
    TooManyIds, // 400
    Unauthenticated, // 401
    Forbidden, // 403: a viewer's action
    CrossOrigin, // 403: another site's request
    NotFound, // 404: no such route
    UnknownBatch, // 404
    UnknownNode, // 404
    MethodNotAllowed, // 405
    UnsupportedMediaType, // 415: a state change not sent as JSON
    Unreachable, // 503: the server cannot be reached
    TooManyStreams, // 503
    TooManyRequests, // 503
    AuditUnavailable, // 503: no action without its audit line
    TimedOut, // 504
};

ApiResponse problemResponse(Problem problem, const std::string& detail);
