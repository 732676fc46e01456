#include "webconfig.h"

#include <crypt.h>
#include <fstream>
#include <openssl/ssl.h>
#include <sstream>
#include <yaml-cpp/yaml.h>

namespace {

// A failure that names the key and its line.
struct ConfigError
{
    int line;
    std::string key;
    std::string reason;
};

int lineOf(const YAML::Node& node)
{
    return node.Mark().line + 1;
}

std::string scalar(const YAML::Node& value, const std::string& key)
{
    if (!value.IsScalar())
        throw ConfigError {lineOf(value), key, "not a single value"};
    return value.Scalar();
}

bool boolean(const YAML::Node& value, const std::string& key)
{
    const std::string text = scalar(value, key);
    if (text == "true")
        return true;
    if (text == "false")
        return false;
    throw ConfigError {lineOf(value), key, "not true or false: " + text};
}

std::string inFolder(const std::string& folder, const std::string& file)
{
    if (file.empty() || file.front() == '/' || folder.empty())
        return file;
    return folder + "/" + file;
}

int tlsVersion(const YAML::Node& value, const std::string& key)
{
    static const struct
    {
        const char* name;
        int version;
    } Versions[] = {{"TLS10", TLS1_VERSION}, {"TLS11", TLS1_1_VERSION}, {"TLS12", TLS1_2_VERSION},
        {"TLS13", TLS1_3_VERSION}};
    const std::string text = scalar(value, key);
    for (const auto& known : Versions) {
        if (text == known.name)
            return known.version;
    }
    throw ConfigError {lineOf(value), key, "not TLS10, TLS11, TLS12 or TLS13: " + text};
}

WebConfig::ClientAuth clientAuth(const YAML::Node& value, const std::string& key)
{
    using Auth = WebConfig::ClientAuth;
    static const struct
    {
        const char* name;
        Auth auth;
    } Types[] = {{"NoClientCert", Auth::NoClientCert}, {"RequestClientCert", Auth::RequestClientCert},
        {"RequireAnyClientCert", Auth::RequireAnyClientCert},
        {"VerifyClientCertIfGiven", Auth::VerifyClientCertIfGiven},
        {"RequireAndVerifyClientCert", Auth::RequireAndVerifyClientCert}};
    const std::string text = scalar(value, key);
    for (const auto& known : Types) {
        if (text == known.name)
            return known.auth;
    }
    throw ConfigError {lineOf(value), key,
        "not NoClientCert, RequestClientCert, RequireAnyClientCert, VerifyClientCertIfGiven or "
        "RequireAndVerifyClientCert: "
            + text};
}

void needMap(const YAML::Node& node, const std::string& key)
{
    if (!node.IsMap() && !node.IsNull())
        throw ConfigError {lineOf(node), key, "not a map of keys and values"};
}

void readTls(const YAML::Node& tls, const std::string& folder, WebConfig& config, int line)
{
    needMap(tls, "tls_server_config");
    config.tls = true;
    config.minVersion = TLS1_2_VERSION;
    for (const auto& entry : tls) {
        const std::string name = entry.first.Scalar();
        const std::string key = "tls_server_config." + name;
        const YAML::Node& value = entry.second;
        const int at = lineOf(entry.first);
        if (name == "cert_file") {
            config.certFile = inFolder(folder, scalar(value, key));
            config.certPlace = {key, at};
        } else if (name == "key_file") {
            config.keyFile = inFolder(folder, scalar(value, key));
            config.keyPlace = {key, at};
        } else if (name == "client_ca_file") {
            config.clientCaFile = inFolder(folder, scalar(value, key));
            config.clientCaPlace = {key, at};
        } else if (name == "client_auth_type") {
            config.clientAuth = clientAuth(value, key);
        } else if (name == "min_version") {
            config.minVersion = tlsVersion(value, key);
        } else if (name == "max_version") {
            config.maxVersion = tlsVersion(value, key);
        } else if (name == "prefer_server_cipher_suites") {
            config.preferServerCipherSuites = boolean(value, key);
        } else if (name == "cipher_suites" || name == "curve_preferences" || name == "client_allowed_sans") {
            throw ConfigError {at, key, "not supported here; OpenSSL's defaults apply"};
        } else {
            throw ConfigError {at, key, "unknown key"};
        }
    }
    if (config.certFile.empty())
        throw ConfigError {line, "tls_server_config.cert_file", "missing; TLS needs a certificate"};
    if (config.keyFile.empty())
        throw ConfigError {line, "tls_server_config.key_file", "missing; TLS needs the certificate's key"};
    const bool verifies = config.clientAuth == WebConfig::ClientAuth::VerifyClientCertIfGiven
        || config.clientAuth == WebConfig::ClientAuth::RequireAndVerifyClientCert;
    if (verifies && config.clientCaFile.empty())
        throw ConfigError {line, "tls_server_config.client_ca_file",
            "missing; client_auth_type verifies client certificates against it"};
    if (!verifies && !config.clientCaFile.empty())
        throw ConfigError {config.clientCaPlace.line, "tls_server_config.client_ca_file",
            "given, but client_auth_type does not verify client certificates"};
    if (config.maxVersion != 0 && config.maxVersion < config.minVersion)
        throw ConfigError {line, "tls_server_config.max_version", "below min_version"};
}

void readHttp(const YAML::Node& http, WebConfig& config)
{
    needMap(http, "http_server_config");
    for (const auto& entry : http) {
        const std::string name = entry.first.Scalar();
        const std::string key = "http_server_config." + name;
        if (name == "http2") {
            boolean(entry.second, key); // HTTP/1.1 only here; the setting is accepted for shared files
        } else if (name == "headers") {
            needMap(entry.second, key);
            for (const auto& header : entry.second) {
                const std::string field = header.first.Scalar();
                if (field.empty() || field.find_first_of(" :\r\n") != std::string::npos)
                    throw ConfigError {lineOf(header.first), key, "not a header name: " + field};
                std::string headerKey = key;
                headerKey.append(".").append(field);
                config.headers[field] = scalar(header.second, headerKey);
            }
        } else {
            throw ConfigError {lineOf(entry.first), key, "unknown key"};
        }
    }
}

void readUsers(const YAML::Node& users, WebConfig& config)
{
    needMap(users, "basic_auth_users");
    for (const auto& entry : users) {
        const std::string user = entry.first.Scalar();
        const std::string key = "basic_auth_users." + user;
        const std::string hash = scalar(entry.second, key);
        if (user.empty() || user.find(':') != std::string::npos)
            throw ConfigError {lineOf(entry.first), key, "a user name may neither be empty nor hold ':'"};
        // crypt() itself says whether it knows the hash: with any password it
        // gives a text of the same method, or a text starting with '*'.
        crypt_data data {};
        const char* again
            = hash.rfind("$2", 0) == 0 ? crypt_rn("", hash.c_str(), &data, sizeof data) : nullptr;
        if (!again || again[0] == '*' || std::string(again).size() != hash.size())
            throw ConfigError {lineOf(entry.second), key, "not a bcrypt hash ($2b$, $2y$ or $2a$)"};
        config.users[user] = hash;
    }
}

} // namespace

