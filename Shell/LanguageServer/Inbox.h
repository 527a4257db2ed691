#pragma once

#include "LanguageServer/Framing.h"
#include "LanguageServer/Protocol.h"

#include <deque>
#include <optional>
#include <string>

/// The messages of a client, which come from a descriptor, with a look at those that wait already.
class Inbox
{
public:
    explicit Inbox(int descriptor) : descriptor(descriptor) {}

    /// A message, or what was wrong with what came instead of one.
    struct Incoming
    {
        Json message;
        std::string fault;
    };

    /// The message that a body holds.
    static Incoming Parse(std::string body);

    /// Waits for the next message; none when no more will come. Throws HostException when the wait is aborted.
    std::optional<Incoming> Take();
    /// Whether a message that waits cancels the request.
    bool IsCancelled(const Json& id) const;
    /// Whether the next message is there already and has this method.
    bool IsNext(const char* method) const;

private:
    static constexpr std::size_t mostWaiting = 64;

    const int descriptor;
    bool isOpen = true;
    Framing framing;
    std::deque<Incoming> waiting;

    void Gather();
    bool TryRead();
    void Unpack();
};
