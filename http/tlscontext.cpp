#include "tlscontext.h"

#include <fstream>
#include <openssl/err.h>
#include <openssl/ssl.h>

#include "webconfig.h"

namespace {

std::string openSslReason()
{
    const unsigned long code = ERR_get_error();
    ERR_clear_error();
    if (code == 0)
        return "unknown reason";
    char text[256];
    ERR_error_string_n(code, text, sizeof text);
    return text;
}

bool fail(const std::string& configFile, const WebConfig::Place& place, const std::string& reason,
    std::string& error)
{
    error = configFile + ":" + std::to_string(place.line) + ": " + place.key + ": " + reason;
    return false;
}

bool readable(const std::string& file)
{
    return std::ifstream(file, std::ios::binary).good();
}

// Asks for a certificate but takes whatever comes (RequestClientCert, RequireAnyClientCert).
int acceptAny(int, X509_STORE_CTX*)
{
    return 1;
}

} // namespace

bool setUpTlsContext(
    SSL_CTX& context, const WebConfig& config, const std::string& configFile, std::string& error)
{
    ERR_clear_error();
    SSL_CTX_set_min_proto_version(&context, config.minVersion);
    SSL_CTX_set_max_proto_version(&context, config.maxVersion);
    SSL_CTX_set_options(&context, SSL_OP_NO_COMPRESSION | SSL_OP_NO_RENEGOTIATION);
    if (config.preferServerCipherSuites)
        SSL_CTX_set_options(&context, SSL_OP_CIPHER_SERVER_PREFERENCE);

    if (!readable(config.certFile))
        return fail(configFile, config.certPlace, "cannot read " + config.certFile, error);
    if (SSL_CTX_use_certificate_chain_file(&context, config.certFile.c_str()) != 1)
        return fail(configFile, config.certPlace, "not a PEM certificate: " + openSslReason(), error);
    if (!readable(config.keyFile))
        return fail(configFile, config.keyPlace, "cannot read " + config.keyFile, error);
    if (SSL_CTX_use_PrivateKey_file(&context, config.keyFile.c_str(), SSL_FILETYPE_PEM) != 1)
        return fail(
            configFile, config.keyPlace, "not a PEM private key of cert_file: " + openSslReason(), error);
    if (SSL_CTX_check_private_key(&context) != 1)
        return fail(
            configFile, config.keyPlace, "not a PEM private key of cert_file: " + openSslReason(), error);

    if (!config.clientCaFile.empty()) {
        if (!readable(config.clientCaFile))
            return fail(configFile, config.clientCaPlace, "cannot read " + config.clientCaFile, error);
        STACK_OF(X509_NAME)* names = SSL_load_client_CA_file(config.clientCaFile.c_str());
        if (!names || SSL_CTX_load_verify_locations(&context, config.clientCaFile.c_str(), nullptr) != 1) {
            if (names)
                sk_X509_NAME_pop_free(names, X509_NAME_free);
            return fail(
                configFile, config.clientCaPlace, "no PEM certificate in it: " + openSslReason(), error);
        }
        SSL_CTX_set_client_CA_list(&context, names);
    }

    using Auth = WebConfig::ClientAuth;
    switch (config.clientAuth) {
    case Auth::NoClientCert:
        SSL_CTX_set_verify(&context, SSL_VERIFY_NONE, nullptr);
        break;
    case Auth::RequestClientCert:
        SSL_CTX_set_verify(&context, SSL_VERIFY_PEER, acceptAny);
        break;
    case Auth::RequireAnyClientCert:
        SSL_CTX_set_verify(&context, SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, acceptAny);
        break;
    case Auth::VerifyClientCertIfGiven:
        SSL_CTX_set_verify(&context, SSL_VERIFY_PEER, nullptr);
        break;
    case Auth::RequireAndVerifyClientCert:
        SSL_CTX_set_verify(&context, SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
        break;
    }
    return true;
}

bool checkTlsFiles(const WebConfig& config, const std::string& configFile, std::string& error)
{
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    if (!context) {
        error = "cannot make a TLS context: " + openSslReason();
        return false;
    }
    const bool ok = setUpTlsContext(*context, config, configFile, error);
    SSL_CTX_free(context);
    return ok;
}

bool loadWebConfig(const std::string& file, WebConfig& config, std::string& error)
{
    return readWebConfig(file, config, error) && (!config.tls || checkTlsFiles(config, file, error));
}
