#include "BuiltIns/ItemCommand.h"

#include "Commands/TableFormatter.h"
#include "Text/JsonText.h"
#include "Text/NumberText.h"
#include "Text/SimilarName.h"

#include <limits>

static bool IsPattern(const WString& text)
{
    return text.View().find_first_of(L"*?") != std::wstring_view::npos;
}

/// The value as JSON writes it.
static WString ToJson(const WString& value, bool isText)
{
    bool flag = false;
    double number = 0;
    if (isText || (!value.TryGetBool(flag) && !value.TryParseDouble(number)))
        return QuoteForJson(value);
    return value.TryGetBool(flag) ? value.ToLowerCase() : NumberForJson(value);
}

ExitCode ItemCommand::Main(ArgumentList& arguments, Options& options)
{
    const bool isZapped = options.TryGetFlag(zap);
    const bool isJson = options.TryGetFlag(json);
    Accept(arguments, options, isZapped ? 1 : 0, 1);
    const WString argument = arguments.Count() == 0 ? L"*" : arguments.At(0).Trim();
    const auto equals = argument.View().find(L'=');
    if (isZapped && !TryDelete(argument))
        FailAsUnknown(argument);
    if (isZapped)
        return ExitCode(0);
    if (equals != std::wstring_view::npos)
        Set(WString(argument.View().substr(0, equals)).Trim(), WString(argument.View().substr(equals + 1)).Trim());
    else if (isJson)
        ListAsJson(argument);
    else if (IsPattern(argument))
        List(argument);
    else
        Show(argument);
    return ExitCode(0);
}

void ItemCommand::FailToDelete(const WString& name, const WString& reason)
{
    Fail(failed, name + L" cannot be deleted: " + reason);
}

void ItemCommand::FailAsUnknown(const WString& name, const wchar_t* remedy)
{
    WStringArray names;
    GetNames(names);
    SimilarName similar(name);
    for (const WString& known : names)
        similar.Offer(known);
    const bool isNear = !similar.Get().IsEmpty() && !similar.Get().Equals(name.View(), true);
    WString message = L"There is no " + name;
    if (isNear)
        message += L"; did you mean " + similar.Get() + L"?";
    message.AppendWithSeparator(remedy, *remedy == 0 ? L"" : isNear ? L" " : L"; ");
    Fail(notFound, message);
}

int ItemCommand::ReadInt32(const WString& value)
{
    int number = 0;
    if (!TryParseWhole(value.View(), number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()))
        Fail(badValue, value + L" is no 32-bit whole number");
    return number;
}

void ItemCommand::Show(const WString& name)
{
    WString value;
    if (!TryGet(name, value))
        FailAsUnknown(name);
    GetPipe().DoWriteLine(name + L"=" + value);
}

void ItemCommand::List(const WString& pattern)
{
    WStringArray names;
    GetNames(names);
    names.Sort();
    TableFormatter table;
    table.AddRow(L"Name\tValue");
    for (const WString& name : names) {
        WString value;
        if (name.IsWildcardMatch(pattern.ToCString(), true) && TryGet(name, value))
            table.AddRow(name + L"\t" + value);
    }
    table.WriteTable(GetPipe());
}

void ItemCommand::ListAsJson(const WString& pattern)
{
    WStringArray names;
    if (IsPattern(pattern))
        GetNames(names);
    else
        names.Add(pattern);
    names.Sort();
    WString text;
    for (const WString& name : names) {
        WString value;
        if (name.IsWildcardMatch(pattern.ToCString(), true) && TryGet(name, value))
            text.AppendWithSeparator(L"  " + QuoteForJson(name) + L": " + ToJson(value, IsText(name)), L",\n");
        else if (!IsPattern(pattern))
            FailAsUnknown(name);
    }
    GetPipe().DoWriteLine(text.IsEmpty() ? L"{}" : L"{\n" + text + L"\n}");
}
