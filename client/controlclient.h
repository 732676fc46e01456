#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <sys/socket.h>
#include <vector>

#include <json/value.h>

#include "interruptevent.h"
#include "paramvalue.h"
#include "receivebuffer.h"
#include "socketwait.h"

struct addrinfo;

// Client side of the server's control protocol: one TCP connection, one
// compact JSON object per line in each direction, strictly one request and
// then one reply. Replies are not matched by id; whatever line comes next is
// the answer. Failures come back as result values (false, null, or the id
// NoId); the only exceptions are jsoncpp's own conversion errors for members
// of the wrong type, which pass through untouched.
//
// Console lines (connect, disconnect, parse errors) go to standard output,
// the text of a failed name lookup to the wide standard output, both through
// ClientConsole. Not thread-safe: one thread owns it,
// except for interrupt().
//
// Every connection asks the system to notice a dead link: keep-alive probes
// after a minute of quiet, and a request whose bytes stay unacknowledged for
// UserTimeoutMs ends the connection as lost. A server that is alive but
// silent is still waited for without limit, unless the owner sets a deadline.
class ControlClient final
{
public:
    static constexpr std::uint32_t NoId = 0xFFFFFFFFu;

    // Keep-alive: idle time before the first probe, the time between probes
    // and how many go unanswered before the link counts as dead.
    static constexpr int KeepAliveIdleSeconds = 60;
    static constexpr int KeepAliveIntervalSeconds = 10;
    static constexpr int KeepAliveProbes = 3;
    // Longest time sent bytes may stay unacknowledged (TCP_USER_TIMEOUT).
    static constexpr unsigned UserTimeoutMs = 30000;

    // Why the last connect() or request did not get through. A request the
    // server answered without a result is refused, not failed: None.
    enum class Failure
    {
        None,
        CannotResolve, // the name lookup failed (lookupError())
        CannotConnect, // no address took the connection
        ConnectTimedOut, // the deadline came during the lookup or the connect
        NoReply, // the deadline came before any byte of the reply
        ReplyTooSlow, // the deadline came while the reply was arriving
        ConnectionLost, // the server closed, or the link failed
        Interrupted, // interrupt()
    };

    enum Status
    {
        Pending = 0,
        InProgress = 1,
        Completed = 2,
        Paused = 3,
        Aborted = 4,
        Ready = 5,
    };

    struct TaskInfo
    {
        std::string name;
        ParamMap params;
        Status status = Pending;
        double progress = 0.0;
        double timeElapsed = 0.0;
        double timeLeft = 0.0;
        int itemsTotal = 0;
        int itemsDone = 0;
        int nodesFailed = 0;
        int nodesWaiting = 0;
        int nodesActive = 0;
    };

    struct BatchInfo
    {
        std::uint32_t batchId = 0;
        std::string path;
        Status status = Pending;
        int priority = 0;
        std::uint32_t timeStarted = 0;
        TaskInfo task;
    };
    using BatchList = std::vector<BatchInfo>;

    struct NodeError
    {
        std::uint32_t time = 0;
        std::uint32_t batchId = NoId;
        std::string message;
    };

    struct NodeInfo
    {
        std::string hostname;
        std::uint32_t nodeId = 0;
        std::string version;
        Status status = Pending;
        int priority = 0;
        std::uint32_t batchId = NoId;
        double progress = 0.0;
        std::string taskName;
        ParamMap taskParams;
        std::uint32_t errorCount = 0;
        NodeError lastError;
    };
    using NodeList = std::vector<NodeInfo>;

    struct BatchError
    {
        std::uint32_t time = 0;
        std::uint32_t nodeId = NoId;
        std::string message;
    };

    struct BatchStatus
    {
        std::string path;
        Status status = Pending;
        int priority = 0;
        std::vector<TaskInfo> tasks;
        BatchError lastError;
    };

    // A task as "createBatch" sends it: the reply records carry no chunks or frames.
    struct TaskRequest
    {
        std::string name;
        ParamMap params;
        std::set<int> chunks;
        std::map<std::uint32_t, std::set<std::uint32_t>> frames;
    };

    ControlClient();
    ~ControlClient();
    ControlClient(const ControlClient&) = delete;
    ControlClient& operator=(const ControlClient&) = delete;
    ControlClient(ControlClient&&) = delete;
    ControlClient& operator=(ControlClient&&) = delete;

    bool init();

    // A ":" in address splits it: the text after the first one replaces port.
    bool connect(const std::string& address, int port);
    void disconnect();
    bool isConnected() const { return m_socket != -1; }
    // The connected socket, -1 when not connected. For an owner that must be
    // able to cut a blocked exchange short from another thread (by shutting
    // down a duplicate of it); all reading and writing stays with this class.
    int socketDescriptor() const { return m_socket; }

