#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "apimessage.h"

class BasicAuth;

// Who may do what. With basic-auth users in the web configuration every
// request names its user; users named as operators may act on the farm,
// every other one may only look. Without users the program listens on
// loopback only, and a loopback client is an operator.
//
// A state change must come from the program's own pages: a browser's POST
// carries its page's Origin (or at least Sec-Fetch-Site), and another
// site's is refused. A request with neither does not come from a browser
// page, and cannot be forged by one. Thread-safe.
class Access final
{
public:
    enum class Role
    {
        Viewer,
        Operator,
    };

    struct Identity
    {
        // Empty without basic-auth users.
        std::string user;
        Role role = Role::Viewer;
    };

    Access(std::map<std::string, std::string> users, std::set<std::string> operators);
    ~Access();
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;

    // The sender, or nothing when the request must authenticate (401).
    std::optional<Identity> identify(const ApiRequest& request);
    // Why the request is not from the program's own origin; empty when it is.
    static std::string crossOrigin(const ApiRequest& request);
    // WWW-Authenticate of a 401.
    const std::string& challenge() const;

private:
    std::unique_ptr<BasicAuth> m_auth;
    const std::set<std::string> m_operators;
};

// "viewer" or "operator"
const char* roleWord(Access::Role role);
