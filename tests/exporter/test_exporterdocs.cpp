#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <json/reader.h>

#include <gtest/gtest.h>

#include "metricstext.h"
#include "tempdir.h"

// The example alert rules and Grafana dashboard of the documentation: valid,
// firing when they should, and naming only metrics the exporter writes.
namespace {

const std::string Docs = KORVANE_DOCS_DIR;

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

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
    EXPECT_NE(output.find("SUCCESS: 3 rules found"), std::string::npos) << output;
    EXPECT_EQ(runCommand("cd " + Docs + " && promtool test rules korvane-alerts-test.yml", output), 0)
        << output;
    EXPECT_NE(output.find("SUCCESS"), std::string::npos) << output;
}

TEST(ExporterDocs, TheReadmeShowsTheAlertRulesAsTheyAre)
{
    const std::string readme = readFile(Docs + "/../README.md");
    const std::string rules = readFile(Docs + "/korvane-alerts.yml");
    ASSERT_FALSE(rules.empty());
    EXPECT_NE(readme.find("```yaml\n" + rules + "```\n"), std::string::npos);
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
