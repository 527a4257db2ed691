#pragma once

#include "HostApi.h"

#include <optional>
#include <string>
#include <string_view>

/// Turns UTF-16 that comes in blocks, cut anywhere, into UTF-8. What is no UTF-16 becomes U+FFFD.
class HOST_API Utf16Decoder
{
public:
    /// A decoder for what begins with these bytes; none when no byte order mark says that it is UTF-16. Throws
    /// HostException(FileError), with the name, for what is neither UTF-16 with such a mark nor UTF-8.
    static std::optional<Utf16Decoder> TryRecognise(std::string_view start, const std::string& name);
    /// What the bytes stand for, the byte order mark included.
    std::string Decode(std::string_view bytes);
    /// What stands for the rest when nothing follows.
    std::string Finish();

private:
    explicit Utf16Decoder(bool isBigEndian) : isBigEndian(isBigEndian) {}

    bool isBigEndian;
    std::string rest; // what a unit or a pair lacks its other half of
};
