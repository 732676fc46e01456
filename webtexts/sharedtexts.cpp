#include "sharedtexts.h"

#include "celltext.h"

namespace {

template <typename Cells>
void addMonitorTexts(std::vector<SharedText>& texts, const Cells& cells)
{
    for (const QString& text : cells)
        texts.push_back({"Monitor", text.toUtf8(), {}});
}

} // namespace

std::vector<SharedText> sharedTexts()
{
    std::vector<SharedText> texts;
    addMonitorTexts(texts, batchHeaders());
    addMonitorTexts(texts, nodeHeaders());
    std::vector<QString> priorities;
    for (int priority = 2; priority >= -2; --priority)
        priorities.push_back(priorityWord(priority));
    addMonitorTexts(texts, priorities);

    const std::vector<SharedText> named = {
        {"Monitor", "Waiting...", {}},
        {"Monitor", "Pause", {}},
        {"Monitor", "Resume", {}},
        {"Monitor", "Abort", {}},
        {"Monitor", "Stop", {}},
        {"Monitor", "Set Priority", {}},
        {"Monitor", "Details...", {}},
        {"Monitor", "Batches", {}},
        {"TaskStatusWidget", "%1/%2 completed", {}},
        {"TaskStatusWidget", "%1/%2 nodes active", {}},
        {"TaskStatusWidget", "%1 failures", {}},
        {"TaskStatusWidget", "Waiting...", {}},
        {"TaskStatusWidget", "elapsed", {}},
        {"TaskStatusWidget", "left", {}},
        {"TaskStatusWidget", "%1%", "progress in percent"},
        {"BatchDetailsDialog", "Batch Details", {}},
        {"BatchDetailsDialog", "Project:", {}},
        {"BatchDetailsDialog", "Last error:", {}},
        {"BatchDetailsDialog", "Tasks", {}},
        {"Errors", "Disconnected from server", {}},
    };
    texts.insert(texts.end(), named.begin(), named.end());
    return texts;
}
