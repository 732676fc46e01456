#pragma once

#include <openssl/types.h>
#include <string>

struct WebConfig;

// Sets up an OpenSSL server context from the web configuration: protocol
// versions, the certificate chain and its key, and the client certificate
// check. On failure false with "FILE:LINE: KEY: reason" (the key's place in
// the web configuration file) and OpenSSL's own reason.
bool setUpTlsContext(
    SSL_CTX& context, const WebConfig& config, const std::string& configFile, std::string& error);

// Whether the files of the configuration load: the same set-up on a context
// of its own, made and freed here, so that a bad file is refused at the start.
bool checkTlsFiles(const WebConfig& config, const std::string& configFile, std::string& error);

// A program's --web.config.file at its start: read, checked, and with TLS
// in it, its certificate and key loaded once. False with the reason.
bool loadWebConfig(const std::string& file, WebConfig& config, std::string& error);
