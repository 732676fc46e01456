#pragma once

#include "controlclient.h"

// One reading of the farm: both lists, or up false when either request failed.
struct FarmSnapshot
{
    bool up = false;
    ControlClient::BatchList batches;
    ControlClient::NodeList nodes;
};
