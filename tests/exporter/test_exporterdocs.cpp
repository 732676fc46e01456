#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <json/reader.h>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "metricstext.h"
#include "tempdirectory.h"
#include "testpaths.h"

// The example alert rules and Grafana dashboard of the documentation: valid,
// firing when they should, and naming only metrics the exporter writes.
namespace {

const std::string Docs = KORVANE_DOCS_DIR;

// Every family of a farm in which each kind of series occurs.
std::set<std::string> exportedFamilies()
{
    FarmSnapshot farm;
    farm.up = true;
    farm.nodes.resize(1);
    farm.nodes[0].lastError.time = 1;
    farm.batches.resize(1);
    farm.batches[0].timeStarted = 1;
    std::string text;
    writeFarmMetrics(farm, CollectMode::Unfinished, text);
    writeScrapeDuration(0.1, text);
    std::set<std::string> families;
    const std::regex type("# TYPE (\\w+) ");
    for (std::sregex_iterator it(text.begin(), text.end(), type), end; it != end; ++it)
        families.insert((*it)[1]);
    return families;
}

std::set<std::string> namesIn(const std::string& text)
{
    std::set<std::string> names;
    const std::regex name("korvane_[a-z_]+");
    for (std::sregex_iterator it(text.begin(), text.end(), name), end; it != end; ++it)
        names.insert(it->str());
    return names;
}

} // namespace

TEST(ExporterDocs, AlertRulesAreValidAndFireWhenTheyShould)
{
    std::string output;
    EXPECT_EQ(runCommand("promtool check rules " + Docs + "/korvane-alerts.yml", output), 0) << output;
    EXPECT_NE(output.find("SUCCESS: 4 rules found"), std::string::npos) << output;
    EXPECT_EQ(runCommand("cd " + Docs + " && promtool test rules korvane-alerts-test.yml", output), 0)
        << output;
    EXPECT_NE(output.find("SUCCESS"), std::string::npos) << output;
}

TEST(ExporterDocs, RecordingRulesPerFarmAreValid)
{
    std::string output;
    EXPECT_EQ(runCommand("promtool check rules " + Docs + "/korvane-recording-rules.yml", output), 0)
        << output;
    EXPECT_NE(output.find("SUCCESS: 5 rules found"), std::string::npos) << output;
}

TEST(ExporterDocs, TheReadmeShowsTheRulesAsTheyAre)
{
    const std::string readme = readFile(Docs + "/../README.md");
    for (const char* file : {"/korvane-alerts.yml", "/korvane-recording-rules.yml"}) {
        const std::string rules = readFile(Docs + file);
        ASSERT_FALSE(rules.empty());
        EXPECT_NE(readme.find("```yaml\n" + rules + "```\n"), std::string::npos) << file;
    }
}

TEST(ExporterDocs, RulesAndDashboardNameOnlyExportedMetrics)
{
    const std::set<std::string> families = exportedFamilies();
    EXPECT_EQ(families.size(), 21u);

    Json::Value dashboard;
    ASSERT_TRUE(Json::Reader().parse(readFile(Docs + "/grafana-dashboard.json"), dashboard));
    std::string expressions;
    for (const Json::Value& panel : dashboard["panels"]) {
        EXPECT_FALSE(panel["targets"].empty()) << panel["title"].asString();
        for (const Json::Value& target : panel["targets"])
            expressions += target["expr"].asString() + "\n";
    }
    for (const Json::Value& variable : dashboard["templating"]["list"])
        expressions += variable["query"].asString() + "\n";
    expressions += readFile(Docs + "/korvane-alerts.yml");

    const std::set<std::string> used = namesIn(expressions);
    EXPECT_GE(used.size(), 12u);
    for (const std::string& name : used)
        EXPECT_EQ(families.count(name), 1u) << name;
}

TEST(ExporterDocs, EveryAlertIsPerFarmHeldAndNamesItsFarm)
{
    // The rules file is plain enough to read line by line: each rule has its
    // alert, a for: and a summary that names the farm; sums keep the farm
    // and the address of its web view; every alert links to that view.
    const std::string rules = readFile(Docs + "/korvane-alerts.yml");
    std::istringstream lines(rules);
    int alerts = 0;
    int holds = 0;
    int summaries = 0;
    int views = 0;
    for (std::string line; std::getline(lines, line);) {
        views += line.find("web_view: \"{{ with $labels.web_url }}{{ . }}/") != std::string::npos;
        alerts += line.find("- alert: ") != std::string::npos;
        holds += line.find(" for: ") != std::string::npos;
        summaries += line.find("summary: \"Farm {{ $labels.farm }}: ") != std::string::npos;
        if (line.find("sum(") != std::string::npos || line.find("sum (") != std::string::npos) {
            ADD_FAILURE() << "a sum over every farm: " << line;
        }
        if (line.find("sum by (") != std::string::npos) {
            EXPECT_NE(line.find("sum by (farm, web_url)"), std::string::npos) << line;
        }
    }
    EXPECT_EQ(alerts, 4);
    EXPECT_EQ(holds, 4);
    EXPECT_EQ(summaries, 4);
    EXPECT_EQ(views, 4);
    EXPECT_NE(rules.find("- alert: KorvaneExporterDown\n        expr: up{job=\"korvane\"} == 0\n"),
        std::string::npos);
}

TEST(ExporterDocs, TheDashboardChoosesFarmsAndJoinsWithinOneExporter)
{
    Json::Value dashboard;
    ASSERT_TRUE(Json::Reader().parse(readFile(Docs + "/grafana-dashboard.json"), dashboard));
    const Json::Value& variables = dashboard["templating"]["list"];
    ASSERT_EQ(variables.size(), 3u);
    EXPECT_EQ(variables[1]["name"].asString(), "farm");
    EXPECT_EQ(variables[1]["query"].asString(), "label_values(up{job=\"korvane\"}, farm)");
    EXPECT_EQ(variables[2]["name"].asString(), "instance");
    EXPECT_EQ(
        variables[2]["query"].asString(), "label_values(up{job=\"korvane\",farm=~\"$farm\"}, instance)");
    for (const Json::ArrayIndex i : {1u, 2u}) {
        EXPECT_TRUE(variables[i]["multi"].asBool());
        EXPECT_TRUE(variables[i]["includeAll"].asBool());
        EXPECT_EQ(variables[i]["allValue"].asString(), ".*");
    }

    bool exporterUp = false;
    int joins = 0;
    for (const Json::Value& panel : dashboard["panels"]) {
        for (const Json::Value& target : panel["targets"]) {
            const std::string expr = target["expr"].asString();
            EXPECT_NE(expr.find("farm=~\"$farm\",instance=~\"$instance\""), std::string::npos) << expr;
            EXPECT_EQ(expr.find("instance=\"$instance\""), std::string::npos) << expr;
            // Batch and node ids start at 1 on every farm: a join holds only within one exporter.
            for (std::size_t at = expr.find(" on("); at != std::string::npos;
                 at = expr.find(" on(", at + 1)) {
                ++joins;
                EXPECT_EQ(expr.compare(at, 20, " on(farm, instance, "), 0) << expr;
            }
            if (panel["title"].asString() == "Exporter up")
                exporterUp = expr == "up{job=\"korvane\",farm=~\"$farm\",instance=~\"$instance\"}";
        }
    }
    EXPECT_TRUE(exporterUp);
    EXPECT_EQ(joins, 5);
}
