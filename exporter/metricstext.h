#pragma once

#include <string>

#include "collectmode.h"
#include "farmsnapshot.h"

// The farm as Prometheus metrics in the text exposition format, each family
// with its HELP and TYPE lines. korvane_up comes first, then
// korvane_exporter_build_info; without a reading (up false) they are the only
// families.
//
// A series' labels never change while the node or batch lives: the texts
// (host, version, project, current task) are on one _info series each, the
// status is one 0/1 series per status word, and every other family carries
// the id alone, to be joined with the _info series by group_left. Which
// batches have series is up to the collect mode.
void writeFarmMetrics(const FarmSnapshot& farm, CollectMode batches, std::string& out);

// korvane_scrape_duration_seconds, written last, once the rest is written.
void writeScrapeDuration(double seconds, std::string& out);

// The lower-case status words of the label values, as the monitor shows the
// statuses ("working" for in progress).
const char* statusLabel(int status);
