#pragma once

#include <array>
#include <map>
#include <mutex>
#include <string>

// HTTP basic authentication against bcrypt hashes, checked by the system's
// crypt(). A bcrypt check takes tens of milliseconds by design, so the
// SHA-256 of the last password that passed is kept per user and a scrape
// with the same password is let in on that; every comparison is in constant
// time. An unknown user costs a bcrypt check all the same. Thread-safe.
class BasicAuth final
{
public:
    // user -> bcrypt hash; no users lets every request in.
    explicit BasicAuth(std::map<std::string, std::string> users);
    BasicAuth(const BasicAuth&) = delete;
    BasicAuth& operator=(const BasicAuth&) = delete;

    bool required() const { return !m_users.empty(); }
    // The request's Authorization header as it came.
    bool allows(const std::string& authorization);

    static constexpr const char* Challenge = "Basic realm=\"korvane-exporter\", charset=\"UTF-8\"";

private:
    using Digest = std::array<unsigned char, 32>;

    const std::map<std::string, std::string> m_users;
    std::string m_dummyHash;
    std::mutex m_mutex;
    std::map<std::string, Digest> m_passed;
};
