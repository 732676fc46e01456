#pragma once

#include <map>
#include <string>

// The web configuration file of Prometheus' exporters (--web.config.file):
//
//   tls_server_config:
//     cert_file: server.crt
//     key_file: server.key
//     client_auth_type: RequireAndVerifyClientCert
//     client_ca_file: clients-ca.crt
//     min_version: TLS12
//   basic_auth_users:
//     prometheus: $2y$10$...   (bcrypt)
//
// Relative file names are taken from the configuration file's folder. A key
// these programs do not know is an error, as it is for Prometheus' exporters, so
// that a setting is never silently dropped.
struct WebConfig
{
    enum class ClientAuth
    {
        NoClientCert,
        RequestClientCert,
        RequireAnyClientCert,
        VerifyClientCertIfGiven,
        RequireAndVerifyClientCert,
    };

    // Where a key was in the file, for messages about its value.
    struct Place
    {
        std::string key;
        int line = 0;
    };

    bool tls = false;
    std::string certFile;
    std::string keyFile;
    std::string clientCaFile;
    ClientAuth clientAuth = ClientAuth::NoClientCert;
    // OpenSSL's protocol versions (TLS1_2_VERSION); maxVersion 0 for no limit.
    int minVersion = 0;
    int maxVersion = 0;
    bool preferServerCipherSuites = true;
    Place certPlace;
    Place keyPlace;
    Place clientCaPlace;

    // user -> bcrypt hash
    std::map<std::string, std::string> users;
    // Added to every response (http_server_config.headers).
    std::map<std::string, std::string> headers;
};

// Reads and checks the file. On failure false, with "FILE:LINE: KEY: reason".
bool readWebConfig(const std::string& file, WebConfig& config, std::string& error);

// The same for text already read; name stands for the file in messages and
// folder resolves relative file names.
bool parseWebConfig(const std::string& text, const std::string& name, const std::string& folder,
    WebConfig& config, std::string& error);
