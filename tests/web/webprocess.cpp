#include "webprocess.h"

#include "testpaths.h"

WebProcess::WebProcess(const std::vector<std::string>& options)
    : m_process(KORVANE_WEB_PROGRAM, options)
    , m_port(m_process.listeningPort())
{
}

httplib::Client WebProcess::client() const
{
    httplib::Client client("127.0.0.1", m_port);
    client.set_connection_timeout(10, 0);
    client.set_read_timeout(20, 0);
    return client;
}

httplib::Result WebProcess::post(
    const std::string& path, const std::string& body, const httplib::Headers& extra) const
{
    httplib::Headers headers = {{"Origin", "http://127.0.0.1:" + std::to_string(m_port)}};
    for (const auto& header : extra)
        headers.erase(header.first);
    headers.insert(extra.begin(), extra.end());
    return client().Post(path.c_str(), headers, body, "application/json");
}

std::vector<std::string> webOptions(int simPort, const std::vector<std::string>& more)
{
    std::vector<std::string> options
        = {"--web.listen-address", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(simPort)};
    options.insert(options.end(), more.begin(), more.end());
    return options;
}
