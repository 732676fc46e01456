#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "serveraddress.h"

enum class CtlCommand
{
    None,
    Batches,
    Nodes,
    Status,
    PauseBatch,
    ResumeBatch,
    AbortBatch,
    PauseNode,
    ResumeNode,
    StopNode,
    BatchPriority,
    NodePriority,
    Create,
    Find,
    Watch,
};

struct CtlOptions
{
    // Given to ControlClient::connect as they are: a ":PORT" after the host
    // overrides the port, as in the monitor's address field.
    std::string host = "127.0.0.1";
    int port = DefaultServerPort;
    // Longest time for the whole command, lookup and connect included, in
    // milliseconds (for watch: the connect and each round); -1 waits without
    // limit (--timeout 0).
    int timeoutMs = 10000;
    bool json = false;
    bool help = false;
    bool version = false;
    CtlCommand command = CtlCommand::None;
    std::vector<std::uint32_t> ids;
    int priority = 0;
    std::string path;
    std::string tasksFile;

    // "host:port" as the connection will use it.
    std::string address() const;
};

// Checks the whole command line (without the program name) before anything
// is sent. On a usage error returns false with a one-line reason.
bool parseCtlOptions(const std::vector<std::string>& args, CtlOptions& options, std::string& error);

// A batch or node id: decimal, 0 to 4294967295.
bool parseId(const std::string& text, std::uint32_t& id);
// highest high normal low lowest (any case), or -2 to 2.
bool parseLevel(const std::string& text, int& priority);
// Seconds, whole or decimal, from 0 to 86400, as milliseconds; 0 gives -1 (no limit).
bool parseTimeout(const std::string& text, int& timeoutMs);

std::string ctlHelpText();
