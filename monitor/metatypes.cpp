#include "metatypes.h"

void registerRecordMetaTypes()
{
    static const bool registered = [] {
        qRegisterMetaType<ControlClient::BatchList>("ControlClient::BatchList");
        qRegisterMetaType<ControlClient::NodeList>("ControlClient::NodeList");
        qRegisterMetaType<ControlClient::BatchStatus>("ControlClient::BatchStatus");
        return true;
    }();
    (void)registered;
}
