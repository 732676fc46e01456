#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "apimessage.h"

// The browser application's files: the ones built into the program, or,
// while developing, the same names read from a folder at each request.
// The page itself answers for every view's address (/, /batches, /nodes,
// /batches/{id}), so a link or a bookmark opens the view it names.
class WebAssets final
{
public:
    struct EmbeddedFile
    {
        const char* name;
        const unsigned char* data;
        std::size_t size;
    };

    // The files built into the program.
    static WebAssets embedded();
    // The files of a folder as the build writes them (index.html, assets/...);
    // nothing, with the reason, when the folder has no index.html.
    static std::optional<WebAssets> fromDirectory(std::string directory, std::string& error);

    // The answer to a GET of path, or nothing when the path is not the
    // application's.
    std::optional<ApiResponse> respond(const std::string& path) const;

    // "text/javascript; charset=utf-8" for "app.js"; octet-stream when unknown.
    static std::string contentType(const std::string& name);
    // Whether the path is one of the application's views, which the page serves.
    static bool isViewPath(const std::string& path);

private:
    WebAssets() = default;
    std::optional<std::string> read(const std::string& name) const;

    // The built-in files, where the program holds them.
    std::map<std::string, std::string_view> m_files;
    std::string m_directory;
};

// Generated at build time from the built application.
const WebAssets::EmbeddedFile* embeddedWebFiles(std::size_t& count);
