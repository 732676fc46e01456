#include "monitor.h"

#include <QCursor>
#include <QDate>
#include <QHeaderView>
#include <QMenu>
#include <QMessageBox>
#include <QSettings>

#include "batchdetailsdialog.h"
#include "celltext.h"
#include "contextmenukey.h"
#include "currentrowannouncer.h"
#include "metatypes.h"
#include "serveraddress.h"
#include "taskdisplaynames.h"
#include "threadhandover.h"
#include "treerows.h"

Monitor::Monitor(QWidget* parent)
    : QWidget(parent)
{
    ui.setupUi(this);
    // screen readers walk the children in their order: batches first, as on the screen
    ui.treeBatches->stackUnder(ui.treeNodes);

    QSettings settings;
    ui.editHost->setText(settings.value(QStringLiteral("main/network_host"), QString()).toString());
    ui.spinPort->setValue(settings.value(QStringLiteral("main/network_port"), DefaultServerPort).toInt());

    for (QTreeWidget* tree : {ui.treeBatches, ui.treeNodes}) {
        tree->setRootIsDecorated(false);
        tree->setContextMenuPolicy(Qt::CustomContextMenu);
        // every row is one line of text; saying so spares the view from
        // measuring each row when thousands change at once
        tree->setUniformRowHeights(true);
        new ContextMenuKey(tree);
    }
    batchAnnouncer = new CurrentRowAnnouncer(ui.treeBatches);
    nodeAnnouncer = new CurrentRowAnnouncer(ui.treeNodes);

    connect(ui.treeNodes, &QWidget::customContextMenuRequested, this, &Monitor::onContextMenuNodes);
    connect(ui.treeBatches, &QWidget::customContextMenuRequested, this, &Monitor::onContextMenuBatches);
    connect(ui.buttonConnect, &QPushButton::clicked, this, &Monitor::onConnectClicked);

    registerRecordMetaTypes();

    connect(&worker, &MonitorWorker::batchesUpdated, this, &Monitor::updateBatches);
    connect(&worker, &MonitorWorker::nodesUpdated, this, &Monitor::updateNodes);
    connect(&worker, &MonitorWorker::error, this, &Monitor::error);
    connect(this, &Monitor::disconnected, &worker, &MonitorWorker::disconnect, Qt::DirectConnection);
    connect(&thread, &QThread::started, &worker, &MonitorWorker::run);
    connect(&worker, &MonitorWorker::finished, &thread, &QThread::quit);
    connect(&thread, &QThread::finished, this, &Monitor::finish);

    worker.moveToThread(&thread);
    connected = false;

    setHeaders();
    batchRows = std::make_unique<TreeRows>(ui.treeBatches);
    nodeRows = std::make_unique<TreeRows>(ui.treeNodes);

    initTaskDisplayNames();
}

Monitor::~Monitor() = default;

void Monitor::setHeaders()
{
    const int d = ui.treeBatches->header()->defaultSectionSize();

    const BatchCells batchTitles = batchHeaders();
    ui.treeBatches->setHeaderLabels(QStringList(batchTitles.begin(), batchTitles.end()));
    const int batchWidths[BatchColumnCount]
        = {d / 2, d * 5 / 4, d * 5 / 4, d * 3 / 4, d * 3 / 4, d * 2, d * 5 / 4, d * 3 / 4, d * 3 / 4};
    for (int column = 0; column < BatchColumnCount; ++column)
        ui.treeBatches->setColumnWidth(column, batchWidths[column]);

    const NodeCells nodeTitles = nodeHeaders();
    ui.treeNodes->setHeaderLabels(QStringList(nodeTitles.begin(), nodeTitles.end()));
    const int nodeWidths[NodeColumnCount]
        = {d / 2, d * 5 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4};
    for (int column = 0; column < NodeColumnCount; ++column)
        ui.treeNodes->setColumnWidth(column, nodeWidths[column]);
}

bool Monitor::shutdown(int timeoutMs)
{
    if (!thread.isRunning())
        return true;
    worker.abort();
    return waitForThread(QDeadlineTimer(timeoutMs));
}

bool Monitor::waitForThread(QDeadlineTimer deadline)
{
    // The worker's finished() reaches quit() through this thread's event
    // loop, which does not run while we wait here; quitting now is the same.
    thread.quit();
    if (!thread.wait(deadline))
        return false;
    takeHandOver();
    return true;
}

void Monitor::connectTo(const QString& host, int port)
{
    ui.editHost->setText(host);
    if (port >= 0)
        ui.spinPort->setValue(port);
    if (!connected)
        onConnectClicked();
}

void Monitor::updateBatches(const ControlClient::BatchList& info)
{
    takeHandOver();
    batchRows->showBatches(info);
    batchAnnouncer->refresh();
}

void Monitor::updateNodes(const ControlClient::NodeList& info)
{
    takeHandOver();
    nodeRows->showNodes(info, QDate::currentDate());
    nodeAnnouncer->refresh();
}

void Monitor::error(const QString& message)
{
    takeHandOver();
    QMessageBox::warning(this, QStringLiteral("Korvane Monitor"), message, QMessageBox::Ok);
}

void Monitor::finish()
{
    takeHandOver();
    connected = false;
    ui.buttonConnect->setText(tr("Connect"));
}

