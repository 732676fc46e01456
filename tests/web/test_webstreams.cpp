#include <csignal>
#include <thread>

#include <gtest/gtest.h>

#include "eventreader.h"
#include "jsontext.h"
#include "scriptedserver.h"
#include "simprocess.h"
#include "webprocess.h"

using namespace std::chrono_literals;

// korvane-web's event streams over real HTTP: snapshot and deltas, resuming,
// what a lost server looks like to them, and that the farm is read once
// whatever the number of streams.
namespace {

// A client's copy of the state, kept by snapshots and deltas.
class StateCopy final
{
public:
    void apply(const EventReader::Event& event)
    {
        const Json::Value data = jsonFromText(event.data);
        if (event.name == "snapshot") {
            m_seq = data["seq"].asUInt64();
            m_farm = data["farm"];
            m_batches = rows(data["batches"], "batch_id");
            m_nodes = rows(data["nodes"], "node_id");
        } else if (event.name == "delta") {
            m_seq = data["seq"].asUInt64();
            applyRows(m_batches, data["batches"], "batch_id");
            applyRows(m_nodes, data["nodes"], "node_id");
        } else if (event.name == "farm") {
            m_seq = std::stoull(event.id);
            m_farm = data;
        }
    }

    // The same document as GET /api/v1/snapshot.
    Json::Value document() const
    {
        Json::Value document(Json::objectValue);
        document["seq"] = Json::UInt64(m_seq);
        document["farm"] = m_farm;
        document["batches"] = array(m_batches);
        document["nodes"] = array(m_nodes);
        return document;
    }

private:
    using Rows = std::map<std::uint32_t, Json::Value>;

    static Rows rows(const Json::Value& list, const char* key)
    {
        Rows rows;
        for (const Json::Value& row : list)
            rows[row[key].asUInt()] = row;
        return rows;
    }

    static void applyRows(Rows& rows, const Json::Value& delta, const char* key)
    {
        for (const Json::Value& id : delta["removed"])
            rows.erase(id.asUInt());
        for (const Json::Value& row : delta["added"])
            rows[row[key].asUInt()] = row;
        for (const Json::Value& change : delta["changed"]) {
            Json::Value& row = rows[change[key].asUInt()];
            for (const std::string& member : change.getMemberNames())
                row[member] = change[member];
        }
    }

    static Json::Value array(const Rows& rows)
    {
        Json::Value list(Json::arrayValue);
        for (const auto& [id, row] : rows)
            list.append(row);
        return list;
    }

    std::uint64_t m_seq = 0;
    Json::Value m_farm;
    Rows m_batches;
    Rows m_nodes;
};

std::optional<EventReader::Event> nextNamed(EventReader& reader, const std::string& name, int timeoutMs)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (std::chrono::steady_clock::now() < end) {
        std::optional<EventReader::Event> event = reader.next(timeoutMs);
        if (!event)
            return std::nullopt;
        if (event->name == name)
            return event;
    }
    return std::nullopt;
}

std::uint64_t currentSeq(const WebProcess& web)
{
    const httplib::Result result = web.client().Get("/api/v1/snapshot");
    return result ? jsonFromText(result->body)["seq"].asUInt64() : 0;
}

// Waits for the program's first reading of a farm of this many batches.
void waitForBatches(const WebProcess& web, int count)
{
    const std::string last = "\"batch_id\":" + std::to_string(count) + ",";
    for (int i = 0; i < 200; ++i) {
        const httplib::Result result = web.client().Get("/api/v1/snapshot");
        if (result && result->body.find(last) != std::string::npos)
            return;
        std::this_thread::sleep_for(50ms);
    }
    ADD_FAILURE() << "no reading of " << count << " batches";
}

} // namespace

TEST(WebStreams, AStreamStartsWithASnapshotThenDeltasNumberedOneByOne)
{
    SimProcess sim({"--seed", "1", "--speed", "20"});
    WebProcess web(webOptions(sim.port(), {"--interval", "0.2"}));
    waitForBatches(web, 30);
    EventReader reader(web.port(), "/api/v1/events");
    ASSERT_EQ(reader.status(), 200);
    EXPECT_NE(reader.head().find("\r\nContent-Type: text/event-stream\r\n"), std::string::npos)
        << reader.head();
    EXPECT_NE(reader.head().find("\r\nCache-Control: no-store\r\n"), std::string::npos);
    const std::optional<EventReader::Event> snapshot = reader.next();
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->name, "snapshot");
    StateCopy copy;
    copy.apply(*snapshot);
    EXPECT_EQ(jsonFromText(snapshot->data)["seq"].asString(), snapshot->id);
    EXPECT_EQ(jsonFromText(snapshot->data)["farm"]["state"].asString(), "connected");
    std::uint64_t last = std::stoull(snapshot->id);
    for (int i = 0; i < 5; ++i) {
        const std::optional<EventReader::Event> delta = reader.next();
        ASSERT_TRUE(delta);
        EXPECT_EQ(delta->name, "delta");
        EXPECT_EQ(std::stoull(delta->id), last + 1);
        EXPECT_EQ(jsonFromText(delta->data)["seq"].asString(), delta->id);
        last = std::stoull(delta->id);
    }
}

