#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <QObject>
#include <QString>

#include "controlclient.h"
#include "metatypes.h"
#include "mutex.h"

// One command queued by the user interface for the worker's next turn.
struct MonitorCommand
{
    int type = 0;
    std::uint32_t id = 0;
    int priority = 0;
};

// Talks to the server for the monitor panel, on a thread of its own. run()
// lives for a whole connection: it connects, then once a second carries out
// the queued commands and polls the batches, the nodes and, while a details
// dialog follows one, that batch's status. Results go out as signals carrying
// copies of the records; the panel receives them queued.
//
// The command queue and the followed batch are the only state shared with
// the user-interface thread, both under `mutex`. The lock is held while a
// turn's commands run, so enqueueCommand() may wait for them.
class MonitorWorker final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MonitorWorker)

public:
    enum CommandType
    {
        Stop = 0,
        PauseNode = 1,
        StopNode = 2,
        ResumeNode = 3,
        PauseBatch = 4,
        AbortBatch = 5,
        ResumeBatch = 6,
        SetBatchPriority = 7,
        SetNodePriority = 8,
    };

    MonitorWorker();
    ~MonitorWorker() override;

    // Server address as typed (a ":port" suffix overrides port) and port.
    // Written by the panel only while the worker's thread is not running.
    std::string host;
    int port = 0;

    void enqueueCommand(int type, std::uint32_t id, int priority);
    // The batch whose status is polled; ControlClient::NoId for none.
    void setStatusBatch(std::uint32_t batchId);
    // A copy of the commands waiting for the next turn, oldest first. Takes
    // the lock, so it waits while a turn's commands run.
    std::vector<MonitorCommand> queuedCommands() const;

    // For the end of the program: makes the running turn fail at once, even
    // inside a request to a server that never answers, and ends run()
    // without an error. Takes no lock that a turn holds; safe on any thread.
    // The worker does not connect again afterwards.
    void abort();

signals:
    void batchesUpdated(const ControlClient::BatchList& info);
    void nodesUpdated(const ControlClient::NodeList& info);
    void batchStatusUpdated(const ControlClient::BatchStatus& status);
    void finished();
    void error(const QString& message);

public slots:
    void run();
    // Queues the stop command; runs on the caller's thread (direct connection).
    void disconnect();

private:
    void carryOut(ControlClient& client, const MonitorCommand& command);
    void publishSocket(const ControlClient& client);
    void withdrawSocket();
    bool isAborted();
    void sleepOneSecond();

    std::vector<MonitorCommand> commands;
    std::uint32_t statusBatchId = ControlClient::NoId;
    mutable Mutex mutex;

    std::mutex abortLock;
    bool aborted = false;
    int abortSocket = -1;
    int wakePipe[2] = {-1, -1};
};
