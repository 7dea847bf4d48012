// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "fault.h"

#include <algorithm>

namespace cash {
namespace {
void removeField(Answer::Texts &texts, const std::string &name)
{
    texts.erase(std::remove_if(texts.begin(), texts.end(), [&name](const auto &text) { return text.first == name; }),
                texts.end());
}

void replaceField(Answer::Texts &texts, const std::string &name, const std::string &value)
{
    for (auto &[key, text] : texts) {
        if (key == name)
            text = value;
    }
}

std::string otherOperation(const Answer &answer)
{
    const std::string check = "ParkingCheckResponse";
    return answer.text("Operation") == check ? "ParkInfoPayResponse" : check;
}

void setResult(Answer &answer, const Fault &fault)
{
    replaceField(answer.attributes, "ResultCode", std::to_string(fault.number));
    answer.fields = {
        {"SessionId", answer.text("SessionId")}, {"AnswerTime", answer.text("AnswerTime")}, {"ErrorInfo", fault.text}};
}
} // namespace

void spoil(Answer &answer, const Fault &fault)
{
    switch (fault.action) {
    case Fault::Action::Operation:
        replaceField(answer.attributes, "Operation", fault.name.empty() ? otherOperation(answer) : fault.name);
        break;
    case Fault::Action::Result:
        setResult(answer, fault);
        break;
    case Fault::Action::Missing:
        removeField(answer.attributes, fault.name);
        removeField(answer.fields, fault.name);
        break;
    case Fault::Action::Doubled:
        answer.fields.emplace_back(fault.name, fault.text);
        break;
    case Fault::Action::Malformed:
        replaceField(answer.attributes, fault.name, fault.text);
        replaceField(answer.fields, fault.name, fault.text);
        break;
    case Fault::Action::Delay:
    case Fault::Action::Status:
    case Fault::Action::Empty:
    case Fault::Action::Card:
    case Fault::Action::Encoding:
        break;
    }
}

int FaultBook::add(const Fault &fault)
{
    const std::lock_guard lock(m_mutex);
    m_entries.push_back({++m_lastId, fault});
    return m_lastId;
}

std::vector<FaultBook::Entry> FaultBook::entries() const
{
    const std::lock_guard lock(m_mutex);
    return m_entries;
}

int FaultBook::remove(int id)
{
    const std::lock_guard lock(m_mutex);
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(), [id](const Entry &entry) { return entry.id == id; });
    if (found == m_entries.end())
        return 0;
    m_entries.erase(found);
    return 1;
}

int FaultBook::clear()
{
    const std::lock_guard lock(m_mutex);
    const int removed = static_cast<int>(m_entries.size());
    m_entries.clear();
    return removed;
}

std::vector<Fault> FaultBook::strike(Operation operation)
{
    const std::lock_guard lock(m_mutex);
    std::vector<Fault> faults;
    for (Entry &entry : m_entries) {
        if (entry.fault.operation.value_or(operation) != operation)
            continue;
        ++entry.seen;
        if (entry.seen < entry.fault.first || entry.seen > entry.fault.last)
            continue;
        ++entry.struck;
        faults.push_back(entry.fault);
    }
    return faults;
}
} // namespace cash
