#include "recordjson.h"

#include "paramjson.h"
#include "recordmembers.h"

namespace {

Json::Value toJson(const std::string& text)
{
    return text;
}

Json::Value toJson(int number)
{
    return number;
}

Json::Value toJson(std::uint32_t number)
{
    return Json::UInt(number);
}

Json::Value toJson(double number)
{
    return number;
}

Json::Value toJson(const ParamMap& params)
{
    return paramsToJson(params);
}

Json::Value toJson(ControlClient::Status status)
{
    return ControlClient::statusToJson(status);
}

// Writes each member it is shown into a JSON object. An error that never
// happened (time 0) is written as null.
class RecordWriter final
{
public:
    template <class Record, class Visit>
    static Json::Value write(const Record& record, Visit visit)
    {
        Json::Value object(Json::objectValue);
        RecordWriter writer(object);
        visit(writer, record);
        return object;
    }

    template <class T>
    void member(const char* key, const T& field)
    {
        (*m_object)[key] = toJson(field);
    }

    template <class T>
    void member(const char* key, const T& field, const T&)
    {
        member(key, field);
    }

    template <class Inside>
    void object(const char* key, Inside inside)
    {
        within((*m_object)[key] = Json::Value(Json::objectValue), inside);
    }

    template <class Record, class Inside>
    void nullableObject(const char* key, const Record& record, Inside inside)
    {
        if (record.time == 0)
            (*m_object)[key] = Json::Value();
        else
            object(key, inside);
    }

    template <class Record, class One>
    void each(const char* key, const std::vector<Record>& list, One one)
    {
        Json::Value& array = (*m_object)[key] = Json::Value(Json::arrayValue);
        for (const Record& record : list)
            within(array.append(Json::Value(Json::objectValue)), [&] { one(record); });
    }

private:
    explicit RecordWriter(Json::Value& object)
        : m_object(&object)
    {
    }

    template <class Inside>
    void within(Json::Value& object, Inside inside)
    {
        Json::Value* outer = m_object;
        m_object = &object;
        inside();
        m_object = outer;
    }

    Json::Value* m_object;
};

} // namespace

Json::Value taskInfoToJson(const ControlClient::TaskInfo& task)
{
    return RecordWriter::write(
        task, [](RecordWriter& writer, const auto& record) { visitTaskMembers(writer, record); });
}

Json::Value batchInfoToJson(const ControlClient::BatchInfo& batch)
{
    return RecordWriter::write(
        batch, [](RecordWriter& writer, const auto& record) { visitBatchMembers(writer, record); });
}

Json::Value nodeInfoToJson(const ControlClient::NodeInfo& node)
{
    Json::Value object = RecordWriter::write(
        node, [](RecordWriter& writer, const auto& record) { visitNodeMembers(writer, record); });
    if (node.batchId == ControlClient::NoId) {
        for (const char* key : {"batch_id", "progress", "task"})
            object.removeMember(key);
    }
    return object;
}

Json::Value batchStatusToJson(const ControlClient::BatchStatus& status)
{
    return RecordWriter::write(
        status, [](RecordWriter& writer, const auto& record) { visitBatchStatusMembers(writer, record); });
}

Json::Value batchListToJson(const ControlClient::BatchList& batches)
{
    Json::Value list(Json::arrayValue);
    for (const ControlClient::BatchInfo& batch : batches)
        list.append(batchInfoToJson(batch));
    return list;
}

Json::Value nodeListToJson(const ControlClient::NodeList& nodes)
{
    Json::Value list(Json::arrayValue);
    for (const ControlClient::NodeInfo& node : nodes)
        list.append(nodeInfoToJson(node));
    return list;
}
