#include <chrono>
#include <thread>

#include <json/value.h>

#include <gtest/gtest.h>

#include "certificates.h"
#include "childprocess.h"
#include "curlcall.h"
#include "passwords.h"
#include "prometheusserver.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace std::chrono_literals;

// korvane-exporter with a web configuration file: TLS with certificates made
// here by openssl, client certificates, basic authentication, checked with
// curl, Prometheus' promtool and a real Prometheus server, all on loopback.
namespace {

const std::string Exporter = KORVANE_EXPORTER_PROGRAM;
const std::string SourceDir = KORVANE_EXPORTER_SOURCE_DIR;

// The simulator and the exporter with the web configuration given, on loopback.
class WatchedFarm final
{
public:
    explicit WatchedFarm(const std::string& webConfig)
        : m_sim({"--seed", "1"})
        , m_simPort(m_sim.port())
        , m_exporter(Exporter,
              {"--web.listen-address", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(m_simPort),
                  "--web.config.file", webConfig})
        , m_port(m_exporter.listeningPort())
    {
    }
    ~WatchedFarm()
    {
        m_exporter.signal(SIGTERM);
        EXPECT_EQ(m_exporter.wait(), 0) << m_exporter.err();
        m_sim.stop();
    }
    WatchedFarm(const WatchedFarm&) = delete;
    WatchedFarm& operator=(const WatchedFarm&) = delete;

    int port() const { return m_port; }
    std::string url(const std::string& scheme, const std::string& host = "127.0.0.1") const
    {
        return scheme + "://" + host + ":" + std::to_string(m_port) + "/metrics";
    }
    std::string err() { return m_exporter.err(); }

private:
    SimProcess m_sim;
    int m_simPort;
    ChildProcess m_exporter;
    int m_port;
};

} // namespace

TEST(ExporterTls, TheRightCaSucceedsAndPlainHttpFails)
{
    TempDirectory dir;
    Certificates certificates(dir);
    ASSERT_TRUE(certificates.makeCa("ca") && certificates.makeSigned("server", "ca", "serverAuth"))
        << certificates.output();
    const std::string config = dir.path("web.yml");
    dir.writeFile("web.yml", "tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\n");
    WatchedFarm farm(config);
    ASSERT_GT(farm.port(), 0) << farm.err();

    const CurlResult good = curl(dir, "--cacert " + dir.path("ca.crt") + " " + farm.url("https"));
    EXPECT_EQ(good.exitCode, 0) << good.errors;
    EXPECT_EQ(good.status, "200");
    EXPECT_NE(good.body.find("\nkorvane_up 1\n"), std::string::npos);

    // By name too: the certificate holds localhost.
    EXPECT_EQ(
        curl(dir, "--cacert " + dir.path("ca.crt") + " " + farm.url("https", "localhost")).status, "200");

    // Without the CA curl does not trust the certificate (60: peer certificate cannot be authenticated).
    const CurlResult untrusted = curl(dir, farm.url("https"));
    EXPECT_EQ(untrusted.exitCode, 60) << untrusted.errors;
    EXPECT_EQ(untrusted.status, "000");

    // Plain HTTP to the TLS port gets no HTTP answer (52: empty reply).
    const CurlResult plain = curl(dir, farm.url("http"));
    EXPECT_EQ(plain.exitCode, 52) << plain.errors;
    EXPECT_EQ(plain.status, "000");
    EXPECT_EQ(plain.body, "");

    // TLS 1.1 is below the default minimum, TLS 1.2 (35: handshake failed).
    const CurlResult old
        = curl(dir, "--tls-max 1.1 --cacert " + dir.path("ca.crt") + " " + farm.url("https"));
    EXPECT_EQ(old.exitCode, 35) << old.errors;
}

