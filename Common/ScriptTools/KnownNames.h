#pragma once

#include "CommandText.h"
#include "Instrument/Environment.h"
#include "Instrument/NameOrder.h"
#include "Text/SimilarName.h"

#include <map>
#include <set>

/// What a script may refer to: the data of the bench, and what its lines have set or made so far. The kinds are those
/// of references, 'E', 'S', 'C' and 'U', and 'F' for files.
class KnownNames
{
public:
    explicit KnownNames(const Environment& variables);

    void Add(wchar_t kind, const WString& name);
    /// Takes any name of that kind for known from now on.
    void AddAll(wchar_t kind) { kinds[kind].isAny = true; }
    void Add(const KnownNames& others);
    /// Adds what the command alone, and not one in it, sets or makes.
    void AddFrom(std::wstring_view line, const CommandText& command);

    /// Whether a line has set or made it.
    /// Whether a line has made a setting of the section.
    bool IsSectionMade(const WString& section) const;
    bool IsMade(wchar_t kind, const WString& name) const;
    bool Contains(wchar_t kind, const WString& name) const;
    WString FindSimilar(wchar_t kind, const WString& name) const;
    /// Offers what lines have set or made, unless there is so much of it that looking would take long.
    void Offer(wchar_t kind, SimilarName& similar) const;

private:
    struct Names
    {
        std::set<WString, NameOrder> names{};
        bool isAny = false;
    };
    std::map<wchar_t, Names> kinds;
    mutable std::map<WString, bool, NameOrder> onBench; // whether the bench has what a reference names, once looked up

    void AddFile(const OptionText& option);
};

/// The letter of the kind of reference, or 0, that a part of a command names.
wchar_t GetReferenceKind(ArgumentKind kind);
