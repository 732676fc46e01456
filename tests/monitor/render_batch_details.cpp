// Renders the "Batch Details" dialog of a working batch to a PNG for the
// documentation:  render_batch_details docs/batch-details.png
// Run it with QT_QPA_PLATFORM=offscreen.

#include <cstdio>

#include <QApplication>
#include <QDateTime>
#include <QPixmap>

#include "batchdetailsdialog.h"
#include "taskdisplaynames.h"

namespace {

ControlClient::TaskInfo task(const char* name, ControlClient::Status status)
{
    ControlClient::TaskInfo info;
    info.name = name;
    info.status = status;
    return info;
}

ControlClient::BatchStatus workingBatch()
{
    ControlClient::BatchStatus status;
    status.path = "/srv/projects/harbour-survey/harbour.kproj";
    status.status = ControlClient::InProgress;

    ControlClient::TaskInfo align = task("AlignCameras", ControlClient::Completed);
    align.progress = 100;
    align.timeElapsed = 12 * 60 + 5;
    align.itemsTotal = 40;
    align.itemsDone = 40;

    ControlClient::TaskInfo dense = task("BuildDenseCloud", ControlClient::InProgress);
    dense.progress = 42.7;
    dense.timeElapsed = 25 * 60 + 31;
    dense.timeLeft = 34 * 60 + 10;
    dense.itemsTotal = 40;
    dense.itemsDone = 17;
    dense.nodesActive = 3;
    dense.nodesWaiting = 1;
    dense.nodesFailed = 1;

    ControlClient::TaskInfo model = task("BuildModel", ControlClient::Pending);
    model.itemsTotal = 8;

    status.tasks = {align, dense, model};
    status.lastError.time
        = std::uint32_t(QDateTime(QDate::currentDate(), QTime(14, 3, 9)).toSecsSinceEpoch());
    status.lastError.nodeId = 3;
    status.lastError.message = "Not enough memory to build depth maps for chunk 2";
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: render_batch_details OUTPUT.png\n");
        return 2;
    }
    initTaskDisplayNames();

    BatchDetailsDialog dialog(nullptr);
    dialog.setBatchStatus(workingBatch());
    // somewhat larger than the opening size, as a user would pull it, so
    // that the three rows and the long header fit
    dialog.resize(480, 400);
    dialog.show();
    QApplication::processEvents();

    if (!dialog.grab().save(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "can't write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
