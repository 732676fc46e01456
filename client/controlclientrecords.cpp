#include "controlclient.h"
#include "paramjson.h"
#include "recordmembers.h"

namespace {

// Wire strings by status value.
const char* const StatusNames[] = {"pending", "inprogress", "completed", "paused", "aborted", "ready"};

// Reads each member into the record as it is shown it. Members are looked up
// with operator[], so a record that is neither an object nor null raises
// jsoncpp's exception; a missing member reads as null does.
class RecordReader final
{
public:
    explicit RecordReader(const Json::Value& object)
        : m_object(&object)
    {
    }

    template <class T>
    void member(const char* key, T& field)
    {
        readMember((*m_object)[key], field);
    }

    template <class T>
    void member(const char* key, T& field, T missing)
    {
        readMember(m_object->get(key, Json::Value(missing)), field);
    }

    template <class Inside>
    void object(const char* key, Inside inside)
    {
        within((*m_object)[key], inside);
    }

    template <class Record, class Inside>
    void nullableObject(const char* key, Record& record, Inside inside)
    {
        record = Record();
        const Json::Value& value = (*m_object)[key];
        if (!value.isNull())
            within(value, inside);
    }

    template <class Record, class One>
    void each(const char* key, std::vector<Record>& list, One one)
    {
        const Json::Value& array = (*m_object)[key];
        list.resize(array.size());
        for (Json::ArrayIndex i = 0; i < list.size(); ++i)
            within(array[i], [&] { one(list[i]); });
    }

private:
    template <class Inside>
    void within(const Json::Value& object, Inside inside)
    {
        const Json::Value* outer = m_object;
        m_object = &object;
        inside();
        m_object = outer;
    }

    const Json::Value* m_object;
};

} // namespace

void readMember(const Json::Value& value, std::string& field)
{
    field = value.asString();
}

void readMember(const Json::Value& value, int& field)
{
    field = value.asInt();
}

void readMember(const Json::Value& value, std::uint32_t& field)
{
    field = value.asUInt();
}

void readMember(const Json::Value& value, double& field)
{
    field = value.asDouble();
}

void readMember(const Json::Value& value, ParamMap& field)
{
    field = paramsFromJson(value);
}

void readMember(const Json::Value& value, ControlClient::Status& field)
{
    field = ControlClient::statusFromJson(value);
}

ControlClient::Status ControlClient::statusFromJson(const Json::Value& value)
{
    // Unknown words (and any other spelling) read as Pending.
    const std::string text = value.asString();
    if (text == "pending")
        return Pending;
    if (text == "completed")
        return Completed;
    if (text == "inprogress")
        return InProgress;
    if (text == "paused")
        return Paused;
    if (text == "aborted")
        return Aborted;
    if (text == "ready")
        return Ready;
    return Pending;
}

Json::Value ControlClient::statusToJson(int status)
{
    if (status < Pending || status > Ready)
        return {};
    return Json::Value(StatusNames[status]);
}

void ControlClient::parseTaskInfo(const Json::Value& object, TaskInfo& out)
{
    RecordReader reader(object);
    visitTaskMembers(reader, out);
}

void ControlClient::parseBatchInfo(const Json::Value& object, BatchInfo& out)
{
    RecordReader reader(object);
    visitBatchMembers(reader, out);
}

void ControlClient::parseNodeInfo(const Json::Value& object, NodeInfo& out)
{
    RecordReader reader(object);
    visitNodeMembers(reader, out);
}

void ControlClient::parseBatchStatus(const Json::Value& object, BatchStatus& out)
{
    RecordReader reader(object);
    visitBatchStatusMembers(reader, out);
}

void ControlClient::parseBatchList(const Json::Value& array, BatchList& out)
{
    // A result that is not an array gives as many entries as jsoncpp's size()
    // says; indexing an object then raises jsoncpp's error.
    out.resize(array.size());
    for (Json::ArrayIndex i = 0; i < out.size(); ++i)
        parseBatchInfo(array[i], out[i]);
}

void ControlClient::parseNodeList(const Json::Value& array, NodeList& out)
{
    out.resize(array.size());
    for (Json::ArrayIndex i = 0; i < out.size(); ++i)
        parseNodeInfo(array[i], out[i]);
}
