#include "webassets.h"

#include <fstream>
#include <iterator>

namespace {

const std::string AssetPrefix = "/assets/";

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A file name under assets/ as the build makes them: no "..", no hidden
// files, nothing a folder read could be tricked by.
bool isAssetName(const std::string& name)
{
    if (name.empty() || name.front() == '/' || name.back() == '/')
        return false;
    if (name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-/")
        != std::string::npos)
        return false;
    return name.front() != '.' && name.find("/.") == std::string::npos
        && name.find("//") == std::string::npos;
}

} // namespace

WebAssets WebAssets::embedded()
{
    WebAssets assets;
    std::size_t count = 0;
    const EmbeddedFile* files = embeddedWebFiles(count);
    for (std::size_t i = 0; i < count; ++i)
        assets.m_files.emplace(
            files[i].name, std::string_view(reinterpret_cast<const char*>(files[i].data), files[i].size));
    return assets;
}

std::optional<WebAssets> WebAssets::fromDirectory(std::string directory, std::string& error)
{
    if (!std::ifstream(directory + "/index.html")) {
        error = "--web.assets-dir " + directory
            + " has no index.html (the build writes the page to build/web-ui)";
        return std::nullopt;
    }
    WebAssets assets;
    assets.m_directory = std::move(directory);
    return assets;
}

std::optional<std::string> WebAssets::read(const std::string& name) const
{
    if (m_directory.empty()) {
        const auto found = m_files.find(name);
        if (found == m_files.end())
            return std::nullopt;
        return std::string(found->second);
    }
    std::ifstream file(m_directory + "/" + name, std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

bool WebAssets::isViewPath(const std::string& path)
{
    if (path == "/" || path == "/batches" || path == "/nodes")
        return true;
    const std::string batch = "/batches/";
    if (path.compare(0, batch.size(), batch) != 0)
        return false;
    const std::string id = path.substr(batch.size());
    return !id.empty() && id.size() <= 10 && id.find_first_not_of("0123456789") == std::string::npos;
}

std::string WebAssets::contentType(const std::string& name)
{
    static const std::pair<const char*, const char*> Types[] = {{".html", "text/html; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"}, {".css", "text/css; charset=utf-8"},
        {".json", "application/json"}, {".svg", "image/svg+xml"}, {".png", "image/png"}};
    for (const auto& [ending, type] : Types) {
        if (endsWith(name, ending))
            return type;
    }
    return "application/octet-stream";
}

std::optional<ApiResponse> WebAssets::respond(const std::string& path) const
{
    std::string name;
    if (isViewPath(path))
        name = "index.html";
    else if (path.compare(0, AssetPrefix.size(), AssetPrefix) == 0 && isAssetName(path.substr(1)))
        name = path.substr(1);
    else
        return std::nullopt;
    std::optional<std::string> body = read(name);
    if (!body)
        return std::nullopt;
    ApiResponse response;
    response.contentType = contentType(name);
    response.body = std::move(*body);
    return response;
}
