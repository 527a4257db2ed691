#include "FunctionForms.h"

#include "Commands/EmbeddedResource.h"
#include "Commands/PluginLoader.h"
#include "Instrument/NameOrder.h"
#include "Text/CharacterCase.h"

#include <map>
#include <string_view>

namespace {
using View = std::wstring_view;
using Forms = std::map<WString, FunctionForm, NameOrder>;

/// Adds the forms "Avg(n1, n2, ...) or Average(n1, n2, ...)" of the entry whose description follows.
void AddForms(View forms, const WString& meaning, const WString& lines, Forms& all)
{
    constexpr View separator = L" or ";
    while (!forms.empty()) {
        const std::size_t end = forms.find(separator);
        const View form = forms.substr(0, end);
        const WString name(form.substr(0, form.find(L'(')));
        all.try_emplace(name, FunctionForm{WString(form), meaning, lines});
        forms = end == View::npos ? View() : forms.substr(end + separator.size());
    }
}

/// Adds what an entry says: "forms - description". `lines` has its examples too.
void AddEntry(const WString& entry, const WString& lines, Forms& all)
{
    const View text = entry.View();
    const std::size_t dash = text.find(L" - ");
    if (dash == View::npos)
        return;
    View sentence = text.substr(dash + 3);
    sentence = sentence.substr(0, sentence.find(L". "));
    if (sentence.ends_with(L'.'))
        sentence.remove_suffix(1);
    AddForms(text.substr(0, dash), WString(sentence), lines, all);
}

/// An entry begins at the start of a line. What it says goes on in lines that begin with two blanks; examples begin
/// with four.
Forms ReadForms()
{
    Forms all;
    for (const std::string& file : PluginLoader::GetFiles()) {
        EmbeddedResource texts(file, L"FUNCTIONS.TXT");
        WString entry;
        WString lines;
        while (!texts.EndOfFile()) {
            const WString line = texts.ReadLine();
            const bool isStart = !line.IsEmpty() && !IsWhiteSpace(line[0]);
            if (isStart) {
                AddEntry(entry, lines, all);
                entry = lines = line;
                continue;
            }
            lines += L"\n" + line;
            if (!line.StartsWith(L"    ", false))
                entry += L" " + line.Trim();
        }
        AddEntry(entry, lines, all);
    }
    return all;
}
} // namespace

FunctionForm GetFunctionForm(const WString& name)
{
    static const Forms forms = ReadForms();
    const auto found = forms.find(name);
    return found == forms.end() ? FunctionForm{name + L"(", L""} : found->second;
}
