#include "access.h"

#include <algorithm>
#include <cctype>

#include "basicauth.h"

namespace {

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

} // namespace

Access::Access(std::map<std::string, std::string> users, std::set<std::string> operators)
    : m_auth(std::make_unique<BasicAuth>(std::move(users), "korvane-web"))
    , m_operators(std::move(operators))
{
}

Access::~Access() = default;

std::optional<Access::Identity> Access::identify(const ApiRequest& request)
{
    if (!m_auth->required())
        return Identity {{}, request.remoteIsLoopback ? Role::Operator : Role::Viewer};
    std::optional<std::string> user = m_auth->user(request.header("authorization"));
    if (!user)
        return std::nullopt;
    const Role role = m_operators.count(*user) ? Role::Operator : Role::Viewer;
    return Identity {std::move(*user), role};
}

std::string Access::crossOrigin(const ApiRequest& request)
{
    const std::string& origin = request.header("origin");
    if (!origin.empty()) {
        const std::string own = (request.tls ? "https://" : "http://") + lowerCase(request.header("host"));
        if (lowerCase(origin) == own)
            return {};
        return "Origin " + origin + " is not " + own;
    }
    const std::string& site = request.header("sec-fetch-site");
    if (site.empty() || site == "same-origin" || site == "none")
        return {};
    return "Sec-Fetch-Site is " + site;
}

const std::string& Access::challenge() const
{
    return m_auth->challenge();
}

const char* roleWord(Access::Role role)
{
    return role == Access::Role::Operator ? "operator" : "viewer";
}
