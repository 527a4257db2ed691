#include "LanguageServer/Features.h"

#include "LanguageServer/FileUri.h"
#include "LanguageServer/FormattedLines.h"
#include "Text/CharacterCase.h"
#include "Text/SimilarName.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <span>

using Place = ScriptCommand::Place;

struct Features::Asked
{
    std::optional<ScriptCommand> command;
    std::size_t offset = 0; // in it
    Place place{};
    Environment variables{};
};

std::size_t ReadCount(const Json& number)
{
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    if (!number.is_number_integer() || number < 0)
        throw ProtocolError(ProtocolFault::InvalidParams, "a place is no whole number");
    return static_cast<std::size_t>(number > most ? most : number.get<std::int64_t>());
}

Features::Asked Features::Find(const Json& position) const
{
    const std::size_t line = ReadCount(position.at("line"));
    const std::string_view text = document.GetLine(line);
    const std::size_t byte = FindByte(text, ReadCount(position.at("character")), unit);
    Asked asked;
    asked.place = {line, CountUnits(text.substr(0, byte), PositionUnit::Character)};
    asked.command = document.FindCommand(line);
    asked.variables = document.GetVariables(line, assistant);
    if (asked.command)
        asked.offset = asked.command->FindOffset(asked.place);
    return asked;
}

Json Features::MakePosition(const Place& place) const
{
    const std::string_view line = document.GetLine(place.line);
    const std::size_t byte = FindByte(line, place.character, PositionUnit::Character);
    return {{"line", place.line}, {"character", CountUnits(line.substr(0, byte), unit)}};
}

Json Features::MakeRange(const Place& start, const Place& end) const
{
    return {{"start", MakePosition(start)}, {"end", MakePosition(end)}};
}

Json Features::MakeRange(const TextRange& range) const
{
    return MakeRange({range.line, range.start}, {range.line, range.end});
}

/// An empty range could not be seen: it takes a character along.
Json Features::MakeDiagnostic(const Finding& finding) const
{
    TextRange range = finding.place;
    const std::size_t length = CountUnits(document.GetLine(range.line), PositionUnit::Character);
    range.end = std::min(std::max(range.end, range.start + 1), length);
    range.start = std::min(range.start, range.end == 0 ? 0 : range.end - 1);
    constexpr int error = 1;
    constexpr int warning = 2;
    return {{"range", MakeRange(range)}, {"severity", finding.isError ? error : warning},
        {"code", finding.code.ToUtf8()}, {"source", "labsh"},
        {"message", (finding.message + DidYouMean(finding.suggestion)).ToUtf8()}};
}

Json Features::GetDiagnostics() const
{
    constexpr std::size_t most = 500; // more help nobody, and would take the time between two keys
    Json diagnostics = Json::array();
    const std::vector<Finding>& findings = document.GetAnalysis(assistant).findings;
    for (const Finding& finding : std::span(findings).first(std::min(findings.size(), most)))
        diagnostics.push_back(MakeDiagnostic(finding));
    return diagnostics;
}

/// Clients leave out what does not begin with what is written, unless there is another text to compare it with.
Json Features::MakeItem(const Completion::Candidate& candidate, const Json& range, std::wstring_view written) const
{
    constexpr int function = 3;
    Json item = {
        {"label", candidate.label.ToUtf8()}, {"textEdit", {{"range", range}, {"newText", candidate.text.ToUtf8()}}}};
    const bool isFound = EqualsIgnoreCase(candidate.text.View().substr(0, written.size()), written);
    item["filterText"] = (isFound ? candidate.text : candidate.label).ToUtf8();
    if (!candidate.meaning.IsEmpty())
        item["detail"] = candidate.meaning.ToUtf8();
    if (candidate.text.View().ends_with(L'('))
        item["kind"] = function;
    return item;
}

