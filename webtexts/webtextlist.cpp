#include "webtextlist.h"

#include <QtGlobal>

const char* const webTextContext = "Web";

const std::vector<WebText>& webTexts()
{
    static const std::vector<WebText> texts = {
        {QT_TRANSLATE_NOOP("Web", "Views"), false},
        {QT_TRANSLATE_NOOP("Web", "Farm summary"), false},
        {QT_TRANSLATE_NOOP("Web", "data as of %1"), false},
        {QT_TRANSLATE_NOOP("Web", "Disconnected from server since %1 — showing the last known state"), false},
        {QT_TRANSLATE_NOOP("Web", "Connected to the server again"), false},
        {QT_TRANSLATE_NOOP("Web", "Signed in as %1 (%2)"), false},
        {QT_TRANSLATE_NOOP("Web", "No sign-in (%1)"), false},
        {QT_TRANSLATE_NOOP("Web", "viewer"), false},
        {QT_TRANSLATE_NOOP("Web", "operator"), false},
        {QT_TRANSLATE_NOOP("Web", "Language"), false},
        {QT_TRANSLATE_NOOP("Web", "Filter"), false},
        {QT_TRANSLATE_NOOP("Web", "All statuses"), false},
        {QT_TRANSLATE_NOOP("Web", "Search"), false},
        {QT_TRANSLATE_NOOP("Web", "Text in any column"), false},
        {QT_TRANSLATE_N_NOOP("Web", "%n selected"), true},
        {QT_TRANSLATE_NOOP("Web", "Clear selection"), false},
        {QT_TRANSLATE_NOOP("Web", "Actions"), false},
        {QT_TRANSLATE_NOOP("Web", "Actions for #%1"), false},
        {QT_TRANSLATE_N_NOOP("Web", "Pause %n batches: %1"), true},
        {QT_TRANSLATE_N_NOOP("Web", "Resume %n batches: %1"), true},
        {QT_TRANSLATE_N_NOOP("Web", "Abort %n batches: %1"), true},
        {QT_TRANSLATE_N_NOOP("Web", "Pause %n nodes: %1"), true},
        {QT_TRANSLATE_N_NOOP("Web", "Resume %n nodes: %1"), true},
        {QT_TRANSLATE_N_NOOP("Web", "Stop %n nodes: %1"), true},
        {QT_TRANSLATE_N_NOOP("Web", "Priority %1 for %n batches: %2"), true},
        {QT_TRANSLATE_N_NOOP("Web", "Priority %1 for %n nodes: %2"), true},
        {QT_TRANSLATE_NOOP("Web", "Confirm"), false},
        {QT_TRANSLATE_NOOP("Web", "Cancel"), false},
        {QT_TRANSLATE_NOOP("Web", "Close"), false},
        {QT_TRANSLATE_NOOP("Web", "Accepted"), false},
        {QT_TRANSLATE_NOOP("Web", "Refused: %1"), false},
        {QT_TRANSLATE_NOOP("Web", "No answer in time: %1"), false},
        {QT_TRANSLATE_NOOP("Web", "Server unreachable: %1"), false},
        {QT_TRANSLATE_NOOP("Web", "Not allowed: %1"), false},
        {QT_TRANSLATE_NOOP("Web", "No batches"), false},
        {QT_TRANSLATE_NOOP("Web", "No nodes"), false},
        {QT_TRANSLATE_NOOP("Web", "No batch matches the filter"), false},
        {QT_TRANSLATE_NOOP("Web", "No node matches the filter"), false},
        {QT_TRANSLATE_NOOP("Web", "Batch #%1"), false},
        {QT_TRANSLATE_NOOP("Web", "Back to the batch list"), false},
        {QT_TRANSLATE_NOOP("Web", "The farm has no batch #%1"), false},
        {QT_TRANSLATE_NOOP("Web", "Loading..."), false},
        {QT_TRANSLATE_NOOP("Web", "Shown: %1 of %2"), false},
        {QT_TRANSLATE_NOOP("Web", "Results"), false},
        {QT_TRANSLATE_NOOP("Web", "Sort by %1"), false},
        {QT_TRANSLATE_NOOP("Web", "Select"), false},
        {QT_TRANSLATE_NOOP("Web", "Light"), false},
        {QT_TRANSLATE_NOOP("Web", "Dark"), false},
        {QT_TRANSLATE_NOOP("Web", "Theme"), false},
        {QT_TRANSLATE_NOOP("Web", "Reconnecting..."), false},
    };
    return texts;
}
