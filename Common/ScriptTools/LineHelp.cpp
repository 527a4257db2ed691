#include "LineHelp.h"

#include "Commands/CommandRunner.h"
#include "Commands/Reference.h"
#include "ExpressionEvaluator.h"
#include "FunctionForms.h"
#include "Instrument/System.h"
#include "LinePieces.h"
#include "Text/CharacterCase.h"
#include "Text/QuoteTracker.h"
#include "Text/ReferenceText.h"
#include "Text/SimilarName.h"

#include <algorithm>

namespace {
using View = std::wstring_view;

struct Token
{
    enum class Kind
    {
        Name,
        Call, // a name with its "(" behind it
        Reference,
        Mark // one character
    };

    Kind kind;
    Span place;
};

/// The token that the part begins with.
Token ReadToken(View line, Span part)
{
    const View rest = part.In(line);
    const std::size_t start = part.start;
    if (rest[0] == L'%') {
        const ReferenceText::Reference reference = ReferenceText::Read(rest);
        if (reference.fault == ReferenceText::Fault::None)
            return {Token::Kind::Reference, {start, start + reference.end}};
    }
    const auto length =
        static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), IsNameCharacter) - rest.begin());
    if (length == 0)
        return {Token::Kind::Mark, {start, start + 1}};
    const bool isCall = length < rest.size() && rest[length] == L'(';
    return {isCall ? Token::Kind::Call : Token::Kind::Name, {start, start + length}};
}

/// What an expression consists of, but for blanks and texts in quotes.
std::vector<Token> ReadTokens(View line, Span part)
{
    std::vector<Token> tokens;
    QuoteTracker quotes;
    while (!part.IsEmpty()) {
        const bool isOutside = quotes.Next(part.In(line)) == QuoteTracker::Role::Outside;
        if (!isOutside || IsWhiteSpace(line[part.start])) {
            ++part.start;
            continue;
        }
        tokens.push_back(ReadToken(line, part));
        part.start = tokens.back().place.end;
    }
    return tokens;
}

/// What the cursor stands in or behind.
template <typename Placed>
const Placed* FindAt(const std::vector<Placed>& pieces, std::size_t cursor)
{
    const Placed* found = nullptr;
    for (const Placed& piece : pieces) {
        if (piece.place.start <= cursor && cursor <= piece.place.end)
            found = &piece; // the later one, where it stands between two
    }
    return found;
}

WString DescribeCommand(const CommandRegistry::Entry& command)
{
    ArrayPipe usage;
    if (command.record) { // without the list of all functions, which the command may add
        for (const UsageLine& line : command.record->usage)
            usage.WriteLine(line.format, line.argument);
    } else {
        CommandRunner::ShowUsage(command, usage);
    }
    WString text;
    for (const WString& line : usage.lines)
        text.AppendWithSeparator(line, L"\n");
    return text.Trim();
}

/// The values that the option takes, with a blank in front of them.
WString DescribeLimits(const OptionRecord& option)
{
    switch (option.kind) {
    case OptionKind::WholeNumber: return WString::Format(L" (%.0f to %.0f)", option.least, option.greatest);
    case OptionKind::Number: return WString::Format(L" (%g to %g)", option.least, option.greatest);
    default: return WString();
    }
}

/// The option that is written, of several the one with the longest name.
WString DescribeOption(View written, const CommandRecord& record)
{
    const OptionRecord* found = nullptr;
    for (const OptionRecord& option : record.options) {
        const View name(option.name);
        const bool serves = option.kind == OptionKind::Flag ? EqualsIgnoreCase(written, name)
                                                            : EqualsIgnoreCase(written.substr(0, name.size()), name);
        if (serves && (!found || name.size() > View(found->name).size()))
            found = &option;
    }
    return found ? WString::Format(L"-%s: %s", found->name, found->purpose) + DescribeLimits(*found) : WString();
}

WString DescribeValue(const wchar_t* kind, const WString& name, const WString& value)
{
    return WString::Format(L"%s %s = %s", kind, name, value);
}

/// What is known of an item of the instrument or a variable; nothing of a variable that nobody has set.
WString DescribeItem(ArgumentKind kind, const WString& name, const Environment& environment)
{
    WString value;
    switch (kind) {
    case ArgumentKind::StatusItem:
        if (!System::status.ContainsItem(name))
            break;
        return DescribeValue(
            L"status item", name, System::status.TryGetFormattedString(name, value) ? value : WString(L"#NA"));
    case ArgumentKind::Setting:
        return Reference::TryGetConfig(name, value) ? DescribeValue(L"setting", name, value) : WString();
    case ArgumentKind::Counter:
        return Reference::TryGetUsage(name, value) ? DescribeValue(L"usage counter", name, value) : WString();
    case ArgumentKind::Variable:
        return environment.TryGetString(name, value) ? DescribeValue(L"variable", name, value) : WString();
    default: break;
    }
    return WString();
}

WString DescribeReference(View written, const Environment& environment)
{
    const ReferenceText::Reference reference = ReferenceText::Read(written);
    const ArgumentKind kind = reference.kind == L'S' ? ArgumentKind::StatusItem
        : reference.kind == L'C'                     ? ArgumentKind::Setting
        : reference.kind == L'U'                     ? ArgumentKind::Counter
                                                     : ArgumentKind::Variable;
    WString text = DescribeItem(kind, WString(reference.name), environment);
    if (!text.IsEmpty() || kind == ArgumentKind::Variable)
        return text;
    const WString all(written);
    return all + L" does not exist" + DidYouMean(Reference::FindSimilar(all, environment));
}

