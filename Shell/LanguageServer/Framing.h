#pragma once

#include <cstddef>
#include <string>

/// Takes messages out of a stream of bytes: a header with "Content-Length", an empty line, and the body of so many
/// bytes. Behind what is no header it goes on at the next "Content-Length:".
class Framing
{
public:
    enum class Outcome
    {
        Message,
        Fault,  // a header, or a body that is too long, was passed over
        Nothing // until more bytes come
    };

    static constexpr std::size_t maxBodySize = std::size_t(64) << 20;

    void Append(const char* bytes, std::size_t count);
    Outcome Take(std::string& body);

private:
    static constexpr std::size_t maxHeaderSize = 4096;

    std::string buffer;
    std::size_t position = 0;   // in front of which the buffer is used up
    std::size_t passedOver = 0; // bytes of a body that are still to be passed over
    bool isLost = false;        // until the next header

    Outcome TakeFault();
    bool TryFindHeader();
    bool TryReadLine(std::size_t& start, std::string& line) const;
    bool TryReadLength(const std::string& line, std::size_t& length) const;
};

/// The header for a body.
std::string Frame(const std::string& body);
