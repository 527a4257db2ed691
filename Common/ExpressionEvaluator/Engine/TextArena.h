#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

/// The texts that an evaluation makes, each with a zero behind it. A text stays where it is until it is let go of;
/// the storage is kept for the next ones.
class TextArena
{
public:
    /// What has been made, to return to.
    struct Place
    {
        std::size_t block = 0;
        std::size_t used = 0;
        const wchar_t* last = nullptr; // the text that was made last
    };

    /// The text may be one that has been let go of since the last one was made.
    std::wstring_view Copy(std::wstring_view text);
    /// Both texts as one. That one takes the place of whichever was made last, so that a chain of joins copies nothing
    /// anew; neither text must be used any more.
    std::wstring_view Join(std::wstring_view left, std::wstring_view right);
    Place GetPlace() const noexcept { return top; }
    /// Lets go of all texts that have been made since.
    void ReturnTo(Place place) noexcept { top = place; }
    /// The characters that its storage has room for.
    std::size_t GetCapacity() const noexcept;

private:
    struct Block
    {
        std::unique_ptr<wchar_t[]> characters;
        std::size_t capacity;
    };
    std::vector<Block> blocks;
    Place top; // behind the text that was made last

    bool HasRoom(std::size_t count) const noexcept;
    bool IsLast(std::wstring_view text) const noexcept;
    bool AreNeighbours(std::wstring_view left, std::wstring_view right) const noexcept;
    wchar_t* Make(std::size_t count, std::size_t room);
};