    bool send(const Json::Value& message);
    // -1 waits without limit. A time-out limits only the wait for the first
    // bytes; once reading has begun it blocks until the line is complete.
    Json::Value receive(int timeoutMs);

    // One point in time that bounds connect() and every request from now
    // on: the name lookup, the connect to each address in turn, the send and
    // the whole reply. A request that reaches it fails and closes the
    // connection, so that a late reply cannot pass for the next one. Without
    // a deadline (the default, as the monitor has it) every wait is without limit.
    void setDeadline(SteadyClock::time_point deadline) { m_deadline = deadline; }
    void clearDeadline() { m_deadline.reset(); }

    // Ends a name lookup or a connect in progress, and the waits of a request
    // under a deadline; every later connect() and such request fails at once
    // until clearInterrupt(). Callable from any thread and from a signal handler.
    void interrupt() { m_interrupt.raise(); }
    void clearInterrupt() { m_interrupt.clear(); }

    Failure failure() const { return m_failure; }
    // The method of the last request that failed (failure() not None), else empty.
    const std::string& failedRequest() const { return m_failedRequest; }
    // getaddrinfo's code after CannotResolve.
    int lookupError() const { return m_lookupError; }

    // Echoes every message sent and received on the client's console, each line
    // opened by "[-> " or "[<- ", the peer and "] ". Off unless switched on.
    void setTrafficTrace(bool on) { m_logTraffic = on; }
    // The id the next request carries; the counter goes on from there.
    void setNextRequestId(int id) { m_nextId = id; }

    // "host:port" of a connected peer as numbers; when the system cannot
    // say, the address as given and the service.
    static std::string peerText(
        const sockaddr* peer, socklen_t length, const std::string& address, const std::string& service);

    bool listBatches(BatchList& out);
    bool listNodes(NodeList& out);
    bool getBatchStatus(std::uint32_t batchId, BatchStatus& out);
    bool pauseBatch(std::uint32_t batchId);
    bool resumeBatch(std::uint32_t batchId);
    bool abortBatch(std::uint32_t batchId);
    bool pauseNode(std::uint32_t nodeId);
    bool resumeNode(std::uint32_t nodeId);
    bool abortNode(std::uint32_t nodeId);
    // A node is stopped by pausing it and then aborting it, the abort going
    // out even when the pause failed. Each step that fails is handed to
    // failed, which says whether to go on. True when both steps went through.
    enum class StopStep
    {
        Pause,
        Abort,
    };
    bool stopNode(std::uint32_t nodeId, const std::function<bool(StopStep)>& failed);
    bool setBatchPriority(std::uint32_t batchId, int priority);
    bool setNodePriority(std::uint32_t nodeId, int priority);
    std::uint32_t createBatch(const std::string& path, const std::vector<TaskRequest>& tasks);
    std::uint32_t findBatch(const std::string& path);

    // Record readers (controlclientrecords.cpp). Missing members take their
    // defaults; members of the wrong JSON type raise jsoncpp's exception.
    static Status statusFromJson(const Json::Value& value);
    static Json::Value statusToJson(int status);
    static void parseTaskInfo(const Json::Value& object, TaskInfo& out);
    static void parseBatchInfo(const Json::Value& object, BatchInfo& out);
    static void parseNodeInfo(const Json::Value& object, NodeInfo& out);
    static void parseBatchStatus(const Json::Value& object, BatchStatus& out);
    static void parseBatchList(const Json::Value& array, BatchList& out);
    static void parseNodeList(const Json::Value& array, NodeList& out);

    // One request: its "result" member, or null on failure. For callers
    // that read the result themselves.
    Json::Value request(const char* method, Json::Value params, bool withParams);

private:
    // The connected socket, or -1 with m_failure set.
    int connectOne(const addrinfo* entry);
    // Reads lines until one parses. Under a deadline every wait for bytes
    // ends there or at an interruption: null then, with m_failure set.
    Json::Value nextMessage(bool bounded);
    bool simpleRequest(const char* method, const char* idKey, std::uint32_t id);

    int m_socket = -1;
    std::string m_peerName;
    bool m_initialized = false;
    bool m_logTraffic = false;
    ReceiveBuffer m_receiveBuffer;
    int m_nextId = 0;
    Deadline m_deadline;
    InterruptEvent m_interrupt;
    Failure m_failure = Failure::None;
    std::string m_failedRequest;
    int m_lookupError = 0;
};
