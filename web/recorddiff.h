#pragma once

#include <string>
#include <variant>
#include <vector>

#include "controlclient.h"
#include "recordmembers.h"

// Which top-level members of a record differ between two readings, by the
// client's one list of members (recordmembers.h): both records are walked
// in step, and a nested object ("task", "last_error") counts as one member.
class RecordDiff final
{
public:
    template <class Record, class Visit>
    const std::vector<const char*>& changed(const Record& before, const Record& after, Visit visit)
    {
        m_before.clear();
        m_after.clear();
        Collector collectBefore(m_before);
        visit(collectBefore, before);
        Collector collectAfter(m_after);
        visit(collectAfter, after);
        m_changed.clear();
        for (std::size_t i = 0; i < m_before.size(); ++i) {
            const char* key = m_after[i].topKey;
            if ((m_changed.empty() || m_changed.back() != key) && !same(m_before[i].value, m_after[i].value))
                m_changed.push_back(key);
        }
        return m_changed;
    }

private:
    using Value = std::variant<const std::string*, const int*, const std::uint32_t*, const double*,
        const ParamMap*, const ControlClient::Status*>;

    struct Field
    {
        const char* topKey;
        Value value;
    };

    // Shown each member of one record; keeps where its value is.
    class Collector final
    {
    public:
        explicit Collector(std::vector<Field>& fields)
            : m_fields(fields)
        {
        }

        template <class T>
        void member(const char* key, const T& field)
        {
            m_fields.push_back({m_top ? m_top : key, &field});
        }

        template <class T>
        void member(const char* key, const T& field, const T&)
        {
            member(key, field);
        }

        template <class Inside>
        void object(const char* key, Inside inside)
        {
            const char* outer = m_top;
            m_top = m_top ? m_top : key;
            inside();
            m_top = outer;
        }

        template <class Record, class Inside>
        void nullableObject(const char* key, const Record&, Inside inside)
        {
            object(key, inside);
        }

    private:
        std::vector<Field>& m_fields;
        const char* m_top = nullptr;
    };

    static bool same(const Value& a, const Value& b)
    {
        return std::visit([&](auto* left) { return *left == *std::get<decltype(left)>(b); }, a);
    }

    std::vector<Field> m_before;
    std::vector<Field> m_after;
    std::vector<const char*> m_changed;
};
