#include "Candidates.h"
#include "LineFormat.h"
#include "LineHelp.h"
#include "ScriptCheck.h"

namespace {
class Assistant : public ScriptAssistant
{
public:
    Completion Complete(std::wstring_view line, std::size_t cursor, const Environment& environment) const override;
    ScriptAnalysis Analyse(
        std::string_view script, const std::string& path, const Environment& variables) const override
    {
        return CheckScript(script, path, variables);
    }
    Explanation Explain(std::wstring_view line, std::size_t cursor, const Environment& environment) const override
    {
        return ExplainPlace(line, cursor, environment);
    }
    CallForm DescribeCall(std::wstring_view line, std::size_t cursor) const override { return FindCall(line, cursor); }
    WString Format(const WString& line) const override { return FormatLine(line); }
};

/// Leaves out the end of a candidate that stands behind the cursor already.
void LeaveOutEnd(Completion::Candidate& candidate, std::wstring_view behind)
{
    const WString& text = candidate.text;
    if (!behind.empty() && !text.IsEmpty() && behind.front() == text[text.Length() - 1])
        candidate.text = text.Left(static_cast<unsigned int>(text.Length() - 1));
}

Completion Assistant::Complete(std::wstring_view line, std::size_t cursor, const Environment& environment) const
{
    const std::wstring_view before = line.substr(0, cursor);
    const Place place = ReadPlace(before);
    Completion completion = {place.start, Candidates(place, before.substr(place.start), environment).Find()};
    for (Completion::Candidate& candidate : completion.candidates)
        LeaveOutEnd(candidate, line.substr(before.size()));
    return completion;
}

const Assistant assistant_lc;
} // namespace
