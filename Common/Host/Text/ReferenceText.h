#pragma once

#include "HostApi.h"

#include <cstddef>
#include <string_view>

/// References to the instrument's data as they are written: "%S{status item}", "%C{[section]key}", "%U{usage counter}",
/// "%E{environment variable}". The letter may be of either case, a name ends at the first "}", and white space around
/// it does not count. Nothing is looked up here.
///
/// What is read is a view of the text. A fault that is placed at the end of the text says no more than that the text
/// is unfinished.
namespace ReferenceText {

enum class Fault
{
    None,
    Kind,       // no letter of a kind behind the "%"
    Opening,    // no "{" behind the letter
    Closing,    // no "}" behind the name
    SectionEnd, // "[" without "]"
    Section     // neither brackets nor a blank to tell the section from the key
};

struct Reference
{
    Fault fault = Fault::None;
    wchar_t kind = 0;            // L'S', L'C', L'U' or L'E'; 0 with Fault::Kind
    std::wstring_view name = {}; // trimmed; with Fault::Closing as much as there is
    std::size_t start = 0;       // of its "%"
    std::size_t end = 0;         // behind its "}", or the place of the fault
};

/// Reads the reference that begins with the "%" at the start of the text.
HOST_API Reference Read(std::wstring_view text) noexcept;

/// Reads the "{name}" at the start of the text as the part of a reference; `kind` and `start` stay 0.
HOST_API Reference ReadName(std::wstring_view text) noexcept;

/// Finds the first "%", letter and "{" in a text that may hold other "%" too, with a letter out of `kinds`, and reads
/// that reference. When there is none, `start` is the length of the text and the fault is Fault::Kind.
HOST_API Reference Find(std::wstring_view text, std::wstring_view kinds = L"SCUE") noexcept;

struct SettingName
{
    Fault fault = Fault::None;
    std::wstring_view section = {}; // trimmed, as the key
    std::wstring_view key = {};
};

/// Splits "[section]key" or "section key"; a fault is one at the end of the name.
HOST_API SettingName ReadSettingName(std::wstring_view name) noexcept;

} // namespace ReferenceText
