#include "basicauth.h"

#include <crypt.h>
#include <memory>
#include <openssl/crypto.h>
#include <openssl/evp.h>

namespace {

// "Basic BASE64" to "user:password"; false when it is not that.
bool decodeBasic(const std::string& authorization, std::string& pair)
{
    static const std::string Scheme = "Basic ";
    if (authorization.size() <= Scheme.size() || authorization.compare(0, Scheme.size(), Scheme) != 0)
        return false;
    const std::string encoded = authorization.substr(Scheme.size());
    if (encoded.size() % 4 != 0)
        return false;
    std::string decoded(encoded.size() / 4 * 3, '\0');
    const int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(decoded.data()),
        reinterpret_cast<const unsigned char*>(encoded.data()), static_cast<int>(encoded.size()));
    if (length < 0)
        return false;
    // EVP_DecodeBlock counts the padding as bytes of the result.
    std::size_t padding = 0;
    while (padding < 2 && encoded[encoded.size() - 1 - padding] == '=')
        ++padding;
    decoded.resize(static_cast<std::size_t>(length) - padding);
    pair = std::move(decoded);
    return true;
}

std::array<unsigned char, 32> sha256(const std::string& text)
{
    std::array<unsigned char, 32> digest {};
    unsigned int length = 0;
    EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_sha256(), nullptr);
    return digest;
}

bool sameText(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

// The bcrypt hash of the password in the hash's own setting; empty when crypt() refuses.
std::string bcrypt(const std::string& password, const std::string& hash)
{
    auto data = std::make_unique<crypt_data>();
    const char* result = crypt_rn(password.c_str(), hash.c_str(), data.get(), sizeof *data);
    return result && result[0] != '*' ? std::string(result) : std::string();
}

} // namespace

BasicAuth::BasicAuth(std::map<std::string, std::string> users, const std::string& realm)
    : m_users(std::move(users))
    , m_challenge("Basic realm=\"" + realm + "\", charset=\"UTF-8\"")
{
    // An unknown user is checked against a hash of the same cost as a real one.
    if (!m_users.empty()) {
        const std::string& model = m_users.begin()->second;
        char setting[CRYPT_GENSALT_OUTPUT_SIZE];
        const unsigned long cost = std::stoul(model.substr(4, 2));
        if (crypt_gensalt_rn(model.substr(0, 4).c_str(), cost, nullptr, 0, setting, sizeof setting))
            m_dummyHash = bcrypt("unknown user", setting);
    }
}

std::optional<std::string> BasicAuth::user(const std::string& authorization)
{
    if (m_users.empty())
        return std::string();
    std::string pair;
    if (!decodeBasic(authorization, pair))
        return std::nullopt;
    const std::size_t colon = pair.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    const std::string user = pair.substr(0, colon);
    const std::string password = pair.substr(colon + 1);
    const auto known = m_users.find(user);
    if (known == m_users.end()) {
        bcrypt(password, m_dummyHash);
        return std::nullopt;
    }

    const Digest digest = sha256(password);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto passed = m_passed.find(user);
        if (passed != m_passed.end()
            && CRYPTO_memcmp(passed->second.data(), digest.data(), digest.size()) == 0)
            return user;
    }
    if (!sameText(bcrypt(password, known->second), known->second))
        return std::nullopt;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_passed[user] = digest;
    return user;
}
