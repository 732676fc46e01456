// The control tool's task file reader on arbitrary text. It must never
// throw: a bad file is a usage error with a reason, before any connection.
// What it accepts is a list of named tasks.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "clientconsole.h"
#include "fuzzinput.h"
#include "taskfile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ClientConsole::discard();

    const std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<ControlClient::TaskRequest> tasks;
    std::string error;
    bool accepted = false;
    try {
        accepted = tasksFromText(text, "tasks.json", tasks, error);
    } catch (...) {
        fuzzRequire(false, "the task file reader throws nothing");
    }
    if (accepted) {
        fuzzRequire(!tasks.empty(), "a list of at least one task");
        for (const ControlClient::TaskRequest& task : tasks)
            fuzzRequire(!task.name.empty(), "every task named");
    } else {
        fuzzRequire(error.rfind("tasks.json", 0) == 0 && error.find('\n') == std::string::npos,
            "one line naming the file");
    }
    return 0;
}