WString DescribeName(const WString& name, const Environment& environment)
{
    WString variable = DescribeItem(ArgumentKind::Variable, name, environment);
    const WStringArray builtIn = ExpressionEvaluator::GetBuiltInNames();
    const bool isBuiltIn =
        std::ranges::any_of(builtIn, [&](const WString& each) { return each.Equals(name.View(), true); });
    WString value;
    ExpressionEvaluator evaluator(nullptr, 0);
    if (!variable.IsEmpty() || !isBuiltIn || !evaluator.TryEvaluateString(name, value))
        return variable;
    return DescribeValue(L"built-in", name, value);
}

Explanation ExplainToken(View line, const Token& token, const Environment& environment)
{
    const auto [start, end] = token.place;
    const View text = token.place.In(line);
    switch (token.kind) {
    case Token::Kind::Call: return {start, end, GetFunctionForm(WString(text)).entry};
    case Token::Kind::Name: return {start, end, DescribeName(WString(text), environment)};
    case Token::Kind::Reference: return {start, end, DescribeReference(text, environment)};
    case Token::Kind::Mark: break;
    }
    return {};
}

Explanation ExplainExpression(View line, Span expression, std::size_t cursor, const Environment& environment)
{
    const std::vector<Token> tokens = ReadTokens(line, expression);
    const Token* token = FindAt(tokens, cursor);
    if (token && token->kind == Token::Kind::Mark && token->place.start == cursor && token != tokens.data())
        token -= (token - 1)->place.end == cursor; // "Round|(" is at the name
    return token ? ExplainToken(line, *token, environment) : Explanation();
}

/// Of a text, references alone are known, in quotes too.
Explanation ExplainText(View line, Span text, std::size_t cursor, const Environment& environment)
{
    while (!text.IsEmpty()) {
        const ReferenceText::Reference found = ReferenceText::Find(text.In(line));
        if (found.fault != ReferenceText::Fault::None)
            break;
        const Span place = {text.start + found.start, text.start + found.end};
        if (place.start <= cursor && cursor < place.end)
            return ExplainToken(line, {Token::Kind::Reference, place}, environment);
        text.start = place.end;
    }
    return {};
}

/// The forms of the call "Mid(text, start[, count])": its parameters.
std::vector<CallForm::Parameter> ReadParameters(View form)
{
    std::vector<CallForm::Parameter> parameters;
    const std::size_t end = std::min(form.rfind(L')'), form.size());
    for (std::size_t start = form.find(L'(') + 1; start < end;) {
        const std::size_t behind = std::min(form.find(L',', start), end);
        const std::size_t first = form.find_first_not_of(L" []", start);
        const std::size_t last = form.find_last_not_of(L" []", behind - 1);
        if (first <= last && last < behind)
            parameters.push_back({first, last + 1});
        start = behind + 1;
    }
    return parameters;
}

/// A parenthesis that is open at the end of what was read.
struct OpenParenthesis
{
    const Token* call; // null when it only groups
    std::size_t commas = 0;
};

std::vector<OpenParenthesis> FindOpen(View line, const std::vector<Token>& tokens)
{
    std::vector<OpenParenthesis> open;
    for (std::size_t index = 0; index < tokens.size(); ++index) {
        const wchar_t mark = tokens[index].kind == Token::Kind::Mark ? line[tokens[index].place.start] : L'\0';
        const bool isCall = index > 0 && tokens[index - 1].kind == Token::Kind::Call;
        if (mark == L'(')
            open.push_back({isCall ? &tokens[index - 1] : nullptr});
        else if (mark == L')' && !open.empty())
            open.pop_back();
        else if (mark == L',' && !open.empty())
            ++open.back().commas;
    }
    return open;
}
} // namespace

Explanation ExplainPlace(View line, std::size_t cursor, const Environment& environment)
{
    const std::vector<LinePiece> pieces = ReadLinePieces(line);
    const LinePiece* const piece = FindAt(pieces, cursor);
    if (!piece)
        return {};
    const auto [start, end] = piece->place;
    const View text = piece->place.In(line);
    switch (piece->kind) {
    case LinePiece::Kind::Command: return {start, end, DescribeCommand(*piece->command)};
    case LinePiece::Kind::Option: return {start, end, DescribeOption(text.substr(1), *piece->command->record)};
    case LinePiece::Kind::Keyword:
    case LinePiece::Kind::Separator: return {};
    case LinePiece::Kind::Argument: break;
    }
    if (piece->argument == ArgumentKind::Expression)
        return ExplainExpression(line, piece->place, cursor, environment);
    const Explanation reference = ExplainText(line, piece->place, cursor, environment);
    return reference.text.IsEmpty() ? Explanation{start, end, DescribeItem(piece->argument, WString(text), environment)}
                                    : reference;
}

CallForm FindCall(View line, std::size_t cursor)
{
    const View before = line.substr(0, cursor);
    const std::vector<LinePiece> pieces = ReadLinePieces(before);
    if (pieces.empty() || pieces.back().argument != ArgumentKind::Expression)
        return {};
    const std::vector<Token> tokens = ReadTokens(before, pieces.back().place);
    std::vector<OpenParenthesis> open = FindOpen(before, tokens);
    while (!open.empty() && !open.back().call)
        open.pop_back();
    if (open.empty())
        return {};
    const Token& call = *open.back().call;
    const FunctionForm form = GetFunctionForm(WString(call.place.In(before)));
    if (form.entry.IsEmpty())
        return {};
    return {form.form, form.meaning, ReadParameters(form.form.View()), open.back().commas};
}