TEST(WebStreams, ResumingInsideTheRingGetsDeltasOnlyAndTheCopyEqualsTheSnapshot)
{
    SimProcess sim({"--seed", "1", "--speed", "0"});
    WebProcess web(webOptions(sim.port(), {"--interval", "0.2"}));
    waitForBatches(web, 30);
    StateCopy copy;
    std::string lastId;
    {
        EventReader first(web.port(), "/api/v1/events");
        const std::optional<EventReader::Event> snapshot = first.next();
        ASSERT_TRUE(snapshot);
        ASSERT_EQ(snapshot->name, "snapshot");
        copy.apply(*snapshot);
        lastId = snapshot->id;
    }
    // Two changes while no stream is open, each seen by a reading of its own.
    const std::uint64_t before = currentSeq(web);
    ASSERT_EQ(web.post("/api/v1/batches/4/pause")->status, 200);
    for (int i = 0; i < 100 && currentSeq(web) == before; ++i)
        std::this_thread::sleep_for(20ms);
    ASSERT_EQ(web.post("/api/v1/nodes/3/priority", R"({"priority":2})")->status, 200);
    for (int i = 0; i < 100 && currentSeq(web) < before + 2; ++i)
        std::this_thread::sleep_for(20ms);
    ASSERT_EQ(currentSeq(web), before + 2);

    EventReader again(web.port(), "/api/v1/events", {"Last-Event-ID: " + lastId});
    for (int i = 1; i <= 2; ++i) {
        const std::optional<EventReader::Event> delta = again.next();
        ASSERT_TRUE(delta);
        EXPECT_EQ(delta->name, "delta");
        EXPECT_EQ(delta->id, std::to_string(before + i));
        copy.apply(*delta);
    }
    EXPECT_EQ(copy.document().toStyledString(),
        jsonFromText(web.client().Get("/api/v1/snapshot")->body).toStyledString());
    EXPECT_EQ(copy.document()["batches"][3]["status"].asString(), "paused");
}

TEST(WebStreams, AQuietFarmStillSaysWhenItWasReadAndThatIsNotKeptForResuming)
{
    // The clock stands still: no reading finds a change, and no delta is sent.
    SimProcess sim({"--seed", "1", "--speed", "0"});
    WebProcess web(webOptions(sim.port(), {"--interval", "0.2"}));
    waitForBatches(web, 30);
    EventReader reader(web.port(), "/api/v1/events");
    const std::optional<EventReader::Event> snapshot = reader.next();
    ASSERT_TRUE(snapshot);
    ASSERT_EQ(snapshot->name, "snapshot");
    const auto before = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now().time_since_epoch())
                            .count();
    EXPECT_FALSE(reader.next(1000));
    const auto after = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now().time_since_epoch())
                           .count();
    EXPECT_GE(reader.readings(), 3);
    EXPECT_LE(reader.readings(), 6);
    const Json::Value reading = jsonFromText(reader.lastReading());
    EXPECT_EQ(reading["interval"].asInt(), 200);
    EXPECT_GE(reading["time"].asInt64(), before);
    EXPECT_LE(reading["time"].asInt64(), after);
    EXPECT_EQ(reading.size(), 2u);

    // A resumed stream gets the readings too, and nothing else while the farm is still.
    EventReader resumed(web.port(), "/api/v1/events", {"Last-Event-ID: " + snapshot->id});
    EXPECT_FALSE(resumed.next(600));
    EXPECT_GE(resumed.readings(), 1);
}

TEST(WebStreams, ResumingFromOutsideTheRingOrAnotherRunGetsASnapshot)
{
    SimProcess sim({"--seed", "1", "--speed", "50"});
    WebProcess web(webOptions(sim.port(), {"--interval", "0.1"}));
    waitForBatches(web, 30);
    const std::uint64_t first = currentSeq(web);
    // The ring keeps the last 120 events.
    for (int i = 0; i < 400 && currentSeq(web) < first + 125; ++i)
        std::this_thread::sleep_for(100ms);
    ASSERT_GE(currentSeq(web), first + 125);
    for (const std::string& id : {std::to_string(first), std::string("17"), std::string("x")}) {
        EventReader reader(web.port(), "/api/v1/events", {"Last-Event-ID: " + id});
        const std::optional<EventReader::Event> event = reader.next();
        ASSERT_TRUE(event);
        EXPECT_EQ(event->name, "snapshot") << id;
    }
}

