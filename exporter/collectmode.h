#pragma once

#include <string>

// Which batches get series of their own (--collect.batches).
enum class CollectMode
{
    // Pending, working and paused: bounded while finished batches pile up.
    Unfinished,
    Working,
    All,
    None,
};

// "unfinished", "working", "all" or "none"; false for any other word.
bool parseCollectMode(const std::string& word, CollectMode& mode);
const char* collectModeName(CollectMode mode);
