#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

// A request and its response as the API sees them, whatever the HTTP
// server: the routes and rules are written once, against these.
struct ApiRequest
{
    std::string method;
    // The path without its query, as sent (not decoded).
    std::string path;
    // name -> value of the query, decoded.
    std::map<std::string, std::string> query;
    // Header names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
    // The peer's address as numbers, without the port.
    std::string remote;
    bool remoteIsLoopback = false;
    bool tls = false;

    // The header's value, empty when absent.
    const std::string& header(const std::string& lowerCaseName) const;
};

struct ApiResponse
{
    int status = 200;
    std::string contentType = "application/json";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
};