Json Features::Complete(const Json& position) const
{
    const Asked asked = Find(position);
    Json items = Json::array();
    if (asked.command) {
        const std::wstring_view text = asked.command->text.View();
        const Completion completion = assistant.Complete(text, asked.offset, asked.variables);
        const std::size_t length = asked.offset - std::min(completion.start, asked.offset);
        const Place start = {asked.place.line, asked.place.character - std::min(length, asked.place.character)};
        const Json range = MakeRange(start, asked.place);
        if (length <= asked.place.character) // else it begins on a line above, where no item may change anything
            for (const Completion::Candidate& candidate : completion.candidates)
                items.push_back(MakeItem(candidate, range, text.substr(completion.start, length)));
    }
    return {{"isIncomplete", true}, {"items", std::move(items)}};
}

Json Features::Hover(const Json& position) const
{
    const Asked asked = Find(position);
    if (!asked.command)
        return nullptr;
    const Explanation found = assistant.Explain(asked.command->text.View(), asked.offset, asked.variables);
    if (found.text.IsEmpty())
        return nullptr;
    const Place end = asked.command->FindPlace(found.end);
    const std::size_t length = std::min(found.end - found.start, end.character);
    return {{"contents", {{"kind", "plaintext"}, {"value", found.text.ToUtf8()}}},
        {"range", MakeRange({end.line, end.character - length}, end)}};
}

Json Features::DescribeCall(const Json& position) const
{
    const Asked asked = Find(position);
    const CallForm call = asked.command ? assistant.DescribeCall(asked.command->text.View(), asked.offset) : CallForm();
    if (call.form.IsEmpty())
        return nullptr;
    Json parameters = Json::array();
    bool goesOn = false; // with as many more as there are
    for (const CallForm::Parameter& parameter : call.parameters) {
        const std::wstring_view name = call.form.View().substr(parameter.start, parameter.end - parameter.start);
        goesOn = name == L"...";
        const Json offsets = {parameter.start, parameter.end}; // in ASCII, which all units count alike
        parameters.push_back({{"label", client.takesOffsets ? offsets : Json(WString(name).ToUtf8())}});
    }
    const std::size_t active = goesOn ? std::min(call.active, parameters.size() - 1) : call.active;
    Json signature = {{"label", call.form.ToUtf8()}, {"parameters", std::move(parameters)}};
    if (!call.meaning.IsEmpty())
        signature["documentation"] = call.meaning.ToUtf8();
    return {{"signatures", {std::move(signature)}}, {"activeSignature", 0}, {"activeParameter", active}};
}

static bool IsAt(const TextRange& range, const Place& place)
{
    return range.line == place.line && range.start <= place.character && place.character <= range.end;
}

/// The file of a script, which is looked for beside the one that names it, then in the working folder.
static Json FindScript(const std::string& name, const std::string& path)
{
    namespace fs = std::filesystem;
    std::error_code error;
    for (const fs::path& folder : {fs::path(path).parent_path(), fs::current_path(error)}) {
        const fs::path file = fs::weakly_canonical(folder / name, error);
        if (fs::is_regular_file(file, error)) {
            const Json start = {{"line", 0}, {"character", 0}};
            return {{"uri", MakeFileUri(file.string())}, {"range", {{"start", start}, {"end", start}}}};
        }
    }
    return nullptr;
}

static std::wstring_view FindNameAt(std::wstring_view text, std::size_t offset)
{
    std::size_t start = offset;
    while (start > 0 && IsNameCharacter(text[start - 1]))
        --start;
    std::size_t end = offset;
    while (end < text.size() && IsNameCharacter(text[end]))
        ++end;
    return text.substr(start, end - start);
}

