
#include <gtest/gtest.h>

#include "tempdirectory.h"
#include "webassets.h"

class WebAssetsViewPath : public ::testing::TestWithParam<std::pair<std::string, bool>>
{
};

TEST_P(WebAssetsViewPath, TheViewsAndNothingElse)
{
    EXPECT_EQ(WebAssets::isViewPath(GetParam().first), GetParam().second) << GetParam().first;
}

INSTANTIATE_TEST_SUITE_P(Paths, WebAssetsViewPath,
    ::testing::Values(std::make_pair("/", true), std::make_pair("/batches", true),
        std::make_pair("/nodes", true), std::make_pair("/batches/7", true),
        std::make_pair("/batches/4294967295", true), std::make_pair("/batches/", false),
        std::make_pair("/batches/x", false), std::make_pair("/batches/12345678901", false),
        std::make_pair("/batches/7/", false), std::make_pair("/nodes/3", false),
        std::make_pair("/index.html", false), std::make_pair("", false)));

TEST(WebAssets, ContentTypes)
{
    EXPECT_EQ(WebAssets::contentType("index.html"), "text/html; charset=utf-8");
    EXPECT_EQ(WebAssets::contentType("assets/app.js"), "text/javascript; charset=utf-8");
    EXPECT_EQ(WebAssets::contentType("assets/app.css"), "text/css; charset=utf-8");
    EXPECT_EQ(WebAssets::contentType("assets/lang/ja.json"), "application/json");
    EXPECT_EQ(WebAssets::contentType("assets/icon.svg"), "image/svg+xml");
    EXPECT_EQ(WebAssets::contentType("assets/data.bin"), "application/octet-stream");
}

TEST(WebAssets, TheBuiltInPageAnswersEveryViewAndHasItsFiles)
{
    const WebAssets assets = WebAssets::embedded();
    for (const std::string path : {"/", "/batches", "/nodes", "/batches/12"}) {
        const std::optional<ApiResponse> page = assets.respond(path);
        ASSERT_TRUE(page) << path;
        EXPECT_EQ(page->contentType, "text/html; charset=utf-8");
        EXPECT_EQ(page->body.rfind("<!doctype html>\n", 0), 0u);
        EXPECT_NE(
            page->body.find("<script type=\"module\" src=\"/assets/app.js\"></script>"), std::string::npos);
    }
    const std::optional<ApiResponse> script = assets.respond("/assets/app.js");
    ASSERT_TRUE(script);
    EXPECT_GT(script->body.size(), 1000u);
    for (const char* language : {"en", "de", "ru", "fr", "es", "ja", "zh_CN"}) {
        const std::optional<ApiResponse> catalogue
            = assets.respond(std::string("/assets/lang/") + language + ".json");
        ASSERT_TRUE(catalogue) << language;
        EXPECT_EQ(catalogue->body.rfind(std::string("{\"language\":\"") + language + "\"", 0), 0u)
            << language;
    }
    EXPECT_FALSE(assets.respond("/assets/nothing.js"));
    EXPECT_FALSE(assets.respond("/assets/"));
}

TEST(WebAssets, AFolderServesItsFilesAndNothingOutsideThem)
{
    TempDirectory dir;
    ASSERT_TRUE(dir.makeDirectory("page"));
    ASSERT_TRUE(dir.makeDirectory("page/assets"));
    dir.writeFile("page/index.html", "<!doctype html>\n<title>dev</title>\n");
    dir.writeFile("page/assets/app.js", "console.log(1);\n");
    dir.writeFile("page/assets/.env", "secret\n");
    dir.writeFile("secret.txt", "secret\n");
    std::string error;
    const std::optional<WebAssets> assets = WebAssets::fromDirectory(dir.path("page"), error);
    ASSERT_TRUE(assets) << error;
    EXPECT_EQ(assets->respond("/nodes")->body, "<!doctype html>\n<title>dev</title>\n");
    EXPECT_EQ(assets->respond("/assets/app.js")->body, "console.log(1);\n");
    EXPECT_EQ(assets->respond("/assets/app.js")->contentType, "text/javascript; charset=utf-8");
    // Changed on disk, served as it is now.
    dir.writeFile("page/assets/app.js", "console.log(2);\n");
    EXPECT_EQ(assets->respond("/assets/app.js")->body, "console.log(2);\n");
    for (const std::string path : {"/assets/../../secret.txt", "/assets/%2e%2e/secret.txt", "/assets/.env",
             "/assets//app.js", "/assets/app.js/", "/index.html", "/secret.txt", "/assets/app.js?x=1"})
        EXPECT_FALSE(assets->respond(path)) << path;
}

TEST(WebAssets, AFolderWithoutThePageIsRefused)
{
    TempDirectory dir;
    std::string error;
    EXPECT_FALSE(WebAssets::fromDirectory(dir.path(), error));
    EXPECT_EQ(error,
        "--web.assets-dir " + dir.path() + " has no index.html (the build writes the page to build/web-ui)");
}
