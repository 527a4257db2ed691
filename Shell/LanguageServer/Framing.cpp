#include "LanguageServer/Framing.h"

#include "Text/CharacterCase.h"
#include "Text/WString.h"

#include <algorithm>
#include <charconv>
#include <limits>

static constexpr std::string_view lengthField = "Content-Length:";

void Framing::Append(const char* bytes, std::size_t count)
{
    const std::size_t skipped = std::min(count, passedOver);
    passedOver -= skipped;
    buffer.erase(0, position);
    position = 0;
    buffer.append(bytes + skipped, count - skipped);
}

/// message: { field } "\r\n" body
Framing::Outcome Framing::Take(std::string& body)
{
    if (isLost && !TryFindHeader())
        return Outcome::Nothing;
    constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
    std::size_t place = position;
    std::size_t length = none;
    for (std::string line; TryReadLine(place, line);) {
        if (place - position <= 2 && line.empty()) { // left over in front of a header
            position = place;
            continue;
        }
        if (place - position > maxHeaderSize)
            return TakeFault();
        if (!line.empty() && !TryReadLength(line, length))
            return TakeFault();
        if (!line.empty())
            continue;
        if (length == none)
            return TakeFault();
        const std::size_t there = buffer.size() - place;
        if (length > maxBodySize) {
            passedOver = length - std::min(length, there);
            position = place + std::min(length, there);
            return Outcome::Fault;
        }
        if (there < length)
            return Outcome::Nothing;
        body.assign(buffer, place, length);
        position = place + length;
        return Outcome::Message;
    }
    return buffer.size() - position > maxHeaderSize ? TakeFault() : Outcome::Nothing;
}

Framing::Outcome Framing::TakeFault()
{
    isLost = true;
    position = std::min(position + 1, buffer.size()); // so that the same header is not found again
    return Outcome::Fault;
}

/// Goes to the next header; keeps of the rest what may be the beginning of one.
bool Framing::TryFindHeader()
{
    const std::size_t found = buffer.find(lengthField, position);
    isLost = found == std::string::npos;
    position = isLost ? std::max(position, buffer.size() - std::min(buffer.size(), lengthField.size() - 1)) : found;
    return !isLost;
}

/// Reads the line at `start`, which then stands behind it.
bool Framing::TryReadLine(std::size_t& start, std::string& line) const
{
    const std::size_t end = buffer.find('\n', start);
    if (end == std::string::npos)
        return false;
    line.assign(buffer, start, end - start);
    if (line.ends_with('\r'))
        line.pop_back();
    start = end + 1;
    return true;
}

/// Reads the length out of its field; other fields do not matter. False for what is none, or has a bad length.
bool Framing::TryReadLength(const std::string& line, std::size_t& length) const
{
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos)
        return false;
    const WString name = WString::FromUtf8(line.substr(0, colon + 1));
    if (!name.Equals(WString::FromUtf8(lengthField).View(), true))
        return true;
    const char* const end = line.data() + line.size();
    const char* const first = line.data() + std::min(line.find_first_not_of(" \t", colon + 1), line.size());
    const auto [behind, error] = std::from_chars(first, end, length);
    return error == std::errc() &&
        std::string_view(behind, static_cast<std::size_t>(end - behind)).find_first_not_of(" \t") ==
        std::string_view::npos;
}

std::string Frame(const std::string& body)
{
    return std::string(lengthField) + " " + std::to_string(body.size()) + "\r\n\r\n" + body;
}
