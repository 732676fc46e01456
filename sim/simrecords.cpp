#include "simrecords.h"

const char* statusWireName(SimStatus status)
{
    switch (status) {
    case SimStatus::Pending:
        return "pending";
    case SimStatus::InProgress:
        return "inprogress";
    case SimStatus::Completed:
        return "completed";
    case SimStatus::Paused:
        return "paused";
    case SimStatus::Aborted:
        return "aborted";
    case SimStatus::Ready:
        return "ready";
    }
    return "pending";
}

SimStatus SimNode::status() const
{
    if (aborted)
        return SimStatus::Aborted;
    if (paused)
        return SimStatus::Paused;
    if (recovering > 0.0)
        return SimStatus::Pending;
    if (holdsItem())
        return SimStatus::InProgress;
    return SimStatus::Ready;
}

double SimNode::progress() const
{
    if (!holdsItem() || workTotal <= 0.0)
        return 0.0;
    const double done = (workTotal - workLeft) / workTotal * 100.0;
    return done < 0.0 ? 0.0 : (done > 100.0 ? 100.0 : done);
}
