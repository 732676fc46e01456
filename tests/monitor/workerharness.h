#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QObject>
#include <QThread>

#include "monitorworker.h"
#include "threadhandover.h"

// Records what a worker signals, received on the test's own thread.
class WorkerRecorder final : public QObject
{
public:
    explicit WorkerRecorder(MonitorWorker& worker)
    {
        connect(&worker, &MonitorWorker::batchesUpdated, this, [this](const ControlClient::BatchList& list) {
            takeHandOver();
            events.push_back("batches:" + std::to_string(list.size()));
            lastBatches = list;
        });
        connect(&worker, &MonitorWorker::nodesUpdated, this, [this](const ControlClient::NodeList& list) {
            takeHandOver();
            events.push_back("nodes:" + std::to_string(list.size()));
            lastNodes = list;
        });
        connect(&worker, &MonitorWorker::batchStatusUpdated, this,
            [this](const ControlClient::BatchStatus& status) {
                takeHandOver();
                events.push_back("status:" + status.path);
            });
        connect(&worker, &MonitorWorker::error, this, [this](const QString& message) {
            takeHandOver();
            events.push_back("error:" + message.toStdString());
        });
        connect(&worker, &MonitorWorker::finished, this, [this] {
            takeHandOver();
            events.push_back("finished");
        });
    }

    int count(const std::string& event) const
    {
        int n = 0;
        for (const std::string& e : events)
            n += e == event;
        return n;
    }

    std::vector<std::string> events;
    ControlClient::BatchList lastBatches;
    ControlClient::NodeList lastNodes;
};

// A worker on its own thread, wired as the panel wires it, and what it signals.
class WorkerHarness final
{
public:
    WorkerHarness(const std::string& host, int port)
    {
        registerRecordMetaTypes();
        worker.host = host;
        worker.port = port;
        QObject::connect(&thread, &QThread::started, &worker, &MonitorWorker::run);
        QObject::connect(&worker, &MonitorWorker::finished, &thread, &QThread::quit);
        worker.moveToThread(&thread);
    }
    ~WorkerHarness()
    {
        if (thread.isRunning()) {
            worker.abort();
            thread.wait();
        }
    }

    void start() { thread.start(); }

    // The worker's finished() reaches the thread's quit() through this
    // thread's events, so they run while waiting.
    bool waitForEnd(int timeoutMs = 10000)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!thread.wait(QDeadlineTimer(10))) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents();
        }
        QCoreApplication::processEvents();
        takeHandOver();
        return true;
    }

    QThread thread;
    MonitorWorker worker;
    WorkerRecorder recorder {worker};
};