TEST(ExporterTls, RequireAndVerifyClientCertRefusesAWrongCertificate)
{
    TempDirectory dir;
    Certificates certificates(dir);
    ASSERT_TRUE(certificates.makeCa("ca") && certificates.makeSigned("server", "ca", "serverAuth")
        && certificates.makeCa("clients") && certificates.makeSigned("prometheus", "clients", "clientAuth")
        && certificates.makeCa("stranger-ca")
        && certificates.makeSigned("stranger", "stranger-ca", "clientAuth"))
        << certificates.output();
    const std::string config = dir.path("web.yml");
    dir.writeFile("web.yml",
        "tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\n"
        "  client_auth_type: RequireAndVerifyClientCert\n  client_ca_file: clients.crt\n");
    WatchedFarm farm(config);
    ASSERT_GT(farm.port(), 0) << farm.err();
    const std::string ca = "--cacert " + dir.path("ca.crt") + " ";

    const CurlResult right = curl(dir,
        ca + "--cert " + dir.path("prometheus.crt") + " --key " + dir.path("prometheus.key") + " "
            + farm.url("https"));
    EXPECT_EQ(right.exitCode, 0) << right.errors;
    EXPECT_EQ(right.status, "200");
    EXPECT_NE(right.body.find("\nkorvane_up 1\n"), std::string::npos);

    const CurlResult wrong = curl(dir,
        ca + "--cert " + dir.path("stranger.crt") + " --key " + dir.path("stranger.key") + " "
            + farm.url("https"));
    EXPECT_NE(wrong.exitCode, 0);
    EXPECT_EQ(wrong.status, "000");
    EXPECT_EQ(wrong.body, "");

    const CurlResult none = curl(dir, ca + farm.url("https"));
    EXPECT_NE(none.exitCode, 0);
    EXPECT_EQ(none.status, "000");
}

TEST(ExporterTls, BasicAuthOverTls)
{
    TempDirectory dir;
    Certificates certificates(dir);
    ASSERT_TRUE(certificates.makeCa("ca") && certificates.makeSigned("server", "ca", "serverAuth"))
        << certificates.output();
    const std::string config = dir.path("web.yml");
    dir.writeFile("web.yml",
        "tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\n"
        "basic_auth_users:\n  prometheus: "
            + SecretHash + "\n");
    WatchedFarm farm(config);
    ASSERT_GT(farm.port(), 0) << farm.err();
    const std::string ca = "--cacert " + dir.path("ca.crt") + " ";

    const CurlResult none = curl(dir, ca + farm.url("https"));
    EXPECT_EQ(none.status, "401");
    EXPECT_NE(none.headers.find("WWW-Authenticate: Basic realm=\"korvane-exporter\", charset=\"UTF-8\"\r\n"),
        std::string::npos)
        << none.headers;
    EXPECT_EQ(none.body, "Unauthorized\n");
    const CurlResult wrong = curl(dir, ca + "-u prometheus:wrong " + farm.url("https"));
    EXPECT_EQ(wrong.status, "401");
    EXPECT_EQ(wrong.body, "Unauthorized\n");
    const CurlResult right = curl(dir, ca + "-u prometheus:secret " + farm.url("https"));
    EXPECT_EQ(right.status, "200");
    EXPECT_NE(right.body.find("\nkorvane_up 1\n"), std::string::npos);
}

TEST(ExporterTls, ABadWebConfigurationEndsTheStartWithTwo)
{
    TempDirectory dir;
    Certificates certificates(dir);
    ASSERT_TRUE(certificates.makeCa("ca") && certificates.makeSigned("server", "ca", "serverAuth")
        && certificates.makeSigned("other", "ca", "serverAuth"))
        << certificates.output();
    const struct
    {
        const char* text;
        std::string message;
    } cases[] = {
        {"tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\n  min_version: TLS14\n",
            ":4: tls_server_config.min_version: not TLS10, TLS11, TLS12 or TLS13: TLS14"},
        {"tls_server_config:\n  cert_file: absent.crt\n  key_file: server.key\n",
            ":2: tls_server_config.cert_file: cannot read " + dir.path("absent.crt")},
        {"tls_server_config:\n  cert_file: server.crt\n  key_file: other.key\n",
            ":3: tls_server_config.key_file: not a PEM private key of cert_file: "},
        {"tls_server_config:\n  cert_file: server.key\n  key_file: server.key\n",
            ":2: tls_server_config.cert_file: not a PEM certificate: "},
        {"basic_auth_users:\n  prometheus: secret\n",
            ":2: basic_auth_users.prometheus: not a bcrypt hash ($2b$, $2y$ or $2a$)"},
    };
    for (const auto& bad : cases) {
        const std::string config = dir.path("web.yml");
        dir.writeFile("web.yml", bad.text);
        ChildProcess exporter(Exporter, {"--web.listen-address", "127.0.0.1:0", "--web.config.file", config});
        EXPECT_EQ(exporter.wait(), 2) << bad.text;
        EXPECT_EQ(exporter.out(), "");
        EXPECT_EQ(exporter.err().rfind("korvane-exporter: " + config + bad.message, 0), 0u) << exporter.err();
    }
    ChildProcess absent(Exporter, {"--web.config.file", dir.path("absent.yml")});
    EXPECT_EQ(absent.wait(), 2);
    EXPECT_EQ(absent.err(),
        "korvane-exporter: cannot read the web configuration file " + dir.path("absent.yml") + "\n");
}

