#pragma once

#include <chrono>
#include <csignal>
#include <functional>
#include <httplib.h>
#include <string>
#include <thread>

#include <json/reader.h>

#include "childprocess.h"
#include "loopback.h"
#include "tempdirectory.h"

// A real Prometheus server on a free loopback port, with the scrape
// configuration given and its data in a folder of its own.
class PrometheusServer final
{
public:
    PrometheusServer(const TempDirectory& dir, const std::string& scrapeConfigs)
        : m_port(freeLoopbackPort())
        , m_process("/usr/bin/prometheus",
              {"--config.file=" + configFile(dir, scrapeConfigs), "--storage.tsdb.path=" + dir.path("data"),
                  "--web.listen-address=127.0.0.1:" + std::to_string(m_port), "--log.level=warn"})
    {
    }
    ~PrometheusServer() { stop(); }
    PrometheusServer(const PrometheusServer&) = delete;
    PrometheusServer& operator=(const PrometheusServer&) = delete;

    int port() const { return m_port; }
    std::string err() { return m_process.err(); }
    // Ends it with SIGTERM; its exit code.
    int stop()
    {
        m_process.signal(SIGTERM);
        return m_process.wait();
    }

    // The body of a GET, or empty on failure.
    std::string get(const std::string& path, const httplib::Params& params = {})
    {
        httplib::Client client("127.0.0.1", m_port);
        client.set_read_timeout(20, 0);
        const httplib::Result result = client.Get(path.c_str(), params, {});
        return result && result->status == 200 ? result->body : std::string();
    }

    // The whole reply of an instant query; null when it did not succeed.
    Json::Value queryReply(const std::string& expression)
    {
        Json::Value reply;
        if (!Json::Reader().parse(get("/api/v1/query", {{"query", expression}}), reply)
            || reply["status"].asString() != "success")
            return Json::Value();
        return reply;
    }

    // The "result" array of an instant query.
    Json::Value query(const std::string& expression)
    {
        const Json::Value reply = queryReply(expression);
        return reply.isNull() ? Json::Value(Json::arrayValue) : reply["data"]["result"];
    }

    // A value of Prometheus' own /metrics, such as prometheus_tsdb_head_series; -1 when absent.
    double ownMetric(const std::string& name)
    {
        const std::string text = get("/metrics");
        const std::size_t at = text.find("\n" + name + " ");
        return at == std::string::npos ? -1 : std::stod(text.substr(at + name.size() + 2));
    }

    // Polls until done() holds, at most the time given; the seconds it took, or -1.
    static double pollUntil(const std::function<bool()>& done, std::chrono::seconds limit)
    {
        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        while (Clock::now() - start < limit) {
            if (done())
                return std::chrono::duration<double>(Clock::now() - start).count();
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
        return -1;
    }

private:
    // Scrapes every second, each given a second.
    static std::string configFile(const TempDirectory& dir, const std::string& scrapeConfigs)
    {
        dir.writeFile("prometheus.yml",
            "global:\n  scrape_interval: 1s\n  scrape_timeout: 1s\nscrape_configs:\n" + scrapeConfigs);
        return dir.path("prometheus.yml");
    }

    int m_port;
    ChildProcess m_process;
};
