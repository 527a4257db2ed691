#include "Workspace.h"

#include "Containers/ThreadEnd.h"
#include "EETokenStack.h"

#include <functional>
#include <utility>

namespace {
/// The spare workspace of a thread. A pointer of its own outlives the destructors of the thread's other objects.
thread_local constinit Workspace* spare_lc = nullptr;
thread_local constinit bool ends_lc = false; // with the thread
thread_local constinit bool isClosed_lc = false;

void Close()
{
    isClosed_lc = true;
    delete spare_lc;
}
} // namespace

Workspace* Workspace::Borrow()
{
    return spare_lc ? std::exchange(spare_lc, nullptr) : new Workspace;
}

void Workspace::GiveBack(Workspace* workspace) noexcept
{
    if (!ends_lc)
        ends_lc = TryRunAtThreadEnd(Close);
    if (spare_lc || !ends_lc || isClosed_lc || workspace->IsLarge())
        delete workspace;
    else
        spare_lc = workspace;
}

bool Workspace::IsLarge() const noexcept
{
    constexpr std::size_t largestSpare = 20'000; // of items, numbers and characters
    return operators.GetCapacity() + calls.GetCapacity() + postfix.GetCapacity() + operands.GetCapacity() +
        numbers.capacity() + texts.GetCapacity() >
        largestSpare;
}

void Workspace::KeepViews(std::size_t first, std::wstring_view expression)
{
    const std::less<> isBefore;
    const wchar_t* const begin = expression.data();
    const wchar_t* const copy = texts.Copy(expression).data();
    for (std::size_t i = first; i < postfix.GetSize(); ++i)
        if (Item& item = postfix[i]; !isBefore(item.text, begin) && isBefore(item.text, begin + expression.size()))
            item.text = copy + (item.text - begin);
}

void Workspace::WriteLog(const wchar_t* operation, const Item& item)
{
    EETokenStack::WriteLog(operation, EEToken(item));
}