bool parseWebConfig(const std::string& text, const std::string& name, const std::string& folder,
    WebConfig& config, std::string& error)
{
    config = WebConfig();
    try {
        const YAML::Node root = YAML::Load(text);
        if (root.IsNull())
            return true;
        if (!root.IsMap())
            throw ConfigError {lineOf(root), "(top)", "not a map of keys and values"};
        for (const auto& entry : root) {
            const std::string key = entry.first.Scalar();
            if (key == "tls_server_config")
                readTls(entry.second, folder, config, lineOf(entry.first));
            else if (key == "http_server_config")
                readHttp(entry.second, config);
            else if (key == "basic_auth_users")
                readUsers(entry.second, config);
            else
                throw ConfigError {lineOf(entry.first), key, "unknown key"};
        }
    } catch (const ConfigError& failure) {
        error = name + ":" + std::to_string(failure.line) + ": " + failure.key + ": " + failure.reason;
        return false;
    } catch (const YAML::Exception& failure) {
        error = name + ":" + std::to_string(failure.mark.line + 1) + ": not YAML: " + failure.msg;
        return false;
    }
    return true;
}

bool readWebConfig(const std::string& file, WebConfig& config, std::string& error)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        error = "cannot read the web configuration file " + file;
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    const std::size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash == 0 ? 1 : slash);
    return parseWebConfig(text.str(), file, folder, config, error);
}
