#include "BuiltIns/ItemCommand.h"

#include "Commands/TableFormatter.h"
#include "Text/NumberText.h"
#include "Text/SimilarName.h"

#include <limits>

ExitCode ItemCommand::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options, 0, 1);
    const WString argument = arguments.Count() == 0 ? L"*" : arguments.At(0);
    const auto equals = argument.View().find(L'=');
    if (equals != std::wstring_view::npos)
        Set(WString(argument.View().substr(0, equals)).Trim(), WString(argument.View().substr(equals + 1)).Trim());
    else if (argument.View().find_first_of(L"*?") != std::wstring_view::npos)
        List(argument);
    else
        Show(argument);
    return ExitCode(0);
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
        FailAsAbsent(name);
    GetPipe().DoWriteLine(name + L"=" + value);
}

void ItemCommand::FailAsAbsent(const WString& name)
{
    WStringArray names;
    GetNames(names);
    SimilarName similar(name);
    similar.Offer(names);
    Fail(notFound, L"There is no " + name + similar.GetQuestion());
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