void Monitor::onConnectClicked()
{
    if (connected) {
        emit disconnected();
        return;
    }

    // a previous connection may still be winding down
    waitForThread(QDeadlineTimer(QDeadlineTimer::Forever));

    const QString host = ui.editHost->text();
    const int port = ui.spinPort->value();
    {
        // written out here, before the connection starts
        QSettings settings;
        settings.setValue(QStringLiteral("main/network_host"), host);
        settings.setValue(QStringLiteral("main/network_port"), port);
    }

    worker.host = host.toStdString();
    worker.port = port;

    thread.start(QThread::InheritPriority);
    ui.buttonConnect->setText(tr("Disconnect"));
    connected = true;
}

void Monitor::onContextMenuBatches(const QPoint& pos)
{
    QTreeWidgetItem* item = ui.treeBatches->itemAt(pos);
    if (!item)
        return;
    selectedBatchId = item->data(0, Qt::UserRole).toUInt();

    QMenu menu;
    menu.addAction(tr("Pause"), this, &Monitor::onContextPauseBatch);
    menu.addAction(tr("Resume"), this, &Monitor::onContextResumeBatch);
    menu.addAction(tr("Abort"), this, &Monitor::onContextAbortBatch);
    QMenu* priority = menu.addMenu(tr("Set Priority"));
    priority->addAction(tr("Highest"), this, &Monitor::onContextBatchPriorityHighest);
    priority->addAction(tr("High"), this, &Monitor::onContextBatchPriorityHigh);
    priority->addAction(tr("Normal"), this, &Monitor::onContextBatchPriorityNormal);
    priority->addAction(tr("Low"), this, &Monitor::onContextBatchPriorityLow);
    priority->addAction(tr("Lowest"), this, &Monitor::onContextBatchPriorityLowest);
    menu.addSeparator();
    menu.addAction(tr("Details..."), this, &Monitor::onContextBatchDetails);
    menu.exec(QCursor::pos());
}

void Monitor::onContextMenuNodes(const QPoint& pos)
{
    QTreeWidgetItem* item = ui.treeNodes->itemAt(pos);
    if (!item)
        return;
    selectedNodeId = item->data(0, Qt::UserRole).toUInt();

    QMenu menu;
    menu.addAction(tr("Pause"), this, &Monitor::onContextPauseNode);
    menu.addAction(tr("Resume"), this, &Monitor::onContextResumeNode);
    menu.addAction(tr("Stop"), this, &Monitor::onContextStopNode);
    QMenu* priority = menu.addMenu(tr("Set Priority"));
    priority->addAction(tr("Highest"), this, &Monitor::onContextNodePriorityHighest);
    priority->addAction(tr("High"), this, &Monitor::onContextNodePriorityHigh);
    priority->addAction(tr("Normal"), this, &Monitor::onContextNodePriorityNormal);
    priority->addAction(tr("Low"), this, &Monitor::onContextNodePriorityLow);
    priority->addAction(tr("Lowest"), this, &Monitor::onContextNodePriorityLowest);
    menu.exec(QCursor::pos());
}

void Monitor::onContextPauseNode()
{
    worker.enqueueCommand(MonitorWorker::PauseNode, selectedNodeId, 0);
}

void Monitor::onContextResumeNode()
{
    worker.enqueueCommand(MonitorWorker::ResumeNode, selectedNodeId, 0);
}

void Monitor::onContextStopNode()
{
    worker.enqueueCommand(MonitorWorker::StopNode, selectedNodeId, 0);
}

void Monitor::onContextPauseBatch()
{
    worker.enqueueCommand(MonitorWorker::PauseBatch, selectedBatchId, 0);
}

void Monitor::onContextResumeBatch()
{
    worker.enqueueCommand(MonitorWorker::ResumeBatch, selectedBatchId, 0);
}

void Monitor::onContextAbortBatch()
{
    worker.enqueueCommand(MonitorWorker::AbortBatch, selectedBatchId, 0);
}

void Monitor::onContextBatchDetails()
{
    BatchDetailsDialog dialog(this);
    connect(&worker, &MonitorWorker::batchStatusUpdated, &dialog, &BatchDetailsDialog::setBatchStatus);
    worker.setStatusBatch(selectedBatchId);
    dialog.exec();
    worker.setStatusBatch(ControlClient::NoId);
}

void Monitor::onContextBatchPriorityHighest()
{
    worker.enqueueCommand(MonitorWorker::SetBatchPriority, selectedBatchId, 2);
}

void Monitor::onContextBatchPriorityHigh()
{
    worker.enqueueCommand(MonitorWorker::SetBatchPriority, selectedBatchId, 1);
}

void Monitor::onContextBatchPriorityNormal()
{
    worker.enqueueCommand(MonitorWorker::SetBatchPriority, selectedBatchId, 0);
}

void Monitor::onContextBatchPriorityLow()
{
    worker.enqueueCommand(MonitorWorker::SetBatchPriority, selectedBatchId, -1);
}

void Monitor::onContextBatchPriorityLowest()
{
    worker.enqueueCommand(MonitorWorker::SetBatchPriority, selectedBatchId, -2);
}

void Monitor::onContextNodePriorityHighest()
{
    worker.enqueueCommand(MonitorWorker::SetNodePriority, selectedNodeId, 2);
}

void Monitor::onContextNodePriorityHigh()
{
    worker.enqueueCommand(MonitorWorker::SetNodePriority, selectedNodeId, 1);
}

void Monitor::onContextNodePriorityNormal()
{
    worker.enqueueCommand(MonitorWorker::SetNodePriority, selectedNodeId, 0);
}

void Monitor::onContextNodePriorityLow()
{
    worker.enqueueCommand(MonitorWorker::SetNodePriority, selectedNodeId, -1);
}

void Monitor::onContextNodePriorityLowest()
{
    worker.enqueueCommand(MonitorWorker::SetNodePriority, selectedNodeId, -2);
}
