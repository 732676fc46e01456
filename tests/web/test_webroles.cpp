#include <algorithm>
#include <csignal>
#include <cstdio>
#include <regex>
#include <thread>

#include <gtest/gtest.h>

#include "jsontext.h"
#include "passwords.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "webprocess.h"

using namespace std::chrono_literals;

// Roles, same-origin state changes and the audit trail of korvane-web, with
// basic-auth users from a web configuration file, against the simulator.
namespace {

// The audit file's lines, each with its time checked and replaced by "T".
std::vector<std::string> auditLines(const std::string& file)
{
    static const std::regex Time(R"("time":"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z")");
    std::vector<std::string> lines;
    std::istringstream in(readFile(file));
    std::string line;
    while (std::getline(in, line)) {
        EXPECT_TRUE(std::regex_search(line, Time)) << line;
        lines.push_back(std::regex_replace(line, Time, "\"time\":\"T\""));
    }
    return lines;
}

class WebRolesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.writeFile(
            "web.yml", "basic_auth_users:\n  alice: " + SecretHash + "\n  victor: " + SecretHash + "\n"));
        m_web = std::make_unique<WebProcess>(webOptions(m_sim.port(),
            {"--web.config.file", m_dir.path("web.yml"), "--web.operators", "alice", "--audit.file",
                m_dir.path("audit.log")}));
        ASSERT_GT(m_web->port(), 0) << m_web->process().err();
        for (int i = 0; i < 100 && batchStatus(4).empty(); ++i)
            std::this_thread::sleep_for(50ms);
    }

    httplib::Result as(const std::string& user, const std::string& path, const std::string& body = "{}",
        const httplib::Headers& extra = {})
    {
        httplib::Headers headers = {{"Origin", "http://127.0.0.1:" + std::to_string(m_web->port())}};
        for (const auto& header : extra)
            headers.erase(header.first);
        headers.insert(extra.begin(), extra.end());
        httplib::Client client = m_web->client();
        client.set_basic_auth(user.c_str(), "secret");
        return client.Post(path.c_str(), headers, body, "application/json");
    }

    // The batch's status word in the program's last reading.
    std::string batchStatus(std::uint32_t id)
    {
        httplib::Client client = m_web->client();
        client.set_basic_auth("victor", "secret");
        const httplib::Result result = client.Get("/api/v1/snapshot");
        if (!result)
            return {};
        const Json::Value snapshot = jsonFromText(result->body);
        for (const Json::Value& batch : snapshot["batches"]) {
            if (batch["batch_id"].asUInt() == id)
                return batch["status"].asString();
        }
        return {};
    }

    // Waits for the next readings to show the batch's status.
    std::string settledStatus(std::uint32_t id)
    {
        std::this_thread::sleep_for(1500ms); // one interval and a reading
        return batchStatus(id);
    }

    TempDirectory m_dir;
    SimProcess m_sim {{"--seed", "1", "--speed", "0"}};
    std::unique_ptr<WebProcess> m_web;
};

} // namespace

TEST_F(WebRolesTest, EveryRequestAsksForAUser)
{
    httplib::Client client = m_web->client();
    for (const char* path : {"/api/v1/snapshot", "/api/v1/events", "/api/v1/whoami", "/metrics"}) {
        const httplib::Result none = client.Get(path);
        ASSERT_TRUE(none);
        EXPECT_EQ(none->status, 401) << path;
        EXPECT_EQ(
            none->get_header_value("WWW-Authenticate"), "Basic realm=\"korvane-web\", charset=\"UTF-8\"");
        EXPECT_EQ(
            jsonFromText(none->body)["detail"].asString(), "this server asks for a user name and password");
    }
    client.set_basic_auth("alice", "wrong");
    const httplib::Result wrong = client.Get("/api/v1/whoami");
    EXPECT_EQ(wrong->status, 401);
    EXPECT_EQ(jsonFromText(wrong->body)["detail"].asString(), "the user name or the password is wrong");

    client.set_basic_auth("alice", "secret");
    EXPECT_EQ(client.Get("/api/v1/whoami")->body, R"({"role":"operator","user":"alice"})");
    client.set_basic_auth("victor", "secret");
    EXPECT_EQ(client.Get("/api/v1/whoami")->body, R"({"role":"viewer","user":"victor"})");
}

