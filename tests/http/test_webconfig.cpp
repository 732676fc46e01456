#include <openssl/ssl.h>

#include <gtest/gtest.h>

#include "tempdirectory.h"
#include "webconfig.h"

// The web configuration file: what is read, and the key and line of every
// value that is refused.
namespace {

const std::string Hash = "$2b$04$KQfAhZcFLLhYMSJVzjJ1NegSWEEkEwXFZo6FUY/9zPm/mJJQGrAiK";

std::string refused(const std::string& text)
{
    WebConfig config;
    std::string error;
    EXPECT_FALSE(parseWebConfig(text, "web.yml", "/etc/korvane", config, error));
    return error;
}

WebConfig parsed(const std::string& text)
{
    WebConfig config;
    std::string error;
    EXPECT_TRUE(parseWebConfig(text, "web.yml", "/etc/korvane", config, error)) << error;
    return config;
}

} // namespace

TEST(WebConfig, AnEmptyFileIsPlainHttpForEveryone)
{
    for (const char* text : {"", "# nothing\n", "{}\n"}) {
        const WebConfig config = parsed(text);
        EXPECT_FALSE(config.tls);
        EXPECT_TRUE(config.users.empty());
    }
}

TEST(WebConfig, TlsAndUsers)
{
    const WebConfig config = parsed("tls_server_config:\n"
                                    "  cert_file: server.crt\n"
                                    "  key_file: /keys/server.key\n"
                                    "  client_auth_type: RequireAndVerifyClientCert\n"
                                    "  client_ca_file: ca.crt\n"
                                    "  min_version: TLS13\n"
                                    "http_server_config:\n"
                                    "  http2: true\n"
                                    "  headers:\n"
                                    "    X-Frame-Options: deny\n"
                                    "basic_auth_users:\n"
                                    "  prometheus: "
        + Hash + "\n  grafana: '" + Hash + "'\n");
    EXPECT_TRUE(config.tls);
    EXPECT_EQ(config.certFile, "/etc/korvane/server.crt");
    EXPECT_EQ(config.keyFile, "/keys/server.key");
    EXPECT_EQ(config.clientCaFile, "/etc/korvane/ca.crt");
    EXPECT_EQ(config.clientAuth, WebConfig::ClientAuth::RequireAndVerifyClientCert);
    EXPECT_EQ(config.minVersion, TLS1_3_VERSION);
    EXPECT_EQ(config.maxVersion, 0);
    EXPECT_EQ(config.certPlace.line, 2);
    EXPECT_EQ(config.certPlace.key, "tls_server_config.cert_file");
    EXPECT_EQ(config.keyPlace.line, 3);
    EXPECT_EQ(config.headers.at("X-Frame-Options"), "deny");
    ASSERT_EQ(config.users.size(), 2u);
    EXPECT_EQ(config.users.at("prometheus"), Hash);
    EXPECT_EQ(config.users.at("grafana"), Hash);
    // TLS 1.2 unless the file says otherwise, as for the other exporters.
    EXPECT_EQ(parsed("tls_server_config:\n  cert_file: a\n  key_file: b\n").minVersion, TLS1_2_VERSION);
}

TEST(WebConfig, RefusedValuesNameTheKeyAndTheLine)
{
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n  key_file: b\n  min_version: TLS14\n"),
        "web.yml:4: tls_server_config.min_version: not TLS10, TLS11, TLS12 or TLS13: TLS14");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n  key_file: b\n  client_auth_type: Always\n"),
        "web.yml:4: tls_server_config.client_auth_type: not NoClientCert, RequestClientCert, "
        "RequireAnyClientCert, VerifyClientCertIfGiven or RequireAndVerifyClientCert: Always");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n  key_file: b\n  cert_flie: c\n"),
        "web.yml:4: tls_server_config.cert_flie: unknown key");
    EXPECT_EQ(refused("# users\n\nbasic_auth_user:\n  p: x\n"), "web.yml:3: basic_auth_user: unknown key");
    EXPECT_EQ(refused("tls_server_config:\n  key_file: b\n"),
        "web.yml:1: tls_server_config.cert_file: missing; TLS needs a certificate");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n"),
        "web.yml:1: tls_server_config.key_file: missing; TLS needs the certificate's key");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n  key_file: b\n"
                      "  client_auth_type: RequireAndVerifyClientCert\n"),
        "web.yml:1: tls_server_config.client_ca_file: missing; client_auth_type verifies client certificates "
        "against it");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n  key_file: b\n  client_ca_file: c\n"),
        "web.yml:4: tls_server_config.client_ca_file: given, but client_auth_type does not verify client "
        "certificates");
    EXPECT_EQ(
        refused(
            "tls_server_config:\n  cert_file: a\n  key_file: b\n  cipher_suites: [TLS_AES_128_GCM_SHA256]\n"),
        "web.yml:4: tls_server_config.cipher_suites: not supported here; OpenSSL's defaults "
        "apply");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: [a, b]\n  key_file: b\n"),
        "web.yml:2: tls_server_config.cert_file: not a single value");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n  key_file: b\n  min_version: TLS13\n"
                      "  max_version: TLS12\n"),
        "web.yml:1: tls_server_config.max_version: below min_version");
    EXPECT_EQ(refused("http_server_config:\n  http2: maybe\n"),
        "web.yml:2: http_server_config.http2: not true or false: maybe");
    EXPECT_EQ(refused("basic_auth_users:\n  prometheus: secret\n"),
        "web.yml:2: basic_auth_users.prometheus: not a bcrypt hash ($2b$, $2y$ or $2a$)");
    // A hash in the SHA-512 method crypt() knows is still not bcrypt.
    EXPECT_EQ(refused("basic_auth_users:\n  prometheus: $6$salt$abc\n"),
        "web.yml:2: basic_auth_users.prometheus: not a bcrypt hash ($2b$, $2y$ or $2a$)");
    EXPECT_EQ(refused("basic_auth_users:\n  prometheus: " + Hash.substr(0, 40) + "\n"),
        "web.yml:2: basic_auth_users.prometheus: not a bcrypt hash ($2b$, $2y$ or $2a$)");
    EXPECT_EQ(refused("basic_auth_users: [prometheus]\n"),
        "web.yml:1: basic_auth_users: not a map of keys and values");
    EXPECT_EQ(refused("- tls\n"), "web.yml:1: (top): not a map of keys and values");
    EXPECT_EQ(refused("tls_server_config:\n  cert_file: a\n key_file: b\n"),
        "web.yml:3: not YAML: end of map not found");
}

TEST(WebConfig, AFileThatCannotBeRead)
{
    TempDirectory dir;
    WebConfig config;
    std::string error;
    EXPECT_FALSE(readWebConfig(dir.path("absent.yml"), config, error));
    EXPECT_EQ(error, "cannot read the web configuration file " + dir.path("absent.yml"));
    // Relative names are taken from the file's own folder.
    const std::string file = dir.path("web.yml");
    dir.writeFile("web.yml", "tls_server_config:\n  cert_file: a.crt\n  key_file: k/a.key\n");
    ASSERT_TRUE(readWebConfig(file, config, error)) << error;
    EXPECT_EQ(config.certFile, dir.path("a.crt"));
    EXPECT_EQ(config.keyFile, dir.path("k/a.key"));
}
