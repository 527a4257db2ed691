#include "Commands/RunObserver.h"

#include <utility>

static thread_local RunObserver* first_lc = nullptr;

RunObserver::RunObserver() noexcept : next(std::exchange(first_lc, this)) {}

RunObserver::~RunObserver()
{
    RunObserver** link = &first_lc;
    while (*link && *link != this)
        link = &(*link)->next;
    if (*link)
        *link = next;
}

void RunObserver::OnReplaced(const CommandRun&, const WString&) noexcept {}

void RunObserver::OnCondition(const CommandRun&, const WString&, bool, const WString&) noexcept {}

void RunObserver::OnBadExpression(const CommandRun&, const WString&, std::size_t) noexcept {}

RunObserver* RunObserver::GetFirst() noexcept
{
    return first_lc;
}

RunObserver::Pause::Pause() noexcept : first(std::exchange(first_lc, nullptr)) {}

RunObserver::Pause::~Pause()
{
    first_lc = first;
}
