#pragma once

#include <cstdint>
#include <memory>

#include <QDeadlineTimer>
#include <QThread>
#include <QWidget>

#include "controlclient.h"
#include "monitorworker.h"
#include "ui_monitor.h"

class CurrentRowAnnouncer;
class TreeRows;

// The panel the operator works in: host, port and Connect on top, the
// batches and the nodes below in a splitter.
//
// It owns the worker and the thread the worker runs on. Connect writes the
// server to the settings, hands host and port to the worker and starts the
// thread; the worker's run() then polls once a second and its signals arrive
// here queued, as copies of the records. Disconnect only asks the worker to
// stop (disconnected() reaches its disconnect() directly, on this thread);
// finish() returns the panel to "Connect" when the thread has ended, whatever
// ended it. Context-menu commands go to the worker's queue and take effect at
// its next turn.
class Monitor final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Monitor)

public:
    explicit Monitor(QWidget* parent);
    ~Monitor() override;

    // For the end of the program: ends a running connection and waits for
    // the worker's thread. Returns false if it did not end within timeoutMs.
    bool shutdown(int timeoutMs);

    // Fills in host and port (a negative port keeps the field) and presses
    // Connect, as the user would.
    void connectTo(const QString& host, int port);

    // The worker, to look at; it is driven only through the panel.
    const MonitorWorker& connectionWorker() const { return worker; }

signals:
    void disconnected();

public slots:
    void updateBatches(const ControlClient::BatchList& info);
    void updateNodes(const ControlClient::NodeList& info);
    void error(const QString& message);
    void finish();
    void onContextMenuNodes(const QPoint& pos);
    void onContextMenuBatches(const QPoint& pos);
    void onConnectClicked();
    void onContextPauseNode();
    void onContextResumeNode();
    void onContextStopNode();
    void onContextPauseBatch();
    void onContextResumeBatch();
    void onContextAbortBatch();
    void onContextBatchDetails();
    void onContextBatchPriorityHighest();
    void onContextBatchPriorityHigh();
    void onContextBatchPriorityNormal();
    void onContextBatchPriorityLow();
    void onContextBatchPriorityLowest();
    void onContextNodePriorityHighest();
    void onContextNodePriorityHigh();
    void onContextNodePriorityNormal();
    void onContextNodePriorityLow();
    void onContextNodePriorityLowest();

private:
    void setHeaders();
    // Waits for the worker's thread to end; false if the deadline passed first.
    bool waitForThread(QDeadlineTimer deadline);

    bool connected = false;
    std::uint32_t selectedNodeId = ControlClient::NoId;
    std::uint32_t selectedBatchId = ControlClient::NoId;
    QThread thread;
    MonitorWorker worker;
    Ui::Monitor ui;
    std::unique_ptr<TreeRows> batchRows;
    std::unique_ptr<TreeRows> nodeRows;
    // children of the trees
    CurrentRowAnnouncer* batchAnnouncer = nullptr;
    CurrentRowAnnouncer* nodeAnnouncer = nullptr;
};
