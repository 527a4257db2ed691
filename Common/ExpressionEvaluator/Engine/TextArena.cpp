#include "TextArena.h"

#include <algorithm>
#include <cwchar>

bool TextArena::HasRoom(std::size_t count) const noexcept
{
    return !blocks.empty() && count <= blocks[top.block].capacity - top.used;
}

bool TextArena::IsLast(std::wstring_view text) const noexcept
{
    return top.used != 0 && text.data() + text.size() + 1 == blocks[top.block].characters.get() + top.used;
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
        top = {next, 0};
    }
    wchar_t* const made = blocks[top.block].characters.get() + top.used;
    top.used += count;
    return made;
}

/// The texts side by side at `at`, where one of them may stand already.
static std::wstring_view Write(wchar_t* at, std::wstring_view left, std::wstring_view right)
{
    std::wmemmove(at + left.size(), right.data(), right.size());
    std::wmemmove(at, left.data(), left.size());
    at[left.size() + right.size()] = 0;
    return {at, left.size() + right.size()};
}

std::wstring_view TextArena::Copy(std::wstring_view text)
{
    if (text.empty())
        return {L"", 0};
    return Write(Make(text.size() + 1, text.size() + 1), text, {});
}

std::wstring_view TextArena::Join(std::wstring_view left, std::wstring_view right)
{
    if (IsLast(left) && HasRoom(right.size()))
        return Write(Make(right.size(), 0) - left.size() - 1, left, right);
    if (IsLast(right) && HasRoom(left.size()))
        return Write(Make(left.size(), 0) - right.size() - 1, left, right);
    const std::size_t count = left.size() + right.size() + 1;
    return Write(Make(count, 2 * count), left, right); // room for a chain to go on
}

std::size_t TextArena::GetCapacity() const noexcept
{
    std::size_t capacity = 0;
    for (const Block& block : blocks)
        capacity += block.capacity;
    return capacity;
}