TEST(ExporterTls, PromtoolAndTheExporterAcceptTheShippedExample)
{
    TempDirectory dir;
    Certificates certificates(dir);
    ASSERT_TRUE(certificates.makeCa("ca") && certificates.makeSigned("korvane-exporter", "ca", "serverAuth"))
        << certificates.output();
    std::string output;
    ASSERT_EQ(runCommand("cp " + SourceDir + "/web-config.yml " + dir.path(), output), 0) << output;
    const std::string config = dir.path("web-config.yml");
    EXPECT_EQ(runCommand("promtool check web-config " + config, output), 0) << output;
    EXPECT_EQ(output, config + " SUCCESS\n");

    WatchedFarm farm(config);
    ASSERT_GT(farm.port(), 0) << farm.err();
    const CurlResult right
        = curl(dir, "--cacert " + dir.path("ca.crt") + " -u prometheus:change-me " + farm.url("https"));
    EXPECT_EQ(right.status, "200");
    EXPECT_NE(right.body.find("\nkorvane_up 1\n"), std::string::npos);

    // The same checker refuses a file with a wrong key, so its SUCCESS means something.
    const std::string wrong = dir.path("wrong.yml");
    dir.writeFile("wrong.yml", "tls_server_config:\n  cert_file: korvane-exporter.crt\n  key_file: ca.key\n");
    EXPECT_NE(runCommand("promtool check web-config " + wrong, output), 0);
}

TEST(ExporterTls, PrometheusScrapesThroughTlsClientCertificateAndBasicAuth)
{
    TempDirectory dir;
    Certificates certificates(dir);
    ASSERT_TRUE(certificates.makeCa("ca") && certificates.makeSigned("server", "ca", "serverAuth")
        && certificates.makeCa("clients") && certificates.makeSigned("prometheus", "clients", "clientAuth"))
        << certificates.output();
    const std::string config = dir.path("web.yml");
    dir.writeFile("web.yml",
        "tls_server_config:\n  cert_file: server.crt\n  key_file: server.key\n"
        "  client_auth_type: RequireAndVerifyClientCert\n  client_ca_file: clients.crt\n"
        "basic_auth_users:\n  prometheus: "
            + SecretHash + "\n");
    WatchedFarm farm(config);
    ASSERT_GT(farm.port(), 0) << farm.err();

    PrometheusServer prometheus(dir,
        "  - job_name: korvane\n    scheme: https\n"
        "    tls_config:\n      ca_file: "
            + dir.path("ca.crt") + "\n      cert_file: " + dir.path("prometheus.crt")
            + "\n      key_file: " + dir.path("prometheus.key")
            + "\n"
              "    basic_auth:\n      username: prometheus\n      password: secret\n"
              "    static_configs:\n      - targets: ['127.0.0.1:"
            + std::to_string(farm.port()) + "']\n");

    std::string exporterUp;
    for (int attempt = 0; attempt < 300 && exporterUp.empty(); ++attempt) {
        std::this_thread::sleep_for(200ms);
        const Json::Value result = prometheus.query("korvane_up");
        if (result.size() == 1)
            exporterUp = result[0]["value"][1].asString();
    }
    EXPECT_EQ(exporterUp, "1") << prometheus.err();
    EXPECT_EQ(prometheus.stop(), 0);
}
