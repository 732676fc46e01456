#include "webapi.h"

#include <json/reader.h>

#include "auditlog.h"
#include "eventframe.h"
#include "exposition.h"
#include "farmwatch.h"
#include "openapidocument.h"
#include "problem.h"
#include "streamhub.h"
#include "webassets.h"
#include "webmetrics.h"

namespace {

const std::string ApiPrefix = "/api/v1/";

std::vector<std::string> pathParts(const std::string& path)
{
    std::vector<std::string> parts;
    std::size_t start = ApiPrefix.size();
    while (start <= path.size()) {
        const std::size_t slash = path.find('/', start);
        const std::size_t end = slash == std::string::npos ? path.size() : slash;
        parts.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

ApiResponse jsonResponse(const Json::Value& body)
{
    ApiResponse response;
    response.body = compactJson(body);
    return response;
}

std::optional<FarmCommand::Action> actionFromWord(const std::string& word, FarmCommand::Target target)
{
    using Action = FarmCommand::Action;
    const bool batch = target == FarmCommand::Target::Batch;
    if (word == "pause")
        return Action::Pause;
    if (word == "resume")
        return Action::Resume;
    if (word == "priority")
        return Action::Priority;
    if (word == "abort" && batch)
        return Action::Abort;
    if (word == "stop" && !batch)
        return Action::Stop;
    return std::nullopt;
}

const char* targetWord(FarmCommand::Target target)
{
    return target == FarmCommand::Target::Batch ? "batches" : "nodes";
}

// The one word for the results of a command: the outcome all ids share, or "mixed".
std::string overallResult(const std::vector<FarmCommand::Result>& results)
{
    std::string word;
    for (const FarmCommand::Result& result : results) {
        const std::string one = outcomeWord(result.outcome);
        if (word.empty())
            word = one;
        else if (word != one)
            return "mixed";
    }
    return word;
}

std::string metricsWord(const std::string& result)
{
    std::string word = result;
    for (char& c : word) {
        if (c == ' ' || c == '-')
            c = '_';
    }
    return word;
}

bool isJsonContentType(const std::string& contentType)
{
    const std::string type = contentType.substr(0, contentType.find(';'));
    std::string trimmed;
    for (char c : type) {
        if (c != ' ' && c != '\t')
            trimmed += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return trimmed == "application/json";
}

} // namespace

std::optional<std::uint32_t> parseId(const std::string& text)
{
    if (text.empty() || text.size() > 10 || text.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    const unsigned long long value = std::stoull(text);
    if (value > 0xFFFFFFFFull)
        return std::nullopt;
    return static_cast<std::uint32_t>(value);
}

WebApi::WebApi(StreamHub& hub, FarmWatch& watch, Access& access, AuditLog& audit, WebMetrics& metrics,
    const WebAssets& assets)
    : m_hub(hub)
    , m_watch(watch)
    , m_access(access)
    , m_audit(audit)
    , m_metrics(metrics)
    , m_assets(assets)
{
}

void WebApi::addSecurityHeaders(ApiResponse& response, bool tls)
{
    response.headers.emplace_back("Content-Security-Policy",
        "default-src 'self'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src 'self'; "
        "object-src 'none'; base-uri 'none'; form-action 'self'; frame-ancestors 'none'");
    response.headers.emplace_back("X-Content-Type-Options", "nosniff");
    response.headers.emplace_back("Referrer-Policy", "no-referrer");
    response.headers.emplace_back("Cache-Control", "no-store");
    if (tls)
        response.headers.emplace_back("Strict-Transport-Security", "max-age=31536000");
}

bool WebApi::isEventStream(const ApiRequest& request) const
{
    return request.path == ApiPrefix + "events";
}

std::optional<ApiResponse> WebApi::authenticate(const ApiRequest& request, Access::Identity& identity)
{
    std::optional<Access::Identity> found = m_access.identify(request);
    if (!found) {
        ApiResponse refusal = problemResponse(Problem::Unauthenticated,
            request.header("authorization").empty() ? "this server asks for a user name and password"
                                                    : "the user name or the password is wrong");
        refusal.headers.emplace_back("WWW-Authenticate", m_access.challenge());
        return refusal;
    }
    identity = std::move(*found);
    return std::nullopt;
}

std::variant<WebApi::Stream, ApiResponse> WebApi::startStream(const ApiRequest& request)
{
    Stream stream;
    if (std::optional<ApiResponse> refusal = authenticate(request, stream.identity))
        return *refusal;
    if (request.method != "GET")
        return problemResponse(Problem::MethodNotAllowed, request.method + " " + request.path);
    const auto batch = request.query.find("batch");
    if (batch != request.query.end()) {
        stream.followedBatch = parseId(batch->second);
        if (!stream.followedBatch)
            return problemResponse(
                Problem::BadId, "\"" + batch->second + "\" is not an unsigned 32-bit number");
    }
    const std::string& last = request.header("last-event-id");
    if (!last.empty() && last.size() <= 20 && last.find_first_not_of("0123456789") == std::string::npos)
        stream.lastEventId = std::stoull(last); // anything else starts with a snapshot
    return stream;
}

void WebApi::handle(const ApiRequest& request, const Reply& reply)
{
    // The page asks for the same credentials as the API, so the browser has
    // them before the page's first request.
    Access::Identity identity;
    if (std::optional<ApiResponse> refusal = authenticate(request, identity))
        return reply(*refusal);
    if (request.path == "/metrics") {
        if (request.method != "GET")
            return reply(problemResponse(Problem::MethodNotAllowed, request.method + " /metrics"));
        ApiResponse response;
        response.contentType = ExpositionContentType;
        response.body = m_metrics.page();
        return reply(response);
    }
    if (request.path.compare(0, ApiPrefix.size(), ApiPrefix) != 0) {
        if (request.method != "GET" && request.method != "HEAD")
            return reply(problemResponse(Problem::MethodNotAllowed, request.method + " " + request.path));
        if (std::optional<ApiResponse> file = m_assets.respond(request.path))
            return reply(*file);
        return reply(problemResponse(Problem::NotFound, request.path));
    }
    const std::vector<std::string> parts = pathParts(request.path);
    if (request.method == "GET" || request.method == "HEAD")
        return get(request, identity, parts, reply);
    if (request.method == "POST")
        return post(request, identity, parts, reply);
    reply(problemResponse(Problem::MethodNotAllowed, request.method + " " + request.path));
}

void WebApi::get(const ApiRequest& request, const Access::Identity& identity,
    const std::vector<std::string>& parts, const Reply& reply)
{
    if (parts.size() == 1 && parts[0] == "snapshot") {
        ApiResponse response;
        response.body = m_hub.snapshotJson();
        return reply(response);
    }
    if (parts.size() == 1 && parts[0] == "whoami") {
        Json::Value body(Json::objectValue);
        body["user"] = identity.user.empty() ? Json::Value() : Json::Value(identity.user);
        body["role"] = roleWord(identity.role);
        return reply(jsonResponse(body));
    }
    if (parts.size() == 1 && parts[0] == "openapi.json") {
        ApiResponse response;
        response.body = openApiDocument();
        return reply(response);
    }
    if (parts.size() == 2 && parts[0] == "batches") {
        const std::optional<std::uint32_t> id = parseId(parts[1]);
        if (!id)
            return reply(
                problemResponse(Problem::BadId, "\"" + parts[1] + "\" is not an unsigned 32-bit number"));
        if (!m_hub.knowsBatch(*id))
            return reply(problemResponse(Problem::UnknownBatch, "the farm has no batch " + parts[1]));
        return batchStatus(*id, reply);
    }
    const bool postOnly
        = (parts.size() == 3 || parts.size() == 2) && (parts[0] == "batches" || parts[0] == "nodes");
    reply(postOnly ? problemResponse(Problem::MethodNotAllowed, request.method + " " + request.path)
                   : problemResponse(Problem::NotFound, request.path));
}

void WebApi::batchStatus(std::uint32_t id, const Reply& reply)
{
    FarmCommand command;
    command.target = FarmCommand::Target::Batch;
    command.action = FarmCommand::Action::Status;
    command.ids = {id};
    command.done = [reply](std::vector<FarmCommand::Result> results) {
        const FarmCommand::Result& result = results.front();
        switch (result.outcome) {
        case FarmCommand::Outcome::Accepted:
            return reply(jsonResponse(result.status));
        case FarmCommand::Outcome::Refused:
            return reply(problemResponse(Problem::UnknownBatch, result.reason));
        case FarmCommand::Outcome::TimedOut:
            return reply(problemResponse(Problem::TimedOut, result.reason));
        case FarmCommand::Outcome::Unreachable:
            break;
        }
        reply(problemResponse(Problem::Unreachable, result.reason));
    };
    if (!m_watch.submit(command))
        reply(problemResponse(Problem::TooManyRequests, "too many requests wait for the processing server"));
}

void WebApi::post(const ApiRequest& request, const Access::Identity& identity,
    const std::vector<std::string>& parts, const Reply& reply)
{
    const bool known
        = (parts.size() == 2 || parts.size() == 3) && (parts[0] == "batches" || parts[0] == "nodes");
    if (!known) {
        const bool readOnly = parts.size() == 1
            && (parts[0] == "snapshot" || parts[0] == "whoami" || parts[0] == "openapi.json"
                || parts[0] == "events");
        return reply(readOnly
                ? problemResponse(Problem::MethodNotAllowed, request.method + " " + request.path)
                : problemResponse(Problem::NotFound, request.path));
    }
    std::variant<Action, ApiResponse> path = readPath(parts);
    if (ApiResponse* refusal = std::get_if<ApiResponse>(&path))
        return reply(*refusal);
    Action& action = std::get<Action>(path);
    // What another site's page could send is refused before its body is read.
    if (!isJsonContentType(request.header("content-type")))
        return reply(problemResponse(
            Problem::UnsupportedMediaType, "Content-Type is \"" + request.header("content-type") + "\""));
    const std::string crossOrigin = Access::crossOrigin(request);
    if (!crossOrigin.empty())
        return refuse(request, identity, action, Problem::CrossOrigin, "cross-origin", crossOrigin, reply);
    if (std::optional<ApiResponse> refusal = readBody(request, action))
        return reply(*refusal);
    if (identity.role != Access::Role::Operator)
        return refuse(request, identity, action, Problem::Forbidden, "forbidden",
            (identity.user.empty() ? std::string("this client") : identity.user) + " is a viewer", reply);
    act(request, identity, std::move(action), reply);
}

std::variant<WebApi::Action, ApiResponse> WebApi::readPath(const std::vector<std::string>& parts)
{
    Action action;
    action.target = parts[0] == "batches" ? FarmCommand::Target::Batch : FarmCommand::Target::Node;
    action.bulk = parts.size() == 2;
    if (!action.bulk) {
        const std::optional<std::uint32_t> id = parseId(parts[1]);
        if (!id)
            return problemResponse(Problem::BadId, "\"" + parts[1] + "\" is not an unsigned 32-bit number");
        action.ids = {*id};
    }
    const std::string& word = parts.back();
    const std::optional<FarmCommand::Action> kind = actionFromWord(word, action.target);
    if (!kind) {
        return problemResponse(Problem::UnknownAction,
            "\"" + word + "\" is not an action on " + targetWord(action.target) + " ("
                + (action.target == FarmCommand::Target::Batch ? "pause, resume, abort or priority"
                                                               : "pause, resume, stop or priority")
                + ")");
    }
    action.action = *kind;
    return action;
}

std::optional<ApiResponse> WebApi::readBody(const ApiRequest& request, Action& action)
{
    if (request.body.size() > MaxBodyBytes)
        return problemResponse(Problem::BodyTooLarge, std::to_string(request.body.size()) + " bytes");
    Json::Value body(Json::objectValue);
    if (!request.body.empty()) {
        Json::CharReaderBuilder builder;
        builder["failIfExtra"] = true;
        builder["rejectDupKeys"] = true;
        std::string errors;
        const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        if (!reader->parse(request.body.data(), request.body.data() + request.body.size(), &body, &errors))
            return problemResponse(
                Problem::BadJson, "the body is not JSON: " + errors.substr(0, errors.find('\n')));
        if (!body.isObject())
            return problemResponse(Problem::BadJson, "the body is not a JSON object");
    }
    if (action.bulk) {
        const Json::Value& ids = body["ids"];
        if (!ids.isArray() || ids.empty())
            return problemResponse(Problem::BadJson, "\"ids\" must be a list of one or more ids");
        if (ids.size() > MaxIdsPerRequest)
            return problemResponse(Problem::TooManyIds,
                std::to_string(ids.size()) + " ids; at most " + std::to_string(MaxIdsPerRequest));
        for (const Json::Value& id : ids) {
            if (!id.isUInt())
                return problemResponse(Problem::BadId, compactJson(id) + " is not an unsigned 32-bit number");
            action.ids.push_back(id.asUInt());
        }
    }
    if (action.action == FarmCommand::Action::Priority) {
        const Json::Value& priority = body["priority"];
        if (!priority.isInt() || priority.asInt() < -2 || priority.asInt() > 2)
            return problemResponse(Problem::BadPriority,
                (priority.isNull() ? std::string("no \"priority\"") : compactJson(priority))
                    + ": the priority is a whole number from -2 (lowest) to 2 (highest)");
        action.priority = priority.asInt();
    }
    return std::nullopt;
}

void WebApi::refuse(const ApiRequest& request, const Access::Identity& identity, const Action& action,
    Problem problem, const std::string& result, const std::string& reason, const Reply& reply)
{
    m_metrics.countAction(metricsWord(result));
    if (std::optional<ApiResponse> unaudited = audit(request, identity, action, result, reason, nullptr))
        return reply(*unaudited);
    reply(problemResponse(problem, reason));
}

void WebApi::act(
    const ApiRequest& request, const Access::Identity& identity, Action action, const Reply& reply)
{
    if (!action.bulk) {
        const std::uint32_t id = action.ids.front();
        const bool known
            = action.target == FarmCommand::Target::Batch ? m_hub.knowsBatch(id) : m_hub.knowsNode(id);
        if (!known)
            return reply(problemResponse(
                action.target == FarmCommand::Target::Batch ? Problem::UnknownBatch : Problem::UnknownNode,
                std::string("the farm has no ")
                    + (action.target == FarmCommand::Target::Batch ? "batch " : "node ")
                    + std::to_string(id)));
    }
    std::string why;
    if (!m_audit.ready(why)) {
        m_metrics.countAction("audit_unavailable");
        return reply(problemResponse(Problem::AuditUnavailable, why));
    }

    FarmCommand command;
    command.target = action.target;
    command.action = action.action;
    command.priority = action.priority;
    command.ids = action.ids;
    // Ids the farm does not know are not sent.
    std::vector<std::uint32_t> unknown;
    if (action.bulk) {
        command.ids.clear();
        for (std::uint32_t id : action.ids) {
            const bool known
                = action.target == FarmCommand::Target::Batch ? m_hub.knowsBatch(id) : m_hub.knowsNode(id);
            (known ? command.ids : unknown).push_back(id);
        }
    }
    auto finish = [this, request, identity, action, unknown, reply](
                      std::vector<FarmCommand::Result> results) {
        for (std::uint32_t id : unknown) {
            results.push_back({id, FarmCommand::Outcome::Refused,
                std::string("the farm has no ")
                    + (action.target == FarmCommand::Target::Batch ? "batch " : "node ") + std::to_string(id),
                {}});
        }
        // In the order the request gave the ids.
        std::vector<FarmCommand::Result> ordered;
        for (std::uint32_t id : action.ids) {
            for (auto it = results.begin(); it != results.end(); ++it) {
                if (it->id == id) {
                    ordered.push_back(std::move(*it));
                    results.erase(it);
                    break;
                }
            }
        }
        const std::string result = overallResult(ordered);
        for (const FarmCommand::Result& one : ordered)
            m_metrics.countAction(metricsWord(outcomeWord(one.outcome)));
        const std::string reason = ordered.size() == 1 ? ordered.front().reason : std::string();
        if (std::optional<ApiResponse> unaudited = audit(request, identity, action, result, reason, &ordered))
            return reply(*unaudited);
        if (!action.bulk) {
            const FarmCommand::Result& one = ordered.front();
            if (one.outcome == FarmCommand::Outcome::Unreachable)
                return reply(problemResponse(Problem::Unreachable, one.reason));
            if (one.outcome == FarmCommand::Outcome::TimedOut)
                return reply(problemResponse(Problem::TimedOut, one.reason));
        }
        Json::Value body(Json::objectValue);
        body["action"] = actionWord(action.action);
        Json::Value& list = body["results"] = Json::Value(Json::arrayValue);
        for (const FarmCommand::Result& one : ordered) {
            Json::Value entry(Json::objectValue);
            entry["id"] = Json::UInt(one.id);
            entry["result"] = outcomeWord(one.outcome);
            if (!one.reason.empty())
                entry["reason"] = one.reason;
            list.append(entry);
        }
        reply(jsonResponse(body));
    };
    if (command.ids.empty())
        return finish({});
    command.done = finish;
    if (!m_watch.submit(command))
        reply(problemResponse(Problem::TooManyRequests, "too many commands wait for the processing server"));
}

std::optional<ApiResponse> WebApi::audit(const ApiRequest& request, const Access::Identity& identity,
    const Action& action, const std::string& result, const std::string& reason,
    const std::vector<FarmCommand::Result>* results)
{
    Json::Value entry(Json::objectValue);
    entry["time"] = AuditLog::timeText();
    entry["user"] = identity.user.empty() ? Json::Value() : Json::Value(identity.user);
    entry["remote"] = request.remote;
    entry["action"] = actionWord(action.action);
    entry["target"] = targetWord(action.target);
    Json::Value& ids = entry["ids"] = Json::Value(Json::arrayValue);
    for (std::uint32_t id : action.ids)
        ids.append(Json::UInt(id));
    if (action.action == FarmCommand::Action::Priority)
        entry["priority"] = action.priority;
    entry["result"] = result;
    if (!reason.empty())
        entry["reason"] = reason;
    if (results && results->size() > 1) {
        Json::Value& each = entry["results"] = Json::Value(Json::arrayValue);
        for (const FarmCommand::Result& one : *results) {
            Json::Value item(Json::objectValue);
            item["id"] = Json::UInt(one.id);
            item["result"] = outcomeWord(one.outcome);
            if (!one.reason.empty())
                item["reason"] = one.reason;
            each.append(item);
        }
    }
    std::string why;
    if (m_audit.write(entry, why))
        return std::nullopt;
    return problemResponse(Problem::AuditUnavailable, why);
}
