#include <set>

#include <json/reader.h>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "consolecapture.h"
#include "controlclient.h"
#include "prometheusserver.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace std::chrono_literals;

// Two farms in one Prometheus: two simulators, an exporter beside each, and
// the farm label from the scrape configuration. Every query of the
// documentation's dashboard runs through Prometheus' query API.
namespace {

const std::string Exporter = KORVANE_EXPORTER_PROGRAM;
const std::string Docs = KORVANE_DOCS_DIR;

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// The dashboard's expression with the farm variable set as Grafana sets it.
std::string withFarm(const std::string& expr, const std::string& farm)
{
    return replaced(replaced(expr, "$farm", farm), "$instance", ".*");
}

// A simulator and its exporter, as at one site.
class Site final
{
public:
    explicit Site(const std::string& seed)
        : m_sim({"--seed", seed, "--nodes", "40", "--batches", "60", "--speed", "20"})
        , m_simPort(m_sim.port())
        , m_exporter(Exporter,
              {"--web.listen-address", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(m_simPort)})
        , m_port(m_exporter.listeningPort())
    {
    }
    ~Site()
    {
        m_exporter.signal(SIGTERM);
        EXPECT_EQ(m_exporter.wait(), 0);
        m_sim.stop();
    }
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;

    bool started() const { return m_simPort > 0 && m_port > 0; }
    std::string target() const { return "127.0.0.1:" + std::to_string(m_port); }

    // The ids of the batches at work, as the server itself lists them.
    std::set<std::string> workingBatches()
    {
        ConsoleCapture console;
        ControlClient client;
        std::set<std::string> ids;
        ControlClient::BatchList batches;
        if (!client.connect("127.0.0.1", m_simPort) || !client.listBatches(batches))
            return {"(no list)"};
        for (const ControlClient::BatchInfo& batch : batches) {
            if (batch.status == ControlClient::InProgress)
                ids.insert(std::to_string(batch.batchId));
        }
        return ids;
    }

private:
    SimProcess m_sim;
    int m_simPort;
    ChildProcess m_exporter;
    int m_port;
};

std::set<std::string> batchIds(const Json::Value& result, const std::string& farm)
{
    std::set<std::string> ids;
    for (const Json::Value& series : result) {
        EXPECT_EQ(series["metric"]["farm"].asString(), farm) << series.toStyledString();
        ids.insert(series["metric"]["batch_id"].asString());
    }
    return ids;
}

} // namespace

TEST(ExporterFarms, TwoFarmsInOnePrometheusWithTheDashboardsQueries)
{
    Site a("1");
    Site b("2");
    ASSERT_TRUE(a.started() && b.started());
    TempDirectory dir;
    PrometheusServer prometheus(dir,
        "  - job_name: korvane\n    static_configs:\n"
        "      - targets: ['"
            + a.target() + "']\n        labels:\n          farm: a\n      - targets: ['" + b.target()
            + "']\n        labels:\n          farm: b\n");
    const double ready
        = PrometheusServer::pollUntil([&] { return prometheus.query("korvane_up == 1").size() == 2; }, 60s);
    ASSERT_GE(ready, 0) << prometheus.err();

    // The variables: both farms, and the exporters of a farm.
    Json::Value values;
    ASSERT_TRUE(Json::Reader().parse(
        prometheus.get("/api/v1/label/farm/values", {{"match[]", "up{job=\"korvane\"}"}}), values));
    EXPECT_EQ(values["data"].toStyledString(), "[\n\t\"a\",\n\t\"b\"\n]\n");
    ASSERT_TRUE(Json::Reader().parse(
        prometheus.get("/api/v1/label/instance/values", {{"match[]", "up{job=\"korvane\",farm=~\"b\"}"}}),
        values));
    EXPECT_EQ(values["data"].toStyledString(), "[\n\t\"" + b.target() + "\"\n]\n");

    // Every query of every panel runs, for one farm and for all.
    Json::Value dashboard;
    ASSERT_TRUE(Json::Reader().parse(readFile(Docs + "/grafana-dashboard.json"), dashboard));
    std::string workingQuery;
    int queries = 0;
    for (const Json::Value& panel : dashboard["panels"]) {
        for (const Json::Value& target : panel["targets"]) {
            const std::string expr = target["expr"].asString();
            for (const char* farm : {"b", ".*"}) {
                const Json::Value reply = prometheus.queryReply(withFarm(expr, farm));
                EXPECT_FALSE(reply.isNull()) << panel["title"].asString() << ": " << withFarm(expr, farm);
                ++queries;
            }
            if (panel["title"].asString() == "Working batches" && target["refId"].asString() == "A")
                workingQuery = expr;
        }
    }
    EXPECT_EQ(queries, 2 * 15);
    // Panels that show something on every farm: one series per farm.
    EXPECT_EQ(prometheus.query(withFarm("up{job=\"korvane\",farm=~\"$farm\",instance=~\"$instance\"}", ".*"))
                  .size(),
        2u);
    ASSERT_FALSE(workingQuery.empty());

    // Farm b's table of working batches is exactly what farm b's server
    // calls working: read while the server's own list stands still.
    // With all farms chosen, farm b's rows are the same ones: ids that are
    // working on farm a do not come in through the join.
    std::set<std::string> expected;
    std::set<std::string> shown;
    std::set<std::string> shownAmongAll;
    const double matched = PrometheusServer::pollUntil(
        [&] {
            const std::set<std::string> before = b.workingBatches();
            std::this_thread::sleep_for(2500ms); // a scrape, and the reuse second, after the list
            shown = batchIds(prometheus.query(withFarm(workingQuery, "b")), "b");
            shownAmongAll.clear();
            for (const Json::Value& series : prometheus.query(withFarm(workingQuery, ".*"))) {
                if (series["metric"]["farm"].asString() == "b")
                    shownAmongAll.insert(series["metric"]["batch_id"].asString());
            }
            expected = b.workingBatches();
            return before == expected && shown == expected && shownAmongAll == expected && !expected.empty();
        },
        90s);
    EXPECT_GE(matched, 0);
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(shownAmongAll, expected);
    EXPECT_FALSE(expected.empty());
    // Ids working on farm a but not on b: what an on(batch_id) join got wrong.
    std::size_t clashes = 0;
    for (const std::string& id : a.workingBatches())
        clashes += expected.count(id) == 0;
    std::cout << "Prometheus ready, both exporters up after " << ready << " s; " << queries
              << " dashboard queries ran; farm b's working batches matched after " << matched << " s ("
              << expected.size() << " batches; " << clashes << " ids working on farm a only)" << std::endl;
}