TEST(WebStreams, ALostServerIsAnEventForEveryStreamAndSoIsItsReturn)
{
    auto sim = std::make_unique<SimProcess>(std::vector<std::string> {"--seed", "1", "--speed", "0"});
    const int simPort = sim->port();
    WebProcess web(webOptions(simPort, {"--interval", "0.2", "--server-timeout", "2"}));
    waitForBatches(web, 30);
    std::vector<std::unique_ptr<EventReader>> readers;
    for (int i = 0; i < 3; ++i) {
        readers.push_back(std::make_unique<EventReader>(web.port(), "/api/v1/events"));
        ASSERT_EQ(readers.back()->next()->name, "snapshot");
    }
    const auto stopped = std::chrono::steady_clock::now();
    sim->stop();
    sim.reset();
    for (auto& reader : readers) {
        const std::optional<EventReader::Event> lost = nextNamed(*reader, "farm", 10000);
        ASSERT_TRUE(lost);
        const Json::Value farm = jsonFromText(lost->data);
        EXPECT_EQ(farm["state"].asString(), "disconnected");
        const std::string address = "127.0.0.1:" + std::to_string(simPort);
        EXPECT_TRUE(farm["reason"].asString() == "cannot connect to " + address + "; next attempt in 1 s"
            || farm["reason"].asString() == "connection to " + address + " lost during listBatches")
            << farm["reason"].asString();
        EXPECT_GE(farm["next_try"].asInt64(), farm["since"].asInt64());
    }
    // Within the reading's deadline and an interval.
    EXPECT_LT(std::chrono::steady_clock::now() - stopped, 3s);

    // A command while the server is away: refused with the reason, and audited.
    const httplib::Result during = web.post("/api/v1/batches/4/pause");
    ASSERT_TRUE(during);
    EXPECT_EQ(during->status, 503);
    EXPECT_EQ(jsonFromText(during->body)["type"].asString(), "urn:korvane-web:problem:server-unreachable");
    EXPECT_EQ(jsonFromText(during->body)["detail"].asString().rfind("cannot connect to 127.0.0.1:", 0), 0u)
        << during->body;
    EXPECT_NE(web.process().err().find(R"(korvane-web: audit {"action":"pause","ids":[4],"reason":"cannot )"),
        std::string::npos)
        << web.process().err();

    SimProcess back({"--seed", "1", "--speed", "0", "--listen", "127.0.0.1:" + std::to_string(simPort)});
    ASSERT_EQ(back.port(), simPort);
    // Back within the longest wait between attempts.
    for (auto& reader : readers) {
        std::optional<EventReader::Event> found = nextNamed(*reader, "farm", 20000);
        // Each failed attempt that changes the reason is an event of its own.
        while (found && jsonFromText(found->data)["state"].asString() == "disconnected")
            found = nextNamed(*reader, "farm", 20000);
        ASSERT_TRUE(found);
        EXPECT_EQ(jsonFromText(found->data)["state"].asString(), "connected") << found->data;
    }
}

TEST(WebStreams, AMemberOfTheWrongTypeIsNamedAndReportedAsAFailedReading)
{
    ScriptedServer server;
    server.acceptConnection().answerByMethod(
        {{"listBatches",
             R"({"id":0,"result":[{"batch_id":3,"path":"/p","status":"paused","priority":"high"}]})"},
            {"listNodes", R"({"id":1,"result":[]})"}},
        "{}");
    server.start();
    WebProcess web(webOptions(server.port(), {"--interval", "60"}));
    EventReader reader(web.port(), "/api/v1/events");
    std::optional<EventReader::Event> event = reader.next();
    ASSERT_TRUE(event);
    // The first reading may come before or after the stream.
    if (event->name == "snapshot" && jsonFromText(event->data)["farm"]["reason"].asString() == "not read yet")
        event = nextNamed(reader, "farm", 10000);
    ASSERT_TRUE(event);
    const Json::Value farm
        = event->name == "farm" ? jsonFromText(event->data) : jsonFromText(event->data)["farm"];
    EXPECT_EQ(farm["state"].asString(), "disconnected");
    const std::string reason = "listBatches reply: result[0].priority has the wrong type (";
    EXPECT_EQ(farm["reason"].asString().rfind(reason, 0), 0u) << farm["reason"].asString();
    web.process().signal(SIGTERM);
    EXPECT_EQ(web.process().wait(), 0);
    EXPECT_NE(web.process().err().find("korvane-web: " + reason), std::string::npos) << web.process().err();
}

