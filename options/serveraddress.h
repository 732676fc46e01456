#pragma once

#include <string>

// Addresses on the command lines of korvane-sim, korvane-ctl and
// korvane-exporter: one reading of ports, server addresses and listening
// addresses, and one wording of their usage errors.

// The port a processing server listens on unless told otherwise.
constexpr int DefaultServerPort = 5840;

// Up to five decimal digits, 0 to 65535; nothing else (no sign, no spaces).
bool parsePort(const std::string& text, int& port);

// HOST or HOST:PORT of a server, the port 1 to 65535. The text is given to
// ControlClient::connect as it is, which splits it again.
bool isServerAddress(const std::string& text);
// "not a HOST or HOST:PORT: " and the text
std::string badServerAddress(const std::string& text);

// The server as "host:port": the default port added where none is given.
std::string withDefaultPort(const std::string& server);

// HOST:PORT to listen on, an IPv6 host in brackets ("[::1]:10084"), an empty
// host for every address (":10084"); port 0 takes a free one.
bool parseListenAddress(const std::string& text, std::string& host, int& port);
// "not an ADDR:PORT: " and the text
std::string badListenAddress(const std::string& text);

// "not a port number: " and the text
std::string badPort(const std::string& text);
