#include "TextArena.h"

#include "Text/WString.h"

#include <algorithm>
#include <cwchar>

bool TextArena::HasRoom(std::size_t count) const noexcept
{
    return !blocks.empty() && count <= blocks[top.block].capacity - top.used;
}

bool TextArena::IsLast(std::wstring_view text) const noexcept
{
    return text.data() == top.last && text.data() + text.size() + 1 == blocks[top.block].characters.get() + top.used;
}

/// Whether `right`, which was made last, stands directly behind `left`.
bool TextArena::AreNeighbours(std::wstring_view left, std::wstring_view right) const noexcept
{
    return right.data() != blocks[top.block].characters.get() && left.data() + left.size() + 1 == right.data();
}

/// Storage for so many characters, in a block that holds `room` when it must be a new one.
wchar_t* TextArena::Make(std::size_t count, std::size_t room)
{
    constexpr std::size_t smallestBlock = 1000;
    while (!HasRoom(count)) {
        const std::size_t next = blocks.empty() ? 0 : top.block + 1;
        if (next == blocks.size()) {
            const std::size_t capacity = std::max(room, smallestBlock);
            blocks.push_back({std::make_unique_for_overwrite<wchar_t[]>(capacity), capacity});
        }
        top = {next, 0, nullptr};
    }
    wchar_t* const made = blocks[top.block].characters.get() + top.used;
    top.used += count;
    return made;
}

std::wstring_view TextArena::Copy(std::wstring_view text)
{
    if (text.empty())
        return {L"", text.size()};
    wchar_t* const made = Make(text.size() + 1, text.size() + 1);
    std::wmemmove(made, text.data(), text.size());
    made[text.size()] = 0;
    top.last = made;
    return {made, text.size()};
}

std::wstring_view TextArena::Join(std::wstring_view left, std::wstring_view right)
{
    const std::size_t size = left.size() + right.size();
    wchar_t* made = nullptr;
    if (IsLast(right) && AreNeighbours(left, right))
        made = blocks[top.block].characters.get() + --top.used - size - 1; // less the zero between them
    else if (IsLast(left) && HasRoom(right.size()))
        made = Make(right.size(), 0) - left.size() - 1;
    else if (IsLast(right) && HasRoom(left.size()))
        made = Make(left.size(), 0) - right.size() - 1;
    else // with room for a chain to go on
        made = Make(size + 1, std::max(size, std::min(2 * size, WString::maxLength)) + 1);
    std::wmemmove(made + left.size(), right.data(), right.size()); // either may stand there already
    std::wmemmove(made, left.data(), left.size());
    made[size] = 0;
    top.last = made;
    return {made, size};
}

std::size_t TextArena::GetCapacity() const noexcept
{
    std::size_t capacity = 0;
    for (const Block& block : blocks)
        capacity += block.capacity;
    return capacity;
}
