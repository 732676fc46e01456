#pragma once

#include <QMetaType>

#include "controlclient.h"

// The records travel from the worker thread to the widgets by value in
// queued signals.
Q_DECLARE_METATYPE(ControlClient::BatchList)
Q_DECLARE_METATYPE(ControlClient::NodeList)
Q_DECLARE_METATYPE(ControlClient::BatchStatus)

// Registers the three record types under their names; safe to call often.
void registerRecordMetaTypes();
