#include "problem.h"

#include "eventframe.h"

namespace {

struct Kind
{
    int status;
    const char* name;
    const char* title;
};

Kind kindOf(Problem problem)
{
    switch (problem) {
    case Problem::BadId:
        return {400, "bad-id", "Not a batch or node id"};
    case Problem::BadPriority:
        return {400, "bad-priority", "Not a priority from -2 to 2"};
    case Problem::UnknownAction:
        return {400, "unknown-action", "No such action"};
    case Problem::BadJson:
        return {400, "bad-json", "The body is not the JSON this request takes"};
    case Problem::BodyTooLarge:
        return {400, "body-too-large", "The body is larger than 64 KiB"};
    case Problem::TooManyIds:
        return {400, "too-many-ids", "Too many ids in one request"};
    case Problem::Unauthenticated:
        return {401, "unauthenticated", "Sign in first"};
    case Problem::Forbidden:
        return {403, "forbidden", "Only operators may act on the farm"};
    case Problem::CrossOrigin:
        return {403, "cross-origin", "The request comes from another site"};
    case Problem::NotFound:
        return {404, "not-found", "No such resource"};
    case Problem::UnknownBatch:
        return {404, "unknown-batch", "The farm has no such batch"};
    case Problem::UnknownNode:
        return {404, "unknown-node", "The farm has no such node"};
    case Problem::MethodNotAllowed:
        return {405, "method-not-allowed", "This resource does not take that method"};
    case Problem::UnsupportedMediaType:
        return {415, "unsupported-media-type", "Send the body as application/json"};
    case Problem::Unreachable:
        return {503, "server-unreachable", "The processing server cannot be reached"};
    case Problem::TooManyStreams:
        return {503, "too-many-streams", "Too many event streams are open"};
    case Problem::TooManyRequests:
        return {503, "too-many-requests", "Too many requests at once"};
    case Problem::AuditUnavailable:
        return {503, "audit-unavailable", "The audit trail cannot be written"};
    case Problem::TimedOut:
        break;
    }
    return {504, "timed-out", "The processing server did not answer in time"};
}

} // namespace

ApiResponse problemResponse(Problem problem, const std::string& detail)
{
    const Kind kind = kindOf(problem);
    Json::Value body(Json::objectValue);
    body["type"] = std::string("urn:korvane-web:problem:") + kind.name;
    body["title"] = kind.title;
    body["status"] = kind.status;
    body["detail"] = detail;
    ApiResponse response;
    response.status = kind.status;
    response.contentType = "application/problem+json";
    response.body = compactJson(body);
    return response;
}