TEST_F(WebRolesTest, AViewerIsRefusedOnEveryActionAndEachRefusalIsAudited)
{
    const std::vector<std::pair<std::string, std::string>> actions
        = {{"/api/v1/batches/4/pause", "{}"}, {"/api/v1/batches/4/resume", "{}"},
            {"/api/v1/batches/4/abort", "{}"}, {"/api/v1/batches/4/priority", R"({"priority":2})"},
            {"/api/v1/nodes/1/pause", "{}"}, {"/api/v1/nodes/1/resume", "{}"}, {"/api/v1/nodes/1/stop", "{}"},
            {"/api/v1/nodes/1/priority", R"({"priority":-1})"}, {"/api/v1/batches/abort", R"({"ids":[4,5]})"},
            {"/api/v1/nodes/stop", R"({"ids":[1,2]})"}};
    for (const auto& [path, body] : actions) {
        const httplib::Result refused = as("victor", path, body);
        ASSERT_TRUE(refused);
        EXPECT_EQ(refused->status, 403) << path;
        EXPECT_EQ(jsonFromText(refused->body)["type"].asString(), "urn:korvane-web:problem:forbidden");
        EXPECT_EQ(jsonFromText(refused->body)["detail"].asString(), "victor is a viewer");
    }
    const std::string line = R"(,"reason":"victor is a viewer","remote":"127.0.0.1","result":"forbidden",)";
    EXPECT_EQ(auditLines(m_dir.path("audit.log")),
        std::vector<std::string>({R"({"action":"pause","ids":[4])" + line
                + R"("target":"batches","time":"T","user":"victor"})",
            R"({"action":"resume","ids":[4])" + line + R"("target":"batches","time":"T","user":"victor"})",
            R"({"action":"abort","ids":[4])" + line + R"("target":"batches","time":"T","user":"victor"})",
            R"({"action":"priority","ids":[4],"priority":2)" + line
                + R"("target":"batches","time":"T","user":"victor"})",
            R"({"action":"pause","ids":[1])" + line + R"("target":"nodes","time":"T","user":"victor"})",
            R"({"action":"resume","ids":[1])" + line + R"("target":"nodes","time":"T","user":"victor"})",
            R"({"action":"stop","ids":[1])" + line + R"("target":"nodes","time":"T","user":"victor"})",
            R"({"action":"priority","ids":[1],"priority":-1)" + line
                + R"("target":"nodes","time":"T","user":"victor"})",
            R"({"action":"abort","ids":[4,5])" + line + R"("target":"batches","time":"T","user":"victor"})",
            R"({"action":"stop","ids":[1,2])" + line + R"("target":"nodes","time":"T","user":"victor"})"}));
    EXPECT_EQ(settledStatus(4), "pending");
    // The log carries the same lines.
    m_web->process().signal(SIGTERM);
    m_web->process().wait();
    EXPECT_NE(m_web->process().err().find("korvane-web: audit {\"action\":\"stop\",\"ids\":[1,2],"),
        std::string::npos);
}

