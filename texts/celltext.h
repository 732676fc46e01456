#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <QDate>
#include <QString>

#include "controlclient.h"

// The texts the monitor shows for the server's records: the cells of the
// batch and node trees, the task lines of the details dialog, and the words
// and formats they share. The control tool prints the same texts, so a row
// reads the same in a terminal as in the window.

// Hours, minutes and seconds, each at least two digits: 3725.9 gives 01:02:05,
// 360000 gives 100:00:00. Fields keep their sign: -61 gives 00:-1:-1.
QString formatDuration(double seconds);

// "Pending", "Working", "Completed", "Paused", "Aborted"; empty for any other
// value, Ready included. Not translated.
QString batchStatusWord(int status);
// The same words and "Ready" for Ready.
QString nodeStatusWord(int status);
// "Highest" … "Lowest" for 2 … -2, translated; any other value as its number.
QString priorityWord(int priority);

// "[hh:mm:ss]" when the local date of the time is today, else "[dd.MM.yyyy hh:mm:ss]".
QString errorStamp(std::uint32_t time, const QDate& today);

// Local date and time as "yyyy-MM-dd hh:mm:ss".
QString startedText(std::uint32_t time);

// The part of a path after its last "/".
QString projectName(const std::string& path);

enum BatchColumn
{
    BatchColumnId,
    BatchColumnProject,
    BatchColumnStarted,
    BatchColumnStatus,
    BatchColumnPriority,
    BatchColumnTask,
    BatchColumnTimes,
    BatchColumnFailures,
    BatchColumnNodes,
    BatchColumnCount
};

enum NodeColumn
{
    NodeColumnId,
    NodeColumnHost,
    NodeColumnStatus,
    NodeColumnPriority,
    NodeColumnBatch,
    NodeColumnProgress,
    NodeColumnFailures,
    NodeColumnLastError,
    NodeColumnCount
};

using BatchCells = std::array<QString, BatchColumnCount>;
using NodeCells = std::array<QString, NodeColumnCount>;

// Header texts, translated in the "Monitor" context.
BatchCells batchHeaders();
NodeCells nodeHeaders();

BatchCells batchCells(const ControlClient::BatchInfo& batch);
NodeCells nodeCells(const ControlClient::NodeInfo& node, const QDate& today);

// The three parts of a task's progress display: "Align Photos (12/40
// completed, 3/4 nodes active, 2 failures)", the bar value, and "00:12:05
// elapsed, 01:30:00 left" or "Waiting...". An empty title falls back to the
// task's method name.
QString taskHeader(const QString& title, const ControlClient::TaskInfo& task);
QString taskFooter(const ControlClient::TaskInfo& task);
int taskProgressValue(const ControlClient::TaskInfo& task);
// The three read as one line, the bar as a percentage while it shows: what a
// screen reader says for a task's row.
QString taskRowText(const QString& title, const ControlClient::TaskInfo& task);
bool taskShowsBar(const ControlClient::TaskInfo& task);

// The details dialog's error line: the stamp, one space and the message.
QString batchErrorLine(const ControlClient::BatchError& error, const QDate& today);
