#include <memory>
#include <string>
#include <vector>

#include <json/reader.h>
#include <json/value.h>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"

// korvane-webtexts on the build's catalogues: the browser's JSON catalogues
// and the program's exit code.
namespace {

const std::string Tool = KORVANE_WEBTEXTS_PROGRAM;
const std::string LangDir = KORVANE_LANG_DIR;
const std::vector<std::string> Languages = {"en", "de", "ru", "fr", "es", "ja", "zh_CN"};

Json::Value parsed(const std::string& text)
{
    Json::CharReaderBuilder builder;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &value, &errors)) << errors;
    return value;
}

Json::Value strings(const std::vector<std::string>& texts)
{
    Json::Value array(Json::arrayValue);
    for (const std::string& text : texts)
        array.append(text);
    return array;
}

// One run for all the checks on the catalogues it writes.
class WebTexts : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        out = new TempDirectory;
        ChildProcess tool(Tool, {"--lang-dir", LangDir, "--out", out->path("lang")});
        exitCode = tool.wait();
        errors = new std::string(tool.err());
    }
    static void TearDownTestSuite()
    {
        delete out;
        delete errors;
    }

    static std::string text(const std::string& language)
    {
        return readFile(out->path("lang/" + language + ".json"));
    }
    static Json::Value catalogue(const std::string& language) { return parsed(text(language)); }

    static TempDirectory* out;
    static int exitCode;
    static std::string* errors;
};

TempDirectory* WebTexts::out = nullptr;
int WebTexts::exitCode = -1;
std::string* WebTexts::errors = nullptr;

} // namespace

TEST_F(WebTexts, WritesOneCatalogueForEachLanguage)
{
    EXPECT_EQ(exitCode, 0);
    EXPECT_EQ(*errors, "");
    for (const std::string& language : Languages) {
        const Json::Value json = catalogue(language);
        EXPECT_EQ(json["language"].asString(), language);
        EXPECT_EQ(
            json.getMemberNames(), (std::vector<std::string> {"language", "plurals", "tasks", "texts"}));
    }
}

TEST_F(WebTexts, PluralCategoriesInTheOrderOfTheNumerusForms)
{
    EXPECT_EQ(catalogue("en")["plurals"], strings({"one", "other"}));
    EXPECT_EQ(catalogue("de")["plurals"], strings({"one", "other"}));
    EXPECT_EQ(catalogue("es")["plurals"], strings({"one", "other"}));
    EXPECT_EQ(catalogue("fr")["plurals"], strings({"one", "other"}));
    EXPECT_EQ(catalogue("ru")["plurals"], strings({"one", "few", "many"}));
    EXPECT_EQ(catalogue("ja")["plurals"], strings({"other"}));
    EXPECT_EQ(catalogue("zh_CN")["plurals"], strings({"other"}));
}

