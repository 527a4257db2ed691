#pragma once

#include "Containers/CriticalSection.h"
#include "Containers/ThreadEnd.h"

#include <cstddef>
#include <new>
#include <utility>

/// A doubly linked list of values. The nodes that a thread gives back are kept for its next ones (up to `keptNodes`
/// of each value type), so that lists which grow and shrink all the time do not allocate. Not locked; `section` is
/// for owners that share a list.
template <typename T>
class LinkedList
{
public:
    struct Node
    {
        // GCC clears the whole of an aggregate before it fills it; what has a constructor it leaves alone.
        explicit Node(const T& value) : value(value) {}
        explicit Node(T&& value) : value(std::move(value)) {}

        T value;
        Node* previous; // set when the node is linked
        Node* next;
    };

    static constexpr std::size_t keptNodes = 512;

    LinkedList() = default;
    LinkedList(const LinkedList&) = delete;
    LinkedList& operator=(const LinkedList&) = delete;
    ~LinkedList() { Clear(); }

    Node* GetHead() const noexcept { return head; }
    Node* GetTail() const noexcept { return tail; }
    std::size_t Count() const noexcept { return count; }
    bool IsEmpty() const noexcept { return count == 0; }

    void AddHead(const T& value) { LinkHead(MakeNode(value)); }
    void AddHead(T&& value) { LinkHead(MakeNode(std::move(value))); }
    void AddTail(const T& value) { LinkTail(MakeNode(value)); }
    void AddTail(T&& value) { LinkTail(MakeNode(std::move(value))); }

    /// The list must not be empty.
    void RemoveHead() noexcept
    {
        Node* node = UnlinkHead();
        node->~Node();
        Spare::Give(node);
    }

    void Clear() noexcept
    {
        while (head)
            RemoveHead();
    }

    CriticalSection section;

private:
    /// The thread's storage for nodes to come: a chain through the first word of each block.
    class Spare
    {
    public:
        static void* Take()
        {
            Block* block = chain.first;
            if (!block)
                return ::operator new(sizeof(Node));
            chain.first = block->next;
            --chain.count;
            return block;
        }

        static void Give(void* memory) noexcept
        {
            if (!chain.ends)
                chain.ends = TryRunAtThreadEnd(Close);
            if (!chain.ends || chain.closed || chain.count == keptNodes) {
                ::operator delete(memory);
                return;
            }
            chain.first = new (memory) Block{chain.first};
            ++chain.count;
        }

    private:
        struct Block
        {
            Block* next;
        };

        /// Without a destructor, so that lists which outlive the thread's other objects still find it.
        struct Chain
        {
            Block* first = nullptr;
            std::size_t count = 0;
            bool ends = false; // with the thread
            bool closed = false;
        };

        static void Close()
        {
            chain.closed = true;
            while (chain.first)
                ::operator delete(Take());
        }

        static inline thread_local constinit Chain chain;
    };

    template <typename Value>
    static Node* MakeNode(Value&& value)
    {
        void* memory = Spare::Take();
        try {
            return new (memory) Node(std::forward<Value>(value));
        } catch (...) {
            Spare::Give(memory);
            throw;
        }
    }

    Node* UnlinkHead() noexcept
    {
        Node* node = head;
        head = node->next;
        (head ? head->previous : tail) = nullptr;
        --count;
        return node;
    }

    void LinkHead(Node* node) noexcept
    {
        node->previous = nullptr;
        node->next = head;
        (head ? head->previous : tail) = node;
        head = node;
        ++count;
    }

    void LinkTail(Node* node) noexcept
    {
        node->next = nullptr;
        node->previous = tail;
        (tail ? tail->next : head) = node;
        tail = node;
        ++count;
    }

    Node* head = nullptr;
    Node* tail = nullptr;
    std::size_t count = 0;
};
