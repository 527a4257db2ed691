#pragma once

#include "HostApi.h"
#include "Services/Buffer.h"
#include "Text/WString.h"

#include <cstdint>
#include <string>

enum class FileOpenMode
{
    OpenExisting, // fails when there is no such file
    Create,       // makes the file, or empties the one that is there
    Append        // makes the file, or writes behind what is there
};

enum class FileAccessMode
{
    Read,
    Write
};

/// An open file. Its name is a path, taken from the working folder when it is relative; the system gets it in UTF-8.
/// Operations throw HostException(HostError::FileError) with the name and the system's reason. Reading is for regular
/// files: a folder or a device is refused with that reason, without opening it. Closed by the destructor.
class HOST_API File
{
public:
    File(const WString& name, FileOpenMode openMode, FileAccessMode accessMode);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// True when something of that name exists, whatever it is.
    static bool Exists(const WString& name);
    /// CRC-32 (IEEE 802.3) of the whole file, read in blocks. False when it cannot be read; throws instead when
    /// `throwOnError`.
    static bool GetCrc(const WString& name, std::uint32_t& crc, bool throwOnError);

    /// Size in bytes.
    std::uint64_t GetFileSize() const;
    /// Replaces the buffer's contents by the next block, as long as the buffer's capacity or to the end of the file;
    /// 0 bytes at the end. Throws HostException(HostError::Aborted) when an abort is requested, so that reading a
    /// long file, or one that makes its reader wait, ends; the buffer's contents
    /// are then undefined.
    void Read(Buffer& buffer);
    /// Throws HostException(HostError::Aborted) when an abort is requested, before and while it waits.
    void Write(const void* data, std::size_t count);
    void Close() noexcept;

private:
    const std::string path;
    int descriptor = -1;

    explicit File(const WString& name) : path(name.ToUtf8()) {}
};