TEST_F(WebTexts, CompactSortedUtf8)
{
    const std::string ja = text("ja");
    EXPECT_EQ(ja.rfind(R"({"language":"ja","plurals":["other"],"tasks":{"AddPhotos":")", 0), 0u) << ja;
    EXPECT_NE(ja.find(R"("Monitor/Pause":"一時停止")"), std::string::npos);
    EXPECT_EQ(ja.find('\n'), std::string::npos);
}

TEST_F(WebTexts, SharedTextsFromTheDesktopsCatalogue)
{
    const Json::Value ja = catalogue("ja");
    EXPECT_EQ(ja["texts"]["Monitor/Pause"], "一時停止");
    EXPECT_EQ(ja["texts"]["Monitor/Batch #"], "バッチ番号");
    EXPECT_EQ(ja["texts"]["Monitor/Highest"], "最高");
    EXPECT_EQ(ja["texts"]["TaskStatusWidget/%1/%2 completed"], "%1/%2 完了");
    EXPECT_EQ(ja["texts"]["BatchDetailsDialog/Batch Details"], "バッチの詳細");
    EXPECT_EQ(ja["texts"]["Errors/Disconnected from server"], "サーバーから切断されました");
    EXPECT_EQ(ja["tasks"]["BuildModel"], "メッシュの生成");
    EXPECT_EQ(ja["tasks"].size(), catalogue("en")["tasks"].size());

    const Json::Value de = catalogue("de");
    EXPECT_EQ(de["texts"]["TaskStatusWidget/%1%"], "%1 %");
    EXPECT_EQ(de["texts"]["Monitor/Waiting..."], "Wartet...");
    EXPECT_EQ(de["texts"]["TaskStatusWidget/Waiting..."], "Wartet...");
}

TEST_F(WebTexts, TheWebsOwnTexts)
{
    EXPECT_EQ(catalogue("ja")["texts"]["Web/Batch #%1"], "バッチ #%1");
    EXPECT_EQ(catalogue("ja")["texts"]["Web/Pause %n batches: %1"]["other"], "%n 件のバッチを一時停止：%1");
    EXPECT_EQ(catalogue("de")["texts"]["Web/Farm summary"], "Farmübersicht");
    EXPECT_EQ(catalogue("fr")["texts"]["Web/Refused: %1"], "Refusé\u00a0: %1");
}

TEST_F(WebTexts, NumerusFormsKeepTheirCount)
{
    Json::Value ru(Json::objectValue);
    ru["one"] = "Приостановить %n пакет: %1";
    ru["few"] = "Приостановить %n пакета: %1";
    ru["many"] = "Приостановить %n пакетов: %1";
    EXPECT_EQ(catalogue("ru")["texts"]["Web/Pause %n batches: %1"], ru);

    Json::Value en(Json::objectValue);
    en["one"] = "%n selected";
    en["other"] = "%n selected";
    EXPECT_EQ(catalogue("en")["texts"]["Web/%n selected"], en);
    EXPECT_EQ(catalogue("en")["texts"]["Web/Stop %n nodes: %1"]["one"], "Stop %n node: %1");
}

TEST_F(WebTexts, EveryLanguageHasEveryText)
{
    const Json::Value en = catalogue("en")["texts"];
    EXPECT_EQ(en["Monitor/#"], "#");
    EXPECT_EQ(en["TaskStatusWidget/%1%"], "%1%");
    EXPECT_EQ(en["Web/Views"], "Views");
    for (const std::string& language : Languages) {
        const Json::Value json = catalogue(language);
        const Json::Value& texts = json["texts"];
        EXPECT_EQ(texts.getMemberNames(), en.getMemberNames()) << language;
        for (const std::string& key : texts.getMemberNames()) {
            const Json::Value& value = texts[key];
            if (value.isObject()) {
                EXPECT_EQ(value.size(), json["plurals"].size()) << language << " " << key;
            } else {
                EXPECT_FALSE(value.asString().empty()) << language << " " << key;
            }
        }
    }
}

TEST(WebTextsProgram, MissingCatalogueDirectory)
{
    TempDirectory out;
    ChildProcess tool(Tool, {"--lang-dir", out.path("none"), "--out", out.path("lang")});
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_EQ(tool.err(), "korvane-webtexts: cannot read " + out.path("none") + "/monitor_en.qm\n");
}

TEST(WebTextsProgram, OneMissingCatalogue)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("qm"));
    for (const std::string& language : Languages) {
        if (language == "ru")
            continue;
        std::string name = "monitor_";
        name += language;
        name += ".qm";
        std::string source = LangDir;
        source += '/';
        source += name;
        ASSERT_TRUE(dir.writeFile("qm/" + name, readFile(source)));
    }
    ChildProcess tool(Tool, {"--lang-dir", dir.path("qm"), "--out", dir.path("lang")});
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_EQ(tool.err(), "korvane-webtexts: cannot read " + dir.path("qm") + "/monitor_ru.qm\n");
    EXPECT_FALSE(pathExists(dir.path("lang/ru.json")));
}

TEST(WebTextsProgram, BothDirectoriesAreNeeded)
{
    ChildProcess tool(Tool, {"--lang-dir", LangDir});
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_EQ(tool.err(), "korvane-webtexts: usage: korvane-webtexts --lang-dir DIR --out OUT\n");
}
