#pragma once

#include "CommandText.h"
#include "Findings.h"
#include "KnownNames.h"

#include <functional>
#include <utility>

/// Looks for what is wrong with the commands of a line, outer ones first.
class CommandCheck
{
public:
    using Visit = std::function<void(const CommandText& inner)>;

    /// All must outlive this; `findings` are appended to. The commands of lists are handed to `visit`, if there is one,
    /// instead of being checked.
    CommandCheck(std::wstring_view line, const KnownNames& known, std::vector<LineFinding>& findings, Visit visit = {})
        : line(line), known(known), findings(findings), visit(std::move(visit))
    {}

    void Check(const CommandText& command);

private:
    const std::wstring_view line;
    const KnownNames& known;
    std::vector<LineFinding>& findings;
    const Visit visit;

    void Add(bool isError, const wchar_t* code, Span place, const WString& message, const WString& suggestion = {})
    {
        findings.push_back({isError, code, place, message, suggestion});
    }
    void Warn(const wchar_t* code, Span place, const WString& message, const WString& suggestion = {})
    {
        Add(false, code, place, message, suggestion);
    }
    void CheckReferences(const CommandText& command);
    void CheckOptions(const CommandText& command);
    void CheckPatterns(const OptionText& option);
    void CheckComment(const CommandText& command);
    void CheckPart(const CommandText& command, const PartText& part);
    void CheckExpressionPart(const CommandText& command, const PartText& part);
    bool IsMadeItem(std::wstring_view text) const;
    void CheckName(const CommandText& command, const PartText& part);
    void CheckList(const CommandText& command, const PartText& part);
    void CheckSwallowed(const CommandText& inner);
    void CheckNearlyElse(const CommandText& command);
};

/// Whether the command, where it is accepted, ends all.
bool IsExit(const CommandText& command);

/// Whether a script certainly goes on behind the command, in which nothing was found, as far as can be told.
bool GoesOn(const CommandText& command);
