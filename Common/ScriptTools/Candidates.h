#pragma once

#include "Commands/ScriptAssistant.h"
#include "LineReader.h"

/// Finds what may stand at a place of an unfinished line and begins, in any case, with the piece that is written there.
class Candidates
{
public:
    Candidates(const Place& place, std::wstring_view piece, const Environment& environment)
        : place(place), piece(piece), environment(environment)
    {}

    /// All of them, sorted.
    std::vector<Completion::Candidate> Find();

private:
    const Place& place;
    const std::wstring_view piece;
    const Environment& environment;
    std::vector<Completion::Candidate> found;

    void Offer(const WString& text, const WString& label, const WString& meaning);
    void OfferName(const WString& name, const WString& value);
    void AddCommands();
    void AddOptions();
    void AddOperands();
    void AddFunctions();
    void AddOperators();
    void AddKeywords();
    void AddReferenceKinds();
    void AddReferences(wchar_t kind);
    void AddStatusReferences();
    void AddVariables(const wchar_t* ending);
    void AddSettings();
    void AddEvents();
    void AddLogs();
    void AddTests();
    void AddFiles();
    void AddTopics();
    void OfferTopic(const WString& line);
    void AddArguments();
};
