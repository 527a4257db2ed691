#pragma once

#include "Services/Clock.h"
#include "Support/TemporaryFolder.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

/// What inputs run on: an instrument in a temporary folder, the same for each of them. Its clock moves by waits alone,
/// and no file is opened but in the folder, where relative names begin, and to read in the sources. One for the
/// process.
class Bench
{
public:
    /// The profile is a folder of the sources.
    explicit Bench(std::string profile);
    ~Bench();
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    /// Makes the instrument what it was at first, for the next input; but counters of commands go on.
    void Restore();
    /// What suffices of that after an input that cannot change the instrument.
    void Rewind();

private:
    /// Requests an abort when it has been looked at too often.
    class PatientClock : public Clock
    {
    public:
        unsigned int GetTickCount() override;
        void Sleep(unsigned int milliseconds) override;
        void Reset();

    private:
        unsigned int ticks = 0;
        unsigned int looks = 0;
    };

    /// Names, sizes and times of the files that commands may write.
    using Sight = std::map<std::string, std::pair<std::uintmax_t, std::filesystem::file_time_type>>;

    const std::string profile;
    const TemporaryFolder folder;
    PatientClock clock;
    Sight original;

    Sight Look() const;
    bool IsTouched() const;
    void Start();
};
