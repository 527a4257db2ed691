#include "Instrument/UsageJournal.h"

#include "Services/WholeFile.h"

#include <chrono>
#include <cstdint>
#include <string_view>
#include <thread>

namespace {

constexpr std::size_t headSize = 32;
constexpr std::size_t frameHeadSize = 24;

std::uint32_t GetBigEndian(std::string_view bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

/// The running checksum, over pairs of words in the order of bytes that the head names.
struct Sum
{
    bool isBigEndian;
    std::uint32_t first = 0;
    std::uint32_t second = 0;

    void Add(std::string_view bytes)
    {
        for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
            first += GetWord(bytes, at) + second;
            second += GetWord(bytes, at + 4) + first;
        }
    }
    /// Whether it is the one that stands there.
    bool Is(std::string_view bytes, std::size_t at) const
    {
        return GetBigEndian(bytes, at) == first && GetBigEndian(bytes, at + 4) == second;
    }

private:
    std::uint32_t GetWord(std::string_view bytes, std::size_t at) const
    {
        const std::uint32_t word = GetBigEndian(bytes, at);
        return isBigEndian ? word : __builtin_bswap32(word);
    }
};

/// Whether no frame that ends a change stands behind one that is not right.
bool HasSoundFrames(std::string_view journal)
{
    constexpr std::uint32_t magic = 0x377F0682; // the last bit: big-endian sums
    if (journal.empty())
        return true;
    if (journal.size() < headSize || (GetBigEndian(journal, 0) | 1) != (magic | 1))
        return false;
    Sum sum = {(GetBigEndian(journal, 0) & 1) != 0};
    sum.Add(journal.substr(0, 24));
    if (!sum.Is(journal, 24))
        return false;
    const std::size_t frameSize = frameHeadSize + GetBigEndian(journal, 8);
    const std::string_view salt = journal.substr(16, 8); // another one: of an earlier use of the journal
    bool isRight = true;
    for (std::size_t at = headSize; journal.size() - at >= frameSize; at += frameSize) {
        const std::string_view frame = journal.substr(at, frameSize);
        const bool isOfHead = frame.substr(8, 8) == salt;
        const bool endsChange = GetBigEndian(frame, 4) != 0;
        if (!isRight && isOfHead && endsChange)
            return false;
        sum.Add(frame.substr(0, 8));
        sum.Add(frame.substr(frameHeadSize));
        isRight = isRight && isOfHead && sum.Is(frame, 16);
    }
    return true;
}

bool IsSoundNow(const std::string& database)
{
    std::string journal;
    if (WholeFile::Read(database + "-wal", journal) != 0)
        return true; // there is none, or SQLite says what it thinks of it
    const FileStamp stamp = WholeFile::GetStamp(database);
    return HasSoundFrames(journal) && (stamp == FileStamp() || stamp.size != 0); // it is begun before its journal
}

} // namespace

/// Who writes just then may be seen between the two halves of a frame.
bool UsageJournal::IsSound(const std::string& database)
{
    constexpr int attempts = 3;
    constexpr std::chrono::milliseconds pause(10);
    for (int i = 1; !IsSoundNow(database); ++i) {
        if (i == attempts)
            return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}
