#include "collectmode.h"

namespace {

struct Named
{
    CollectMode mode;
    const char* name;
};

const Named Modes[] = {{CollectMode::Unfinished, "unfinished"}, {CollectMode::Working, "working"},
    {CollectMode::All, "all"}, {CollectMode::None, "none"}};

} // namespace

bool parseCollectMode(const std::string& word, CollectMode& mode)
{
    for (const Named& named : Modes) {
        if (word == named.name) {
            mode = named.mode;
            return true;
        }
    }
    return false;
}

const char* collectModeName(CollectMode mode)
{
    for (const Named& named : Modes) {
        if (named.mode == mode)
            return named.name;
    }
    return "unfinished";
}
