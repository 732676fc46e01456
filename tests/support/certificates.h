#pragma once

#include <string>

class TempDirectory;

// A CA and certificates signed by it, made by openssl in a test's directory:
// NAME.crt and NAME.key beside each other.
class Certificates final
{
public:
    explicit Certificates(const TempDirectory& dir);
    Certificates(const Certificates&) = delete;
    Certificates& operator=(const Certificates&) = delete;

    bool makeCa(const std::string& name);
    // name.crt and name.key for 127.0.0.1 and localhost, signed by ca;
    // usage serverAuth or clientAuth.
    bool makeSigned(const std::string& name, const std::string& ca, const std::string& usage);

    // The commands that failed, with what they printed.
    const std::string& output() const { return m_output; }

private:
    bool ok(const std::string& command);

    const TempDirectory& m_dir;
    std::string m_output;
};
