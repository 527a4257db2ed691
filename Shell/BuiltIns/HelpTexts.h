#pragma once

#include "Commands/Pipe.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <vector>

/// An entry of the texts that the shell and the plug-ins bring along: a heading, which begins at the left margin, and
/// the lines below it. What stands before the first heading of a text is an entry without one.
struct HelpEntry
{
    WStringArray lines;

    bool HasHeading() const;
    /// What stands before the first " - " of the heading; all of it where there is none.
    WString GetTitle() const;
    /// The first sentence behind that.
    WString GetMeaning() const;
    /// All lines in one.
    WString GetText() const;
    /// The names that stand in front of a "(" in the title, as in "Avg(n1, ...) or Average(n1, ...)".
    WStringArray GetFunctionNames() const;
    /// Writes the lines, from the given one on. An example "expression -> value" becomes a command, and its output a
    /// comment, so that both can be pasted.
    void Write(Pipe& pipe, std::size_t firstLine = 0) const;
};

/// The entries of the texts of that name (see EmbeddedResource).
std::vector<HelpEntry> ReadHelpTexts(const wchar_t* name);
/// The text up to the end of its first sentence, without the period.
WString GetFirstSentence(const WString& text);
/// The text, cut off behind a word where it is longer than that.
WString Shorten(const WString& text, std::size_t length);