TEST_F(WebRolesTest, AnOperatorsActionIsAuditedWithTheServersResult)
{
    const httplib::Result paused = as("alice", "/api/v1/batches/4/pause");
    ASSERT_TRUE(paused);
    EXPECT_EQ(paused->status, 200);
    EXPECT_EQ(paused->body, R"({"action":"pause","results":[{"id":4,"result":"accepted"}]})");
    EXPECT_EQ(settledStatus(4), "paused");
    // An id the farm does not know is not sent.
    const httplib::Result some = as("alice", "/api/v1/batches/resume", R"({"ids":[4,99999]})");
    EXPECT_EQ(some->body,
        R"({"action":"resume","results":[{"id":4,"result":"accepted"},)"
        R"({"id":99999,"reason":"the farm has no batch 99999","result":"refused"}]})");
    EXPECT_EQ(settledStatus(4), "pending");
    EXPECT_EQ(auditLines(m_dir.path("audit.log")),
        std::vector<std::string>({R"({"action":"pause","ids":[4],"remote":"127.0.0.1","result":"accepted",)"
                                  R"("target":"batches","time":"T","user":"alice"})",
            R"({"action":"resume","ids":[4,99999],"remote":"127.0.0.1","result":"mixed","results":[{"id":4,)"
            R"("result":"accepted"},{"id":99999,"reason":"the farm has no batch 99999","result":"refused"}],)"
            R"("target":"batches","time":"T","user":"alice"})"}));
}

TEST_F(WebRolesTest, AnotherSitesPostAndAFormPostChangeNothing)
{
    const httplib::Result crossSite
        = as("alice", "/api/v1/batches/4/pause", "{}", {{"Origin", "https://evil.example"}});
    EXPECT_EQ(crossSite->status, 403);
    EXPECT_EQ(jsonFromText(crossSite->body)["type"].asString(), "urn:korvane-web:problem:cross-origin");
    httplib::Client client = m_web->client();
    client.set_basic_auth("alice", "secret");
    const httplib::Result form = client.Post("/api/v1/batches/4/pause",
        {{"Origin", "http://127.0.0.1:" + std::to_string(m_web->port())}}, "x=1",
        "application/x-www-form-urlencoded");
    EXPECT_EQ(form->status, 415);
    const httplib::Result plain = client.Post("/api/v1/batches/4/pause", {}, "{}", "text/plain");
    EXPECT_EQ(plain->status, 415);
    EXPECT_EQ(settledStatus(4), "pending");
    EXPECT_EQ(auditLines(m_dir.path("audit.log")),
        std::vector<
            std::string>({R"({"action":"pause","ids":[4],"reason":"Origin https://evil.example is not )"
                          R"(http://127.0.0.1:)"
            + std::to_string(m_web->port())
            + R"(","remote":"127.0.0.1","result":"cross-origin","target":"batches","time":"T","user":"alice"})"}));
}

TEST_F(WebRolesTest, SighupReopensTheAuditFile)
{
    EXPECT_EQ(as("alice", "/api/v1/batches/4/pause")->status, 200);
    ASSERT_EQ(std::rename(m_dir.path("audit.log").c_str(), m_dir.path("audit.log.1").c_str()), 0);
    m_web->process().signal(SIGHUP);
    // The signal is taken on the program's own thread: wait until the new file is there.
    EXPECT_TRUE(waitForFile(m_dir.path("audit.log"), 5000));
    EXPECT_EQ(as("alice", "/api/v1/batches/4/resume")->status, 200);
    EXPECT_EQ(auditLines(m_dir.path("audit.log.1")).size(), 1u);
    const std::vector<std::string> lines = auditLines(m_dir.path("audit.log"));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].rfind(R"({"action":"resume","ids":[4],)", 0), 0u) << lines[0];
}

TEST_F(WebRolesTest, AnActionWhoseLineCannotBeWrittenIsRefused)
{
    // Root writes any file: the audit file's place taken by a folder makes it unwritable.
    ASSERT_EQ(std::remove(m_dir.path("audit.log").c_str()), 0);
    ASSERT_TRUE(m_dir.makeDirectory("audit.log"));
    m_web->process().signal(SIGHUP);
    std::string err;
    for (int i = 0; i < 100 && err.find("audit.log: Is a directory") == std::string::npos; ++i) {
        std::this_thread::sleep_for(50ms);
        err = m_web->process().err();
    }
    const httplib::Result refused = as("alice", "/api/v1/batches/4/pause");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 503);
    EXPECT_EQ(jsonFromText(refused->body)["type"].asString(), "urn:korvane-web:problem:audit-unavailable");
    EXPECT_EQ(jsonFromText(refused->body)["detail"].asString(),
        "cannot open the audit file " + m_dir.path("audit.log") + ": Is a directory");
    EXPECT_EQ(settledStatus(4), "pending");
}

