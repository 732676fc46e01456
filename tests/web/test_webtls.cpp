#include <gtest/gtest.h>

#include "certificates.h"
#include "curlcall.h"
#include "passwords.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "webprocess.h"

// korvane-web behind TLS and basic authentication from a web configuration
// file, with certificates made here by openssl, checked with curl.
namespace {

class WebTlsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_certificates.makeCa("ca") && m_certificates.makeSigned("server", "ca", "serverAuth"))
            << m_certificates.output();
        m_dir.writeFile("web.yml",
            "tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\nbasic_auth_users:\n  "
            "alice: "
                + SecretHash + "\n  victor: " + SecretHash + "\n");
        m_web = std::make_unique<WebProcess>(webOptions(
            m_sim.port(), {"--web.config.file", m_dir.path("web.yml"), "--web.operators", "alice"}));
        ASSERT_GT(m_web->port(), 0) << m_web->process().err();
    }

    std::string url(const std::string& path, const std::string& scheme = "https") const
    {
        return scheme + "://127.0.0.1:" + std::to_string(m_web->port()) + path;
    }

    std::string ca() const { return "--cacert " + m_dir.path("ca.crt") + " "; }

    TempDirectory m_dir;
    Certificates m_certificates {m_dir};
    SimProcess m_sim {{"--seed", "1", "--speed", "0"}};
    std::unique_ptr<WebProcess> m_web;
};

} // namespace

TEST_F(WebTlsTest, UsersSignInOverTlsAndTheHeadersSayStayOnIt)
{
    const CurlResult alice = curl(m_dir, ca() + "-u alice:secret " + url("/api/v1/whoami"));
    EXPECT_EQ(alice.status, "200") << alice.errors;
    EXPECT_EQ(alice.body, R"({"role":"operator","user":"alice"})");
    EXPECT_NE(alice.headers.find("\r\nStrict-Transport-Security: max-age=31536000\r\n"), std::string::npos)
        << alice.headers;
    EXPECT_NE(alice.headers.find("\r\nContent-Security-Policy: default-src 'self'; "), std::string::npos);
    const CurlResult victor = curl(m_dir, ca() + "-u victor:secret " + url("/api/v1/whoami"));
    EXPECT_EQ(victor.body, R"({"role":"viewer","user":"victor"})");

    const CurlResult none = curl(m_dir, ca() + url("/api/v1/snapshot"));
    EXPECT_EQ(none.status, "401");
    EXPECT_NE(none.headers.find("\r\nWWW-Authenticate: Basic realm=\"korvane-web\", charset=\"UTF-8\"\r\n"),
        std::string::npos)
        << none.headers;
    const CurlResult wrong = curl(m_dir, ca() + "-u alice:wrong " + url("/api/v1/snapshot"));
    EXPECT_EQ(wrong.status, "401");
}

TEST_F(WebTlsTest, PlainHttpAndAnUnknownCaGetNothing)
{
    const CurlResult plain = curl(m_dir, "-u alice:secret " + url("/api/v1/whoami", "http"));
    EXPECT_EQ(plain.status, "000");
    EXPECT_EQ(plain.body, "");
    const CurlResult unknownCa = curl(m_dir, "-u alice:secret " + url("/api/v1/whoami"));
    EXPECT_EQ(unknownCa.status, "000");
    EXPECT_NE(unknownCa.exitCode, 0);
}

TEST_F(WebTlsTest, EventsAndActionsOverTls)
{
    // curl reads the stream until its time is up: a snapshot first.
    const CurlResult events = curl(m_dir, ca() + "-N --max-time 2 -u victor:secret " + url("/api/v1/events"));
    EXPECT_EQ(events.status, "200");
    EXPECT_EQ(events.body.rfind("event: snapshot\nid: ", 0), 0u) << events.body.substr(0, 200);

    const std::string post = "-X POST -H 'Content-Type: application/json' -d '{}' ";
    const CurlResult refused
        = curl(m_dir, ca() + post + "-u victor:secret " + url("/api/v1/batches/4/pause"));
    EXPECT_EQ(refused.status, "403");
    EXPECT_EQ(refused.body,
        R"({"detail":"victor is a viewer","status":403,"title":"Only operators may act on the farm",)"
        R"("type":"urn:korvane-web:problem:forbidden"})");
    const CurlResult paused = curl(m_dir, ca() + post + "-u alice:secret " + url("/api/v1/batches/4/pause"));
    EXPECT_EQ(paused.status, "200");
    EXPECT_EQ(paused.body, R"({"action":"pause","results":[{"id":4,"result":"accepted"}]})");
    // A browser's page from another origin sends its Origin: refused.
    const CurlResult crossSite = curl(m_dir,
        ca() + post + "-H 'Origin: https://evil.example' -u alice:secret " + url("/api/v1/batches/4/resume"));
    EXPECT_EQ(crossSite.status, "403");
    const CurlResult sameSite = curl(m_dir,
        ca() + post + "-H 'Origin: " + url("") + "' -u alice:secret " + url("/api/v1/batches/4/resume"));
    EXPECT_EQ(sameSite.status, "200") << sameSite.body;
}
