#include "Workspace.h"

#include "EETokenStack.h"

#include <utility>

namespace {
/// The spare workspace of a thread. A pointer of its own outlives the destructors of the thread's other objects.
thread_local constinit Workspace* spare_lc = nullptr;
thread_local constinit bool isClosed_lc = false;

struct Closer
{
    ~Closer()
    {
        isClosed_lc = true;
        delete spare_lc;
    }
};
} // namespace

Workspace::Owner Workspace::Borrow()
{
    return Owner(spare_lc ? std::exchange(spare_lc, nullptr) : new Workspace);
}

void Workspace::GiveBack::operator()(Workspace* workspace) const noexcept
{
    static thread_local Closer closer;
    constexpr std::size_t largestSpare = 10'000; // items or characters
    const bool isLarge = workspace->postfix.GetCapacity() > largestSpare ||
        workspace->operands.GetCapacity() > largestSpare || workspace->texts.GetCapacity() > largestSpare;
    if (spare_lc || isClosed_lc || isLarge)
        delete workspace;
    else
        spare_lc = workspace;
}

void Workspace::WriteLog(const wchar_t* operation, const Item& item)
{
    EETokenStack::WriteLog(operation, EEToken(item));
}