/// The line that sets the variable last before the place, else the first one behind it.
Json Features::FindDefinition(const Json& position) const
{
    const Asked asked = Find(position);
    if (!asked.command)
        return nullptr;
    const std::wstring_view name = FindNameAt(asked.command->text.View(), asked.offset);
    const ScriptSymbol* found = nullptr;
    for (const ScriptSymbol& symbol : document.GetAnalysis(assistant).symbols) {
        if (symbol.kind == ScriptSymbol::Kind::Script && IsAt(symbol.place, asked.place))
            return FindScript(symbol.name.ToUtf8(), document.GetPath());
        const bool isSought = symbol.kind == ScriptSymbol::Kind::Variable && symbol.name.Equals(name, true);
        const bool isBefore = symbol.place.line < asked.place.line ||
            (symbol.place.line == asked.place.line && symbol.place.start <= asked.place.character);
        if (isSought && (!found || isBefore))
            found = &symbol;
    }
    return found ? Json{{"uri", uri}, {"range", MakeRange(found->place)}} : Json();
}

Json Features::GetOutline() const
{
    constexpr int file = 1;
    constexpr int variable = 13;
    Json outline = Json::array();
    for (const ScriptSymbol& symbol : document.GetAnalysis(assistant).symbols) {
        const bool isVariable = symbol.kind == ScriptSymbol::Kind::Variable;
        const Json range = MakeRange(symbol.place);
        outline.push_back({{"name", symbol.name.IsEmpty() ? "?" : symbol.name.ToUtf8()},
            {"kind", isVariable ? variable : file}, {"range", range}, {"selectionRange", range}});
        if (!symbol.detail.IsEmpty())
            outline.back()["detail"] = symbol.detail.ToUtf8();
    }
    return outline;
}

Json Features::GetQuickFixes(const Json& range) const
{
    const std::size_t first = ReadCount(range.at("start").at("line"));
    const std::size_t last = ReadCount(range.at("end").at("line"));
    Json actions = Json::array();
    for (const Finding& finding : document.GetAnalysis(assistant).findings) {
        if (finding.suggestion.IsEmpty() || finding.place.line < first || finding.place.line > last)
            continue;
        const std::string text = finding.suggestion.ToUtf8();
        const Json edit = {{"range", MakeRange(finding.place)}, {"newText", text}};
        actions.push_back({{"title", "Change to " + text}, {"kind", "quickfix"},
            {"diagnostics", {MakeDiagnostic(finding)}}, {"edit", {{"changes", {{uri, {edit}}}}}}});
    }
    return actions;
}

Json Features::Format() const
{
    return FormatLines(0, document.CountLines());
}

/// A range that ends at the start of a line does not reach into it.
Json Features::FormatRange(const Json& range) const
{
    const std::size_t first = ReadCount(range.at("start").at("line"));
    const Json& end = range.at("end");
    const std::size_t last = ReadCount(end.at("line"));
    return FormatLines(first, last - (last > first && ReadCount(end.at("character")) == 0));
}

Json Features::FormatLines(std::size_t first, std::size_t last) const
{
    Json edits = Json::array();
    for (const ScriptCommand& command : document.ReadCommands())
        AddEdits(command, first, last, edits);
    return edits;
}

void Features::AddEdits(const ScriptCommand& command, std::size_t first, std::size_t last, Json& edits) const
{
    if (command.firstLine > last || command.firstLine + command.lengths.size() <= first)
        return;
    const std::vector<WString> lines = SplitFormatted(command, assistant.Format(command.text));
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const std::size_t line = command.firstLine + index;
        const std::size_t length = command.lengths[index];
        const std::string_view text = document.GetLine(line);
        const std::string formatted = lines[index].ToUtf8();
        if (line >= first && line <= last &&
            formatted != text.substr(0, FindByte(text, length, PositionUnit::Character)))
            edits.push_back({{"range", MakeRange({line, 0}, {line, length})}, {"newText", formatted}});
    }
}

void Features::Change(const Json& change) const
{
    std::string text = change.at("text").get<std::string>();
    if (!change.contains("range"))
        return document.SetText(std::move(text));
    const auto find = [&](const Json& position) {
        return document.FindOffset(ReadCount(position.at("line")), ReadCount(position.at("character")), unit);
    };
    const std::size_t start = find(change["range"].at("start"));
    document.Replace(start, std::max(start, find(change["range"].at("end"))), text);
}