TEST(WebStreams, TheServerSeesTwoRequestsPerReadingWhateverTheNumberOfStreams)
{
    ScriptedServer server;
    server.acceptConnection().answerByMethod(
        {{"listBatches", R"({"id":0,"result":[{"batch_id":3,"path":"/p","status":"paused"}]})"},
            {"listNodes", R"({"id":1,"result":[]})"},
            {"getBatchStatus", R"({"id":2,"result":{"path":"/p","status":"paused","tasks":[]}})"}},
        "{}");
    server.start();
    WebProcess web(webOptions(server.port(), {"--interval", "0.25"}));
    const auto count = [&](const std::string& method) {
        const std::string received = server.received();
        std::size_t n = 0;
        for (std::size_t at = received.find("\"" + method + "\""); at != std::string::npos;
             at = received.find("\"" + method + "\"", at + 1))
            ++n;
        return n;
    };
    std::this_thread::sleep_for(1s);
    const std::size_t without = count("listBatches");
    std::vector<std::unique_ptr<EventReader>> readers;
    for (int i = 0; i < 100; ++i) {
        readers.push_back(
            std::make_unique<EventReader>(web.port(), i % 2 ? "/api/v1/events" : "/api/v1/events?batch=3"));
        ASSERT_TRUE(readers.back()->next());
    }
    const std::size_t atStart = count("listBatches");
    const std::size_t statusAtStart = count("getBatchStatus");
    std::this_thread::sleep_for(2s);
    const std::size_t readings = count("listBatches") - atStart;
    // Four readings a second, whether 0 or 100 streams are open.
    EXPECT_GE(without, 3u);
    EXPECT_LE(without, 5u);
    EXPECT_GE(readings, 7u);
    EXPECT_LE(readings, 9u);
    EXPECT_EQ(count("listNodes"), count("listBatches"));
    // One status a reading for the batch 50 streams follow.
    EXPECT_EQ(count("getBatchStatus") - statusAtStart, readings);
}

TEST(WebStreams, SigtermWithAHundredStreamsOpenEndsItWithinTwoSeconds)
{
    SimProcess sim({"--seed", "1"});
    WebProcess web(webOptions(sim.port()));
    waitForBatches(web, 30);
    std::vector<std::unique_ptr<EventReader>> readers;
    for (int i = 0; i < 100; ++i) {
        readers.push_back(std::make_unique<EventReader>(web.port(), "/api/v1/events"));
        ASSERT_TRUE(readers.back()->next());
    }
    const auto start = std::chrono::steady_clock::now();
    web.process().signal(SIGTERM);
    EXPECT_EQ(web.process().wait(5000), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    for (auto& reader : readers)
        EXPECT_TRUE(reader->closedByPeer(1000));
}

TEST(WebStreams, ASlowStreamIsResyncedByASnapshotAndTheOthersMissNothing)
{
    SimProcess sim({"--seed", "1", "--batches", "3000", "--nodes", "600", "--speed", "20"});
    WebProcess web(webOptions(sim.port(), {"--interval", "0.2", "--web.stream-buffer", "64K"}));
    waitForBatches(web, 3000);
    // Its socket takes a few kilobytes; nothing is read from it for a while.
    EventReader slow(web.port(), "/api/v1/events", {}, 4096);
    ASSERT_EQ(slow.status(), 200);
    EventReader fast(web.port(), "/api/v1/events");
    const std::optional<EventReader::Event> first = fast.next();
    ASSERT_TRUE(first);
    ASSERT_EQ(first->name, "snapshot");
    const std::uint64_t start = std::stoull(first->id);
    // Every event reaches the fast stream, one number after the other, while
    // the slow one falls behind by far more than its 64 KiB and the system's
    // send buffer.
    std::uint64_t last = start;
    while (last < start + 40) {
        const std::optional<EventReader::Event> event = fast.next();
        ASSERT_TRUE(event);
        EXPECT_EQ(event->name, "delta");
        EXPECT_EQ(std::stoull(event->id), last + 1);
        last = std::stoull(event->id);
    }
    // Now it reads: after what was already on its way, a snapshot of the
    // present state comes instead of the deltas it missed.
    std::optional<EventReader::Event> event = slow.next();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->name, "snapshot");
    std::uint64_t resumed = 0;
    for (int i = 0; i < 100 && !resumed; ++i) {
        event = slow.next();
        ASSERT_TRUE(event);
        if (event->name == "snapshot")
            resumed = std::stoull(event->id);
    }
    EXPECT_GT(resumed, start + 2);
    const std::string metrics = web.client().Get("/metrics")->body;
    EXPECT_EQ(metrics.find("\nkorvane_web_stream_resyncs_total 0\n"), std::string::npos) << metrics;
}
