#include "FunctionArguments.h"
#include "FunctionClasses.h"
#include "Text/Abort.h"

#include <algorithm>
#include <limits>

using namespace FunctionArguments;

namespace {
WString Enclose(const WString& text, wchar_t separator)
{
    WString enclosed(1, separator);
    enclosed += text;
    enclosed += separator;
    return enclosed;
}
} // namespace

void EEListLen::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 1, 2, Errors::ListLenTooFew, Errors::ListLenTooMany);
    const WString list = PopStrictText(arguments);
    const wchar_t separator = PopSeparator(arguments, Errors::ListLenSeparator);
    result.SetValue(1.0 + static_cast<double>(std::count(list.begin(), list.end(), separator)));
}

void EEListItem::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 2, 3, Errors::ListItemTooFew, Errors::ListItemTooMany);
    const WString list = PopStrictText(arguments);
    const EEToken& argument = arguments.Pop();
    const int number = argument.GetInteger(1, std::numeric_limits<int>::max());
    const int numberPosition = argument.GetPosition();
    const wchar_t separator = PopSeparator(arguments, Errors::ListItemSeparator);
    WString item;
    if (!list.TryGetListItem(item, static_cast<unsigned int>(number - 1), separator))
        throw ExpressionEvaluatorException(Errors::ListItemNotFound, numberPosition);
    result.SetValue(item);
}

// A search for the item's text with a separator at both ends: an item that holds separators is found as a run of items.
void EEIsInList::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 2, 4, Errors::IsInListTooFew, Errors::IsInListTooMany);
    WString item = PopStrictText(arguments);
    WString list = PopStrictText(arguments);
    const bool ignoreCase = PopBoolOr(arguments, true);
    const wchar_t separator = PopSeparator(arguments, Errors::IsInListSeparator);
    item = Enclose(item, separator);
    list = Enclose(list, separator);
    if (ignoreCase) {
        item = item.ToUpperCase();
        list = list.ToUpperCase();
    }
    Abort::ThrowIfRequested(); // a long list has taken its time
    result.SetValue(list.IndexOf(item) >= 0);
}
