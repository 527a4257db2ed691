#include "LanguageServer/Inbox.h"

#include "Text/Abort.h"
#include "Text/HostError.h"
#include "WaitForInput.h"

#include <algorithm>
#include <charconv>
#include <poll.h>
#include <unistd.h>

static bool IsSurrogate(const std::string& text, std::size_t at, unsigned int from, unsigned int to)
{
    constexpr std::size_t size = 6; // of \uD800
    unsigned int unit = 0;
    return text.size() - std::min(text.size(), at) >= size && text[at] == '\\' && text[at + 1] == 'u' &&
        std::from_chars(text.data() + at + 2, text.data() + at + size, unit, 16).ec == std::errc() && from <= unit &&
        unit <= to;
}

/// Puts U+FFFD, which counts as many units, for each half of a pair that lacks the other, as editors send them while
/// somebody deletes.
static void MendSurrogates(std::string& body)
{
    constexpr std::size_t size = 6;
    for (std::size_t at = body.find('\\'); at < body.size(); at = body.find('\\', at)) {
        const bool isHigh = IsSurrogate(body, at, 0xD800, 0xDBFF);
        if (isHigh && IsSurrogate(body, at + size, 0xDC00, 0xDFFF)) {
            at += 2 * size;
        } else if (isHigh || IsSurrogate(body, at, 0xDC00, 0xDFFF)) {
            body.replace(at, size, "\\uFFFD");
            at += size;
        } else {
            at += 2; // an escaped backslash with its other half
        }
    }
}

Inbox::Incoming Inbox::Parse(std::string body)
{
    constexpr bool throws = false;
    constexpr int deepest = 100; // copies of a message recur into it
    bool isTooDeep = false;
    const auto limit = [&](int depth, Json::parse_event_t, Json&) {
        isTooDeep = isTooDeep || depth > deepest;
        return depth <= deepest;
    };
    Json message = Json::parse(body, limit, throws);
    if (message.is_discarded() && !isTooDeep) {
        MendSurrogates(body);
        message = Json::parse(body, limit, throws);
    }
    if (isTooDeep)
        return {nullptr, "the message is nested too deeply"};
    if (message.is_discarded())
        return {nullptr, "the message is no JSON in UTF-8"};
    return {std::move(message), ""};
}

std::optional<Inbox::Incoming> Inbox::Take()
{
    Gather();
    while (waiting.empty() && isOpen) {
        if (!WaitForInput(descriptor))
            throw HostException(HostError::Aborted);
        isOpen = TryRead();
    }
    if (waiting.empty())
        return std::nullopt;
    Incoming next = std::move(waiting.front());
    waiting.pop_front();
    return next;
}

/// Takes in what is there, as far as it is to be looked at.
void Inbox::Gather()
{
    pollfd input = {descriptor, POLLIN, 0};
    Unpack();
    while (isOpen && waiting.size() < mostWaiting && poll(&input, 1, 0) > 0)
        isOpen = TryRead();
}

bool Inbox::TryRead()
{
    char block[0x10000];
    const ssize_t count = read(descriptor, block, sizeof block);
    if (count <= 0)
        return count < 0 && errno == EINTR;
    framing.Append(block, static_cast<std::size_t>(count));
    Unpack();
    return true;
}

void Inbox::Unpack()
{
    std::string body;
    while (waiting.size() < mostWaiting) {
        switch (framing.Take(body)) {
        case Framing::Outcome::Message: waiting.push_back(Parse(std::move(body))); break;
        case Framing::Outcome::Fault: waiting.push_back({nullptr, "no header with Content-Length"}); break;
        case Framing::Outcome::Nothing: return;
        }
    }
}

bool Inbox::IsCancelled(const Json& id) const
{
    const Json cancelling = {{"id", id}};
    return std::ranges::any_of(waiting, [&](const Incoming& incoming) {
        const Json& message = incoming.message;
        return message.is_object() && message.value("method", Json()) == "$/cancelRequest" &&
            message.value("params", Json()) == cancelling;
    });
}

bool Inbox::IsNext(const char* method) const
{
    return !waiting.empty() && waiting.front().message.is_object() &&
        waiting.front().message.value("method", Json()) == method;
}
