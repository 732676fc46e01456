#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>

#include "access.h"
#include "apimessage.h"
#include "farmcommand.h"
#include "problem.h"

class AuditLog;
class FarmWatch;
class StreamHub;
class WebAssets;
class WebMetrics;

// The routes of the API under /api/v1/, /metrics, and the rules every
// response follows, whatever HTTP server carries them:
//
//   GET  /api/v1/snapshot            the whole state
//   GET  /api/v1/events              Server-Sent Events (see startStream)
//   GET  /api/v1/batches/{id}        one batch's status with its tasks
//   GET  /api/v1/whoami              {"user": ..., "role": ...}
//   GET  /api/v1/openapi.json        the description of all of this
//   POST /api/v1/batches/{id}/{pause|resume|abort|priority}
//   POST /api/v1/nodes/{id}/{pause|resume|stop|priority}
//   POST /api/v1/batches/{action}, /api/v1/nodes/{action}   {"ids": [...]}
//   GET  /metrics                    the program's own metrics
//   GET  /, /batches, /nodes, /batches/{id}, /assets/...   the browser application
//
// Errors are problem details (problem.h). Actions are audited before their
// reply leaves. Thread-safe; a reply may come on the reading's thread.
class WebApi final
{
public:
    using Reply = std::function<void(ApiResponse)>;

    static constexpr std::size_t MaxBodyBytes = std::size_t {64} * 1024;
    static constexpr std::size_t MaxIdsPerRequest = 1000;

    struct Stream
    {
        Access::Identity identity;
        std::optional<std::uint64_t> lastEventId;
        std::optional<std::uint32_t> followedBatch;
    };

    WebApi(StreamHub& hub, FarmWatch& watch, Access& access, AuditLog& audit, WebMetrics& metrics,
        const WebAssets& assets);
    WebApi(const WebApi&) = delete;
    WebApi& operator=(const WebApi&) = delete;

    // Every request but the event stream's; reply is called exactly once.
    void handle(const ApiRequest& request, const Reply& reply);
    // GET /api/v1/events: what the stream is to start from, or the refusal.
    std::variant<Stream, ApiResponse> startStream(const ApiRequest& request);
    bool isEventStream(const ApiRequest& request) const;

    // Headers of every response: a strict Content-Security-Policy, no
    // sniffing, no referrer, HSTS under TLS, no caching.
    static void addSecurityHeaders(ApiResponse& response, bool tls);

private:
    struct Action
    {
        FarmCommand::Target target = FarmCommand::Target::Batch;
        FarmCommand::Action action = FarmCommand::Action::Pause;
        std::vector<std::uint32_t> ids;
        int priority = 0;
        bool bulk = false;
    };

    void get(const ApiRequest& request, const Access::Identity& identity,
        const std::vector<std::string>& parts, const Reply& reply);
    void post(const ApiRequest& request, const Access::Identity& identity,
        const std::vector<std::string>& parts, const Reply& reply);
    void batchStatus(std::uint32_t id, const Reply& reply);
    // The target, the action and a single id from the path, or the refusal.
    std::variant<Action, ApiResponse> readPath(const std::vector<std::string>& parts);
    // The bulk ids and the priority from the body; the refusal when they are bad.
    std::optional<ApiResponse> readBody(const ApiRequest& request, Action& action);
    // An audited refusal.
    void refuse(const ApiRequest& request, const Access::Identity& identity, const Action& action,
        Problem problem, const std::string& result, const std::string& reason, const Reply& reply);
    void act(const ApiRequest& request, const Access::Identity& identity, Action action, const Reply& reply);
    // Writes the audit line; a refusal when it could not be written.
    std::optional<ApiResponse> audit(const ApiRequest& request, const Access::Identity& identity,
        const Action& action, const std::string& result, const std::string& reason,
        const std::vector<FarmCommand::Result>* results);
    std::optional<ApiResponse> authenticate(const ApiRequest& request, Access::Identity& identity);

    StreamHub& m_hub;
    FarmWatch& m_watch;
    Access& m_access;
    AuditLog& m_audit;
    WebMetrics& m_metrics;
    const WebAssets& m_assets;
};

// "3" to 3; nothing for anything that is not an unsigned 32-bit number in
// plain decimal digits.
std::optional<std::uint32_t> parseId(const std::string& text);
