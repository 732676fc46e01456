#pragma once

#include <json/value.h>

#include "controlclient.h"

// The members of each record, in the order the client reads them: the one
// list of their keys and types. A visitor is shown each member and decides
// what to do with it; the client reads records with one
// (controlclientrecords.cpp), the exporter finds the member that will not
// read with another, korvane-ctl writes records back with a third.
//
// A visitor has, for each type T of a field (std::string, int,
// std::uint32_t, double, ParamMap, ControlClient::Status):
//   member(key, T& field)              a member;
//   member(key, T& field, T missing)   one that reads as missing when absent;
//   object(key, visitInside)           a member that is an object;
//   nullableObject(key, record, visitInside)
//                                      an object that may be null (an error
//                                      that never happened, time 0);
//   each(key, std::vector<R>& list, visitOne)
//                                      an array of records.
// Records are passed as Record& or const Record&, as the visitor needs.

// How the client reads a member of each type: jsoncpp's conversions, which
// raise its exception for a value of the wrong kind. Null reads as the
// type's zero.
void readMember(const Json::Value& value, std::string& field);
void readMember(const Json::Value& value, int& field);
void readMember(const Json::Value& value, std::uint32_t& field);
void readMember(const Json::Value& value, double& field);
void readMember(const Json::Value& value, ParamMap& field);
void readMember(const Json::Value& value, ControlClient::Status& field);

template <class Visitor, class Task>
void visitTaskMembers(Visitor& visit, Task& task)
{
    visit.member("name", task.name);
    visit.member("params", task.params);
    visit.member("status", task.status);
    visit.member("time_elapsed", task.timeElapsed);
    visit.member("time_left", task.timeLeft);
    visit.member("progress", task.progress);
    visit.member("items_total", task.itemsTotal);
    visit.member("items_done", task.itemsDone);
    visit.member("nodes_active", task.nodesActive);
    visit.member("nodes_waiting", task.nodesWaiting);
    visit.member("nodes_failed", task.nodesFailed);
}

template <class Visitor, class Batch>
void visitBatchMembers(Visitor& visit, Batch& batch)
{
    visit.member("batch_id", batch.batchId);
    visit.member("path", batch.path);
    visit.member("status", batch.status);
    visit.member("priority", batch.priority);
    visit.member("time_started", batch.timeStarted);
    visit.object("task", [&] { visitTaskMembers(visit, batch.task); });
}

template <class Visitor, class Node>
void visitNodeMembers(Visitor& visit, Node& node)
{
    visit.member("hostname", node.hostname);
    visit.member("node_id", node.nodeId);
    visit.member("version", node.version);
    visit.member("status", node.status);
    visit.member("priority", node.priority);
    // A node without a batch has no batch, progress or task members.
    visit.member("batch_id", node.batchId, ControlClient::NoId);
    visit.member("progress", node.progress, 0.0);
    visit.object("task", [&] {
        visit.member("name", node.taskName);
        visit.member("params", node.taskParams);
    });
    visit.member("error_count", node.errorCount, 0u);
    visit.nullableObject("last_error", node.lastError, [&] {
        visit.member("time", node.lastError.time);
        visit.member("batch_id", node.lastError.batchId);
        visit.member("message", node.lastError.message);
    });
}

template <class Visitor, class Status>
void visitBatchStatusMembers(Visitor& visit, Status& status)
{
    visit.member("path", status.path);
    visit.member("status", status.status);
    visit.member("priority", status.priority);
    visit.each("tasks", status.tasks, [&](auto& task) { visitTaskMembers(visit, task); });
    visit.nullableObject("last_error", status.lastError, [&] {
        visit.member("time", status.lastError.time);
        visit.member("node_id", status.lastError.nodeId);
        visit.member("message", status.lastError.message);
    });
}
