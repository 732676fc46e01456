#pragma once

#include <array>
#include <map>
#include <mutex>
#include <optional>
#include <string>

// HTTP basic authentication against bcrypt hashes, checked by the system's
// crypt(). A bcrypt check takes tens of milliseconds by design, so the
// SHA-256 of the last password that passed is kept per user and a scrape
// with the same password is let in on that; every comparison is in constant
// time. An unknown user costs a bcrypt check all the same. Thread-safe.
class BasicAuth final
{
public:
    // user -> bcrypt hash; no users lets every request in. realm names the
    // program in the challenge.
    BasicAuth(std::map<std::string, std::string> users, const std::string& realm);
    BasicAuth(const BasicAuth&) = delete;
    BasicAuth& operator=(const BasicAuth&) = delete;

    bool required() const { return !m_users.empty(); }
    // The request's Authorization header as it came.
    bool allows(const std::string& authorization) { return user(authorization).has_value(); }
    // The user the header names when its password is right; an empty name
    // when no users are configured; nothing when the request is refused.
    std::optional<std::string> user(const std::string& authorization);
    // The WWW-Authenticate header of a refusal.
    const std::string& challenge() const { return m_challenge; }

private:
    using Digest = std::array<unsigned char, 32>;

    const std::map<std::string, std::string> m_users;
    const std::string m_challenge;
    std::string m_dummyHash;
    std::mutex m_mutex;
    std::map<std::string, Digest> m_passed;
};
