// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/yamldocuments.h"

#include <yaml-cpp/eventhandler.h>

#include <sstream>

namespace kiosk {
namespace {
/// Keeps where the first node of the latest document is.
class FirstNode : public YAML::EventHandler
{
public:
    [[nodiscard]] YAML::Mark mark() const { return m_mark; }

    void OnDocumentStart(const YAML::Mark & /*mark*/) override { m_isNext = true; }
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark &mark, YAML::anchor_t /*anchor*/) override { note(mark); }
    void OnAlias(const YAML::Mark &mark, YAML::anchor_t /*anchor*/) override { note(mark); }
    void OnScalar(const YAML::Mark &mark, const std::string & /*tag*/, YAML::anchor_t /*anchor*/,
                  const std::string & /*value*/) override
    {
        note(mark);
    }
    void OnSequenceStart(const YAML::Mark &mark, const std::string & /*tag*/, YAML::anchor_t /*anchor*/,
                         YAML::EmitterStyle::value /*style*/) override
    {
        note(mark);
    }
    void OnSequenceEnd() override {}
    void OnMapStart(const YAML::Mark &mark, const std::string & /*tag*/, YAML::anchor_t /*anchor*/,
                    YAML::EmitterStyle::value /*style*/) override
    {
        note(mark);
    }
    void OnMapEnd() override {}

private:
    void note(const YAML::Mark &mark)
    {
        if (m_isNext)
            m_mark = mark;
        m_isNext = false;
    }

    YAML::Mark m_mark;
    bool m_isNext = false;
};
} // namespace

std::optional<YAML::Mark> secondDocument(const std::string &text)
{
    std::istringstream stream(text);
    YAML::Parser parser(stream);
    FirstNode first;
    FirstNode second;
    if (parser.HandleNextDocument(first) && parser.HandleNextDocument(second))
        return second.mark();
    return std::nullopt;
}
} // namespace kiosk
