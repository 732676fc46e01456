#include "monitorworker.h"

#include <chrono>
#include <fcntl.h>
#include <iostream>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>

#include "alternatesignalstack.h"
#include "threadhandover.h"

namespace {

QString errorText(const char* text)
{
    return QCoreApplication::translate("Errors", text);
}

void report(const char* line)
{
    std::cout << line << std::endl;
}

} // namespace

MonitorWorker::MonitorWorker()
{
    if (::pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        wakePipe[0] = wakePipe[1] = -1;
}

MonitorWorker::~MonitorWorker()
{
    withdrawSocket();
    for (int descriptor : wakePipe)
        if (descriptor != -1)
            ::close(descriptor);
}

void MonitorWorker::enqueueCommand(int type, std::uint32_t id, int priority)
{
    std::lock_guard<Mutex> lock(mutex);
    commands.push_back({type, id, priority});
}

void MonitorWorker::setStatusBatch(std::uint32_t batchId)
{
    std::lock_guard<Mutex> lock(mutex);
    statusBatchId = batchId;
}

std::vector<MonitorCommand> MonitorWorker::queuedCommands() const
{
    std::lock_guard<Mutex> lock(mutex);
    return commands;
}

void MonitorWorker::disconnect()
{
    enqueueCommand(Stop, 0, 0);
}

void MonitorWorker::abort()
{
    std::lock_guard<std::mutex> lock(abortLock);
    aborted = true;
    // A shut-down duplicate makes the client's blocked send or recv return
    // at once; the client then closes its own descriptor as on any loss.
    if (abortSocket != -1)
        ::shutdown(abortSocket, SHUT_RDWR);
    // wakes the pause between turns; the pipe stays readable from now on
    if (wakePipe[1] != -1)
        (void)!::write(wakePipe[1], "x", 1);
}

void MonitorWorker::run()
{
    // A stack overflow on this thread must still end in a crash report.
    const AlternateSignalStack signalStack;

    {
        std::lock_guard<Mutex> lock(mutex);
        commands.clear();
    }

    {
        ControlClient client;
        if (!client.init()) {
            report("can't initialize network client");
            markHandOver();
            emit error(errorText(QT_TRANSLATE_NOOP("Errors", "Network failure")));
        } else if (isAborted() || !client.connect(host, port)) {
            report("can't connect to server");
            markHandOver();
            emit error(errorText(QT_TRANSLATE_NOOP("Errors", "Can't connect to server")));
        } else {
            publishSocket(client);
            for (;;) {
                if (isAborted())
                    break;
                if (!client.isConnected()) {
                    markHandOver();
                    emit error(errorText(QT_TRANSLATE_NOOP("Errors", "Disconnected from server")));
                    break;
                }

                bool stop = false;
                std::uint32_t followedBatch = ControlClient::NoId;
                {
                    std::lock_guard<Mutex> lock(mutex);
                    followedBatch = statusBatchId;
                    for (const MonitorCommand& command : commands) {
                        if (command.type == Stop) {
                            stop = true;
                            break;
                        }
                        carryOut(client, command);
                    }
                    commands.clear();
                }
                if (stop || isAborted())
                    break;

                ControlClient::BatchList batches;
                if (!client.listBatches(batches))
                    report("can't get batch list");
                markHandOver();
                emit batchesUpdated(batches);

                ControlClient::NodeList nodes;
                if (!client.listNodes(nodes))
                    report("can't get node list");
                markHandOver();
                emit nodesUpdated(nodes);

                if (followedBatch != ControlClient::NoId) {
                    ControlClient::BatchStatus status;
                    if (client.getBatchStatus(followedBatch, status)) {
                        markHandOver();
                        emit batchStatusUpdated(status);
                    } else {
                        report("can't get batch status");
                    }
                }

                sleepOneSecond();
            }
            withdrawSocket();
        }
        markHandOver();
        emit finished();
    }
    // the client's last console line and everything else this run wrote
    markHandOver();
}

void MonitorWorker::carryOut(ControlClient& client, const MonitorCommand& command)
{
    switch (command.type) {
    case PauseNode:
        if (!client.pauseNode(command.id))
            report("can't pause node");
        break;
    case StopNode:
        client.stopNode(command.id, [](ControlClient::StopStep step) {
            report(step == ControlClient::StopStep::Pause ? "can't pause node" : "can't abort node");
            return true;
        });
        break;
    case ResumeNode:
        if (!client.resumeNode(command.id))
            report("can't resume node");
        break;
    case PauseBatch:
        if (!client.pauseBatch(command.id))
            report("can't pause batch");
        break;
    case AbortBatch:
        if (!client.abortBatch(command.id))
            report("can't abort batch");
        break;
    case ResumeBatch:
        if (!client.resumeBatch(command.id))
            report("can't resume batch");
        break;
    case SetBatchPriority:
        if (!client.setBatchPriority(command.id, command.priority))
            report("can't set batch priority");
        break;
    case SetNodePriority:
        if (!client.setNodePriority(command.id, command.priority))
            report("can't set node priority");
        break;
    default:
        // unknown types are skipped without a word
        break;
    }
}

void MonitorWorker::publishSocket(const ControlClient& client)
{
    std::lock_guard<std::mutex> lock(abortLock);
    abortSocket = ::dup(client.socketDescriptor());
    if (aborted && abortSocket != -1)
        ::shutdown(abortSocket, SHUT_RDWR);
}

void MonitorWorker::withdrawSocket()
{
    std::lock_guard<std::mutex> lock(abortLock);
    if (abortSocket != -1)
        ::close(abortSocket);
    abortSocket = -1;
}

bool MonitorWorker::isAborted()
{
    std::lock_guard<std::mutex> lock(abortLock);
    return aborted;
}

void MonitorWorker::sleepOneSecond()
{
    // poll() measures its time-out on the monotonic clock, so a change of
    // the system time does not stretch the pause
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    for (;;) {
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0 || isAborted())
            return;
        pollfd wake {wakePipe[0], POLLIN, 0};
        ::poll(&wake, wakePipe[0] == -1 ? 0 : 1, int(left.count()));
    }
}
