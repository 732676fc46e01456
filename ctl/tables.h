#pragma once

#include <string>
#include <vector>

#include <QDate>
#include <QString>

#include "controlclient.h"

// Terminal text of the records, built from the monitor's own cell texts
// (celltext.h) so that a row reads the same as in the window. Output is UTF-8.

// Left-aligned columns two spaces apart under a header line; no trailing spaces.
std::string formatTable(const std::vector<QString>& headers, const std::vector<std::vector<QString>>& rows);

std::string batchTable(const ControlClient::BatchList& batches);
std::string nodeTable(const ControlClient::NodeList& nodes, const QDate& today);

// "Project: PATH", then per task the header and (indented) footer lines of the
// task status display, then "Last error: " and the error line if there is one.
std::string statusText(const ControlClient::BatchStatus& status, const QDate& today);
