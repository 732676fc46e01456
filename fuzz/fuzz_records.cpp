// The record readers on arbitrary JSON text: the text parsed as the client
// parses a reply, then handed to paramsFromJson and to every record reader.
// jsoncpp's own exceptions may come out, as the readers let them through;
// any other exception, a crash or a sanitizer's report is a defect.
#include <cstddef>
#include <cstdint>

#include <json/reader.h>

#include "clientconsole.h"
#include "controlclient.h"
#include "fuzzinput.h"
#include "paramjson.h"

namespace {

template <typename Read>
void allowJsonErrors(Read read)
{
    try {
        read();
    } catch (const Json::Exception&) { // NOLINT(bugprone-empty-catch): see below
        // a member of the wrong type: jsoncpp's conversion error, let through on purpose
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // "skipping json param" lines go nowhere
    ClientConsole::discard();

    Json::Value value;
    Json::Reader reader;
    const char* text = reinterpret_cast<const char*>(data);
    bool parsed = false;
    allowJsonErrors([&] { parsed = reader.parse(text, text + size, value, true); });
    if (!parsed)
        return 0;

    allowJsonErrors([&] { (void)paramsFromJson(value); });
    allowJsonErrors([&] { (void)ControlClient::statusFromJson(value); });
    allowJsonErrors([&] {
        ControlClient::BatchList batches;
        ControlClient::parseBatchList(value, batches);
    });
    allowJsonErrors([&] {
        ControlClient::NodeList nodes;
        ControlClient::parseNodeList(value, nodes);
    });
    allowJsonErrors([&] {
        ControlClient::BatchStatus status;
        ControlClient::parseBatchStatus(value, status);
    });
    allowJsonErrors([&] {
        ControlClient::TaskInfo task;
        ControlClient::parseTaskInfo(value, task);
    });
    allowJsonErrors([&] {
        ControlClient::BatchInfo batch;
        ControlClient::parseBatchInfo(value, batch);
    });
    allowJsonErrors([&] {
        ControlClient::NodeInfo node;
        ControlClient::parseNodeInfo(value, node);
    });
    return 0;
}
