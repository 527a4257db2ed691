#include "BuiltIns/HelpTexts.h"

#include "Commands/EmbeddedResource.h"
#include "Commands/PluginLoader.h"
#include "Text/CharacterCase.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {
constexpr std::wstring_view indent_lc = L"    "; // of an example

bool IsHeading(const WString& line)
{
    return !line.IsEmpty() && !IsWhiteSpace(line[0]);
}

void AddEntries(const std::string& file, const wchar_t* name, std::vector<HelpEntry>& entries)
{
    bool isFirst = true;
    for (EmbeddedResource text(file, name); !text.EndOfFile(); isFirst = false) {
        WString line = text.ReadLine();
        if (isFirst || IsHeading(line))
            entries.emplace_back();
        entries.back().lines.Add(std::move(line));
    }
}

std::wstring_view GetForms(const WString& heading)
{
    return heading.View().substr(0, heading.View().find(L" - "));
}
} // namespace

std::vector<HelpEntry> ReadHelpTexts(const wchar_t* name)
{
    std::vector<HelpEntry> entries;
    AddEntries("/proc/self/exe", name, entries);
    for (const std::string& file : PluginLoader::GetFiles())
        AddEntries(file, name, entries);
    return entries;
}

WString GetFirstSentence(const WString& text)
{
    const std::wstring_view view = text.View();
    const std::size_t end = std::min(view.find(L". "), view.size());
    return WString(view.substr(0, end - view.substr(0, end).ends_with(L'.')));
}

WString Shorten(const WString& text, std::size_t length)
{
    constexpr std::wstring_view ellipsis = L" ...";
    if (text.Length() <= length)
        return text;
    const std::wstring_view start = text.View().substr(0, length - ellipsis.size() + 1);
    return WString(start.substr(0, start.rfind(L' '))) + WString(ellipsis);
}

bool HelpEntry::HasHeading() const
{
    return IsHeading(lines[0]);
}

WString HelpEntry::GetTitle() const
{
    return WString(GetForms(lines[0]));
}

WString HelpEntry::GetMeaning() const
{
    WString text = lines[0].Substring(static_cast<unsigned int>(GetForms(lines[0]).size() + 3)); // behind " - "
    const auto continuesHeading = [](const std::wstring_view line) {
        return line.starts_with(L"  ") && !line.starts_with(indent_lc);
    };
    for (std::size_t index = 1; index < lines.Count() && continuesHeading(lines[index].View()); ++index)
        text += L" " + lines[index].Trim();
    return GetFirstSentence(text);
}

WString HelpEntry::GetText() const
{
    WString text;
    for (const WString& line : lines)
        text += line + L" ";
    return text;
}

WStringArray HelpEntry::GetFunctionNames() const
{
    WStringArray names;
    const std::wstring_view forms = GetForms(lines[0]);
    for (std::size_t end = forms.find(L'('); end != forms.npos; end = forms.find(L'(', end + 1)) {
        const std::wstring_view before = forms.substr(0, end);
        names.Add(WString(before.substr(before.rfind(L' ') + 1)));
    }
    return names;
}

void HelpEntry::Write(Pipe& pipe, std::size_t firstLine) const
{
    constexpr std::wstring_view arrow = L" -> ";
    for (std::size_t index = firstLine; index < lines.Count(); ++index) {
        const std::wstring_view line = lines[index].View();
        const std::size_t end = line.find(arrow);
        if (!line.starts_with(indent_lc) || end == line.npos) {
            pipe.DoWriteLine(lines[index]);
            continue;
        }
        const std::wstring_view expression = line.substr(indent_lc.size(), end - indent_lc.size());
        pipe.WriteLine(L"    Calc %s%s", expression.starts_with(L'-') ? L"-- " : L"", WString(expression));
        pipe.WriteLine(L"    # %s", WString(line.substr(end + arrow.size())));
    }
}
