#include <regex>

#include <gtest/gtest.h>

#include "jsontext.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"
#include "webprocess.h"

// korvane-web's routes over real HTTP, against the simulator with its farm
// standing still: every route, and every bad input with its exact status,
// problem type and detail.
namespace {

struct Call
{
    std::string method;
    std::string path;
    std::string body;
    std::string contentType = "application/json";
    httplib::Headers headers;
    int status = 200;
    // The problem's type after "urn:korvane-web:problem:", and its detail;
    // for a success, the start of the body.
    std::string type;
    std::string detail;
};

void PrintTo(const Call& call, std::ostream* out)
{
    *out << call.method << " " << call.path << " " << call.body.substr(0, 40);
}

class WebApiTest : public ::testing::TestWithParam<Call>
{
protected:
    static void SetUpTestSuite()
    {
        s_sim = new SimProcess({"--seed", "1", "--speed", "0"});
        s_web = new WebProcess(webOptions(s_sim->port()));
        // The first reading has the farm's ids.
        for (int i = 0; i < 100
             && s_web->client().Get("/api/v1/snapshot")->body.find("\"batch_id\":30") == std::string::npos;
             ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }

    static void TearDownTestSuite()
    {
        delete s_web;
        delete s_sim;
    }

    static SimProcess* s_sim;
    static WebProcess* s_web;
};

SimProcess* WebApiTest::s_sim = nullptr;
WebProcess* WebApiTest::s_web = nullptr;

std::string ids(int count)
{
    std::string list = "{\"ids\":[";
    for (int i = 1; i <= count; ++i)
        list += std::to_string(i) + (i < count ? "," : "");
    return list + "]}";
}

Call get(const std::string& path, int status, const std::string& type, const std::string& detail)
{
    return {"GET", path, "", "", {}, status, type, detail};
}

Call post(const std::string& path, const std::string& body, int status, const std::string& type,
    const std::string& detail)
{
    return {"POST", path, body, "application/json", {}, status, type, detail};
}

} // namespace

TEST_P(WebApiTest, StatusProblemTypeAndDetail)
{
    const Call& call = GetParam();
    httplib::Client client = s_web->client();
    httplib::Headers headers = call.headers;
    if (call.method == "POST" && headers.find("Origin") == headers.end()
        && headers.find("Sec-Fetch-Site") == headers.end())
        headers.emplace("Origin", "http://127.0.0.1:" + std::to_string(s_web->port()));
    httplib::Request request;
    request.method = call.method;
    request.path = call.path;
    request.headers = headers;
    request.body = call.body;
    if (!call.contentType.empty())
        request.headers.emplace("Content-Type", call.contentType);
    httplib::Response response;
    httplib::Error error = httplib::Error::Success;
    ASSERT_TRUE(client.send(request, response, error)) << httplib::to_string(error);
    EXPECT_EQ(response.status, call.status) << response.body;
    if (call.status >= 400) {
        EXPECT_EQ(response.get_header_value("Content-Type"), "application/problem+json");
        const Json::Value problem = jsonFromText(response.body);
        EXPECT_EQ(problem["type"].asString(), "urn:korvane-web:problem:" + call.type) << response.body;
        EXPECT_EQ(problem["status"].asInt(), call.status);
        std::string detail = call.detail;
        const std::size_t port = detail.find("PORT");
        if (port != std::string::npos)
            detail.replace(port, 4, std::to_string(s_web->port()));
        EXPECT_EQ(problem["detail"].asString(), detail);
        EXPECT_FALSE(problem["title"].asString().empty());
    } else {
        EXPECT_EQ(response.get_header_value("Content-Type"),
            call.path == "/metrics" ? "text/plain; version=0.0.4; charset=utf-8" : "application/json");
        EXPECT_EQ(response.body.substr(0, call.type.size()), call.type);
    }
    EXPECT_EQ(response.get_header_value("X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(response.get_header_value("Referrer-Policy"), "no-referrer");
    EXPECT_NE(response.get_header_value("Content-Security-Policy").find("frame-ancestors 'none'"),
        std::string::npos);
}

const std::vector<Call> Routes = {get("/api/v1/snapshot", 200, "{\"batches\":[{\"batch_id\":1,", ""),
    get("/api/v1/whoami", 200, "{\"role\":\"operator\",\"user\":null}", ""),
    get("/api/v1/openapi.json", 200, "{\n  \"openapi\": \"3.1.0\",", ""),
    get("/api/v1/batches/3", 200, "{\"batch_id\":3,\"last_error\":null,\"path\":", ""),
    post("/api/v1/batches/4/priority", "{\"priority\":-2}", 200,
        "{\"action\":\"priority\",\"results\":[{\"id\":4,\"result\":\"accepted\"}]}", ""),
    post("/api/v1/nodes/pause", "{\"ids\":[2,99999]}", 200,
        "{\"action\":\"pause\",\"results\":[{\"id\":2,\"result\":\"accepted\"},{\"id\":99999,\"reason\":"
        "\"the "
        "farm has no node 99999\",\"result\":\"refused\"}]}",
        ""),
    post("/api/v1/batches/abort", R"({"ids":[13]})", 200,
        R"({"action":"abort","results":[{"id":13,"result":"accepted"}]})", ""),
    post("/api/v1/batches/priority", R"({"ids":[14,15],"priority":1})", 200,
        R"({"action":"priority","results":[{"id":14,"result":"accepted"},{"id":15,"result":"accepted"}]})",
        ""),
    post("/api/v1/batches/resume", R"({"ids":[16]})", 200,
        R"({"action":"resume","results":[{"id":16,"result":"accepted"}]})", ""),
    post("/api/v1/nodes/priority", R"({"ids":[4],"priority":-1})", 200,
        R"({"action":"priority","results":[{"id":4,"result":"accepted"}]})", ""),
    post("/api/v1/nodes/resume", R"({"ids":[7]})", 200,
        R"({"action":"resume","results":[{"id":7,"result":"accepted"}]})", ""),
    post("/api/v1/nodes/stop", R"({"ids":[8]})", 200,
        R"({"action":"stop","results":[{"id":8,"result":"accepted"}]})", ""),
    get("/metrics", 200, "# HELP korvane_web_streams_open Event streams open now.\n", "")};

const std::vector<Call> BadInput = {
    get("/api/v1/batches/x7", 400, "bad-id", "\"x7\" is not an unsigned 32-bit number"),
    get("/api/v1/batches/4294967296", 400, "bad-id", "\"4294967296\" is not an unsigned 32-bit number"),
    get("/api/v1/batches/-1", 400, "bad-id", "\"-1\" is not an unsigned 32-bit number"),
    get("/api/v1/batches/99999", 404, "unknown-batch", "the farm has no batch 99999"),
    get("/api/v1/events?batch=three", 400, "bad-id", "\"three\" is not an unsigned 32-bit number"),
    get("/api/v1/nothing", 404, "not-found", "/api/v1/nothing"),
    get("/nothing", 404, "not-found", "/nothing"),
    get("/api/v1/batches/3/pause", 405, "method-not-allowed", "GET /api/v1/batches/3/pause"),
    Call {"DELETE", "/api/v1/snapshot", "", "", {}, 405, "method-not-allowed", "DELETE /api/v1/snapshot"},
    post("/api/v1/snapshot", "{}", 405, "method-not-allowed", "POST /api/v1/snapshot"),
    post("/api/v1/batches/x/pause", "{}", 400, "bad-id", "\"x\" is not an unsigned 32-bit number"),
    post("/api/v1/batches/3/explode", "{}", 400, "unknown-action",
        "\"explode\" is not an action on batches (pause, resume, abort or priority)"),
    post("/api/v1/batches/3/stop", "{}", 400, "unknown-action",
        "\"stop\" is not an action on batches (pause, resume, abort or priority)"),
    post("/api/v1/nodes/1/abort", "{}", 400, "unknown-action",
        "\"abort\" is not an action on nodes (pause, resume, stop or priority)"),
    post("/api/v1/batches/explode", "{\"ids\":[3]}", 400, "unknown-action",
        "\"explode\" is not an action on batches (pause, resume, abort or priority)"),
    post("/api/v1/batches/3/priority", "{\"priority\":3}", 400, "bad-priority",
        "3: the priority is a whole number from -2 (lowest) to 2 (highest)"),
    post("/api/v1/batches/3/priority", "{}", 400, "bad-priority",
        "no \"priority\": the priority is a whole number from -2 (lowest) to 2 (highest)"),
    post("/api/v1/nodes/3/priority", "{\"priority\":\"1\"}", 400, "bad-priority",
        "\"1\": the priority is a whole number from -2 (lowest) to 2 (highest)"),
    post("/api/v1/nodes/3/priority", "{\"priority\":1.5}", 400, "bad-priority",
        "1.5: the priority is a whole number from -2 (lowest) to 2 (highest)"),
    post("/api/v1/batches/3/pause", "{", 400, "bad-json", "the body is not JSON: * Line 1, Column 2"),
    post("/api/v1/batches/3/pause", "[]", 400, "bad-json", "the body is not a JSON object"),
    post("/api/v1/batches/pause", "{\"ids\":[]}", 400, "bad-json",
        "\"ids\" must be a list of one or more ids"),
    post("/api/v1/batches/pause", "{}", 400, "bad-json", "\"ids\" must be a list of one or more ids"),
    post("/api/v1/batches/pause", "{\"ids\":[\"3\"]}", 400, "bad-id",
        "\"3\" is not an unsigned 32-bit number"),
    post("/api/v1/batches/pause", "{\"ids\":[4294967296]}", 400, "bad-id",
        "4294967296 is not an unsigned 32-bit number"),
    post("/api/v1/batches/pause", "{\"ids\":[-1]}", 400, "bad-id", "-1 is not an unsigned 32-bit number"),
    post("/api/v1/batches/pause", ids(1001), 400, "too-many-ids", "1001 ids; at most 1000"),
    post("/api/v1/batches/pause", "{\"ids\":[" + std::string(70000, ' ') + "]}", 400, "body-too-large",
        "more than 65536 bytes"),
    post("/api/v1/batches/99999/pause", "{}", 404, "unknown-batch", "the farm has no batch 99999"),
    post("/api/v1/nodes/99999/stop", "{}", 404, "unknown-node", "the farm has no node 99999"),
    Call {"POST", "/api/v1/batches/4/pause", "a=b", "application/x-www-form-urlencoded", {}, 415,
        "unsupported-media-type", "Content-Type is \"application/x-www-form-urlencoded\""},
    Call {"POST", "/api/v1/batches/4/pause", "{}", "text/plain", {}, 415, "unsupported-media-type",
        "Content-Type is \"text/plain\""},
    Call {"POST", "/api/v1/batches/4/pause", "{}", "application/json", {{"Origin", "http://evil.example"}},
        403, "cross-origin", "Origin http://evil.example is not http://127.0.0.1:PORT"},
    Call {"POST", "/api/v1/batches/4/pause", "{}", "application/json", {{"Sec-Fetch-Site", "cross-site"}},
        403, "cross-origin", "Sec-Fetch-Site is cross-site"}};

INSTANTIATE_TEST_SUITE_P(Routes, WebApiTest, ::testing::ValuesIn(Routes));
INSTANTIATE_TEST_SUITE_P(BadInput, WebApiTest, ::testing::ValuesIn(BadInput));

// Every operation the API's description names is called above: a template's
// {id} or {action} stands for any one path segment.
TEST(WebApiDescription, EveryOperationIsExercised)
{
    const Json::Value description
        = jsonFromText(readFile(std::string(KORVANE_WEB_SOURCE_DIR) + "/openapi.json"));
    ASSERT_TRUE(description.isObject());
    int operations = 0;
    for (const std::string& path : description["paths"].getMemberNames()) {
        const std::regex pattern(
            "^" + std::regex_replace(path, std::regex(R"(\{[a-z]+\})"), "[^/?]+") + "(\\?.*)?$");
        for (const std::string& method : description["paths"][path].getMemberNames()) {
            std::string upper = method;
            for (char& c : upper)
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            bool called = false;
            for (const std::vector<Call>* calls : {&Routes, &BadInput}) {
                for (const Call& call : *calls)
                    called = called || (call.method == upper && std::regex_match(call.path, pattern));
            }
            EXPECT_TRUE(called) << upper << " " << path;
            ++operations;
        }
    }
    EXPECT_EQ(operations, 16);
}

TEST_F(WebApiTest, TheDescriptionIsServedAsItIsKept)
{
    const httplib::Result served = s_web->client().Get("/api/v1/openapi.json");
    ASSERT_TRUE(served);
    EXPECT_EQ(served->body, readFile(std::string(KORVANE_WEB_SOURCE_DIR) + "/openapi.json"));
}

TEST_F(WebApiTest, PromtoolFindsNothingToSayAboutTheMetrics)
{
    const httplib::Result metrics = s_web->client().Get("/metrics");
    ASSERT_TRUE(metrics);
    TempDirectory dir;
    ASSERT_TRUE(dir.writeFile("metrics.txt", metrics->body));
    std::string output;
    EXPECT_EQ(runCommand("promtool check metrics < " + dir.path("metrics.txt"), output), 0) << output;
    EXPECT_EQ(output, "");
    for (const char* series : {"\nkorvane_web_streams_open ", "\nkorvane_web_events_sent_total ",
             "\nkorvane_web_events_sent_bytes_total ", "\nkorvane_web_stream_resyncs_total 0\n",
             "\nkorvane_web_actions_total{result=\"forbidden\"} 0\n",
             "\nkorvane_web_reading_duration_seconds ", "\nkorvane_web_farm_up 1\n"})
        EXPECT_NE(metrics->body.find(series), std::string::npos) << series;
}
