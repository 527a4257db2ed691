#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

/// Values one behind the other, in storage that is kept for the next ones. What a std::vector would do, but so that
/// pushing and popping are a few instructions in line.
template <typename Value>
class Stack
{
    static_assert(std::is_trivially_copyable_v<Value>);

public:
    /// The value must not be one of the stack.
    void Push(const Value& value)
    {
        if (top == limit)
            Grow();
        *top++ = value;
    }
    /// Room for one more value, which has any content until it is set; AddNext makes it the top value.
    Value& GetNext()
    {
        if (top == limit)
            Grow();
        return *top;
    }
    void AddNext() noexcept { ++top; }
    /// The top value, which stays where it is until the next push.
    const Value& Pop() noexcept { return *--top; }
    /// Removes all but the lowest `size` values.
    void Cut(std::size_t size) noexcept { top = values.get() + size; }

    /// The top value, or one that has so many above it.
    Value& GetTop(std::size_t above = 0) noexcept { return *(top - 1 - above); }
    Value& operator[](std::size_t index) const noexcept { return values[index]; }
    const Value* end() const noexcept { return top; }
    std::size_t GetSize() const noexcept { return static_cast<std::size_t>(top - values.get()); }
    std::size_t GetCapacity() const noexcept { return static_cast<std::size_t>(limit - values.get()); }
    bool IsEmpty() const noexcept { return top == values.get(); }

private:
    std::unique_ptr<Value[]> values;
    Value* top = nullptr;
    Value* limit = nullptr;

    [[gnu::noinline]] void Grow()
    {
        constexpr std::size_t smallest = 32;
        const std::size_t size = GetSize();
        const std::size_t capacity = std::max(2 * size, smallest);
        auto grown = std::make_unique_for_overwrite<Value[]>(capacity);
        std::copy_n(values.get(), size, grown.get());
        values = std::move(grown);
        top = values.get() + size;
        limit = values.get() + capacity;
    }
};
