#pragma once

#include <string>

#include "farmsnapshot.h"

// The farm as Prometheus metrics in the text exposition format, each family
// with its HELP and TYPE lines. korvane_up comes first; without a reading
// (up false) it is the only family. Batches that are completed, aborted or
// ready are left out unless allBatches is set, so that the series stay
// bounded while finished batches pile up on the server.
void writeFarmMetrics(const FarmSnapshot& farm, bool allBatches, std::string& out);

// korvane_scrape_duration_seconds, written last, once the rest is written.
void writeScrapeDuration(double seconds, std::string& out);

// The lower-case status words of the label values, as the monitor shows the
// statuses ("working" for in progress).
const char* statusLabel(int status);