TEST(WebAuditDisk, AFullDiskRefusesTheActionAndSaysSo)
{
    // A small file system of the test's own, filled up.
    TempDirectory dir;
    std::string output;
    ASSERT_EQ(runCommand("mount -t tmpfs -o size=1m korvane-audit " + dir.path(), output), 0) << output;
    struct Unmount
    {
        const TempDirectory& dir;
        ~Unmount()
        {
            std::string ignored;
            runCommand("umount " + dir.path(), ignored);
        }
    } unmount {dir};
    SimProcess sim({"--seed", "1", "--speed", "0"});
    WebProcess web(webOptions(sim.port(), {"--audit.file", dir.path("audit.log")}));
    ASSERT_GT(web.port(), 0) << web.process().err();
    for (int i = 0;
         i < 100 && web.client().Get("/api/v1/snapshot")->body.find("\"batch_id\":4,") == std::string::npos;
         ++i)
        std::this_thread::sleep_for(50ms);
    ASSERT_EQ(web.post("/api/v1/batches/4/pause")->status, 200);
    runCommand("dd if=/dev/zero of=" + dir.path("filler") + " bs=4k 2>/dev/null", output);
    const httplib::Result refused = web.post("/api/v1/batches/4/resume");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 503);
    const Json::Value problem = jsonFromText(refused->body);
    EXPECT_EQ(problem["type"].asString(), "urn:korvane-web:problem:audit-unavailable");
    EXPECT_EQ(problem["detail"].asString(),
        "the disk of the audit file " + dir.path("audit.log") + " is full (0 bytes free)");
    // Room again: actions go on.
    std::remove(dir.path("filler").c_str());
    EXPECT_EQ(web.post("/api/v1/batches/4/resume")->status, 200);
    const std::string audit = readFile(dir.path("audit.log"));
    EXPECT_EQ(std::count(audit.begin(), audit.end(), '\n'), 2) << audit;
}

TEST(WebCommands, ACommandTheServerDoesNotAnswerIsRefusedByTheDeadlineAndAudited)
{
    // The server answers the first reading's two requests, then goes quiet.
    SimProcess sim({"--seed", "1", "--speed", "0", "--mute-after", "2"});
    WebProcess web(webOptions(sim.port(), {"--interval", "600", "--server-timeout", "1"}));
    for (int i = 0;
         i < 100 && web.client().Get("/api/v1/snapshot")->body.find("\"batch_id\":4,") == std::string::npos;
         ++i)
        std::this_thread::sleep_for(50ms);
    const auto sent = std::chrono::steady_clock::now();
    const httplib::Result refused = web.post("/api/v1/batches/4/pause");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 504);
    const Json::Value problem = jsonFromText(refused->body);
    EXPECT_EQ(problem["type"].asString(), "urn:korvane-web:problem:timed-out");
    EXPECT_EQ(problem["detail"].asString(), "no reply from " + sim.address() + " to pauseBatch within 1.0 s");
    EXPECT_LT(std::chrono::steady_clock::now() - sent, 3s);
    web.process().signal(SIGTERM);
    EXPECT_EQ(web.process().wait(), 0);
    EXPECT_NE(
        web.process().err().find(R"(korvane-web: audit {"action":"pause","ids":[4],"reason":"no reply from )"
            + sim.address() + R"( to pauseBatch within 1.0 s","remote":"127.0.0.1","result":"timed out",)"),
        std::string::npos)
        << web.process().err();
}
