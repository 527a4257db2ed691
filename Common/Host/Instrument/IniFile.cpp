#include "Instrument/IniFile.h"

#include "Instrument/NamedValues.h"
#include "Text/Abort.h"

#include <algorithm>
#include <cerrno>
#include <list>
#include <optional>
#include <string_view>

namespace {

using namespace std::literals;

constexpr std::string_view blanks = " \t\v\f\r\n";
constexpr std::string_view mark = "\xEF\xBB\xBF"; // of UTF-8, at the start of a file

using Lines = std::list<std::string>; // each with its end

struct Setting
{
    WString value;
    std::vector<Lines::iterator> lines; // the last counts
    unsigned int number = 0;            // of that line
};

struct Section
{
    NamedValues<Setting> settings;
    std::optional<Lines::iterator> last; // behind which a new setting goes; none: at the start of the file
};

std::string_view TrimBlanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

WString ToName(std::string_view text)
{
    return WString::FromUtf8(TrimBlanks(text)).Trim();
}

/// The line in a report, which needs no more than its start.
WString Quote(std::string_view line)
{
    constexpr std::size_t longest = 60;
    return L"\"" + WString::FromUtf8(line.substr(0, longest)) + L"\"";
}

/// Takes the first line, with its end, from the text.
std::string_view TakeLine(std::string_view& text)
{
    std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    end += text.substr(end).starts_with("\r\n") ? 2U : end < text.size() ? 1U : 0U;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    return line;
}

std::string_view GetEnd(std::string_view line)
{
    return line.substr(line.find_last_not_of("\r\n") + 1);
}

bool HasAny(const WString& text, std::wstring_view characters)
{
    return text.View().find_first_of(characters) != std::wstring_view::npos;
}

} // namespace

/// The lines of a file, and what they say.
struct IniFile::Contents
{
    std::string head; // the mark, or nothing
    Lines lines;
    std::string lineEnd = "\n"; // of new lines
    NamedValues<Section> sections;
    std::vector<Fault> faults;

    explicit Contents(std::string_view text);
    std::string GetText() const;
    const Setting* Find(const WString& section, const WString& key) const;
    void Set(const WString& section, const WString& key, const WString& value);
    bool TryDelete(const WString& section, const WString& key);

private:
    unsigned int number = 0;    // of the line that is being read
    Section* current = nullptr; // that it belongs to
    bool isLost = false;        // behind a section line that is not understood

    void Read(Lines::iterator line);
    void ReadSection(Lines::iterator line, std::string_view text);
    void ReadSetting(Lines::iterator line, std::string_view text, std::size_t equals);
    Section& GetSection(const WString& name);
    Lines::iterator AddLine(std::optional<Lines::iterator> last, const std::string& text);
};

IniFile::Contents::Contents(std::string_view text)
{
    if (text.starts_with(mark)) {
        head = mark;
        text.remove_prefix(mark.size());
    }
    while (!text.empty()) {
        lines.emplace_back(TakeLine(text));
        Read(std::prev(lines.end()));
        if (number % 0x1000 == 0) // a line costs as much as many characters
            Abort::ThrowIfRequested();
    }
    if (!lines.empty() && !GetEnd(lines.front()).empty())
        lineEnd = GetEnd(lines.front());
}

void IniFile::Contents::Read(Lines::iterator line)
{
    const std::string_view text = TrimBlanks(*line);
    const std::size_t equals = text.find('=');
    ++number;
    if (text.empty() || text[0] == ';' || text[0] == '#')
        return;
    if (text.find('\0') != text.npos)
        faults.push_back({number, L"this is no text"});
    else if (text[0] == '[')
        ReadSection(line, text);
    else if (equals == 0 || equals == text.npos)
        faults.push_back({number, Quote(text) + L" is neither a [section] nor a key=value"});
    else
        ReadSetting(line, text, equals);
}

void IniFile::Contents::ReadSection(Lines::iterator line, std::string_view text)
{
    const std::size_t end = text.find(']');
    isLost = end == text.npos;
    if (isLost) {
        faults.push_back({number, Quote(text) + L" lacks a ], so that what follows is in no section"});
        return;
    }
    current = &sections.Get(ToName(text.substr(1, end - 1)));
    current->last = line;
}

void IniFile::Contents::ReadSetting(Lines::iterator line, std::string_view text, std::size_t equals)
{
    if (isLost)
        return;
    if (!current)
        current = &sections.Get(WString()); // at the start of the file
    Setting& setting = current->settings.Get(ToName(text.substr(0, equals)));
    setting.value = ToName(text.substr(equals + 1));
    setting.lines.push_back(line);
    setting.number = number;
    current->last = line;
}

std::string IniFile::Contents::GetText() const
{
    std::string text = head;
    for (const std::string& line : lines)
        text += line;
    return text;
}

const Setting* IniFile::Contents::Find(const WString& section, const WString& key) const
{
    const Section* found = sections.Find(section);
    return found ? found->settings.Find(key) : nullptr;
}

/// Adds a line behind that one, or at the start.
Lines::iterator IniFile::Contents::AddLine(std::optional<Lines::iterator> last, const std::string& text)
{
    if (last && GetEnd(**last).empty())
        **last += lineEnd;
    return lines.insert(last ? std::next(*last) : lines.begin(), text + lineEnd);
}

Section& IniFile::Contents::GetSection(const WString& name)
{
    if (!name.IsEmpty() && !sections.Find(name)) {
        std::optional<Lines::iterator> last;
        if (!lines.empty())
            last = std::prev(lines.end());
        if (last && !TrimBlanks(**last).empty())
            last = AddLine(last, "");
        sections.Get(name).last = AddLine(last, "[" + name.ToUtf8() + "]");
    }
    return sections.Get(name);
}

void IniFile::Contents::Set(const WString& section, const WString& key, const WString& value)
{
    const std::string bytes = value.ToUtf8();
    const WString text = WString::FromUtf8(bytes); // as the file gives it back
    Section& place = GetSection(section);
    Setting& setting = place.settings.Get(key);
    if (setting.lines.empty()) {
        place.last = AddLine(place.last, key.ToUtf8() + "=" + bytes);
        setting.lines.push_back(*place.last);
    } else if (setting.value != text) {
        std::string& line = *setting.lines.back();
        const std::size_t start = std::min(line.find_first_not_of(" \t", line.find('=') + 1), line.size());
        line = line.substr(0, start) + bytes + std::string(GetEnd(line));
    }
    setting.value = text;
}

bool IniFile::Contents::TryDelete(const WString& section, const WString& key)
{
    Section* place = sections.Find(section);
    const Setting* setting = place ? place->settings.Find(key) : nullptr;
    if (!setting)
        return false;
    for (const Lines::iterator line : setting->lines) {
        if (place->last == line)
            place->last = line == lines.begin() ? std::nullopt : std::optional(std::prev(line));
        lines.erase(line);
    }
    return place->settings.TryDelete(key);
}

IniFile::IniFile() : contents(std::make_unique<Contents>("")) {}

IniFile::IniFile(const IniFile& other)
    : contents(std::make_unique<Contents>(other.contents->GetText())), path(other.path), stamp(other.stamp)
{}

IniFile& IniFile::operator=(IniFile&& other) noexcept = default;

IniFile::~IniFile() = default;

void IniFile::Load(const std::string& name, const std::string& defaults)
{
    *this = IniFile();
    path = name;
    const FileStamp current = WholeFile::GetStamp(name); // taken first: a change while reading is noticed afterwards
    std::string text;
    const auto isAbsent = [](int errorNumber) { return errorNumber == ENOENT || errorNumber == ENOTDIR; };
    int errorNumber = WholeFile::Read(name, text);
    if (isAbsent(errorNumber) && !defaults.empty())
        errorNumber = WholeFile::Read(defaults, text);
    if (errorNumber != 0 && !isAbsent(errorNumber))
        WholeFile::Fail(name, errorNumber);
    contents = std::make_unique<Contents>(text);
    stamp = current;
}

bool IniFile::IsOutdated() const
{
    const FileStamp current = WholeFile::GetStamp(path);
    return current != FileStamp() && current != stamp;
}

void IniFile::Save()
{
    stamp = WholeFile::Write(path, contents->GetText());
}

const std::vector<IniFile::Fault>& IniFile::GetFaults() const noexcept
{
    return contents->faults;
}

WString IniFile::Describe(const Fault& fault) const
{
    return WString::Format(L"%s:%u: %s", WString::FromUtf8(path), fault.line, fault.reason);
}

bool IniFile::TryGet(const WString& section, const WString& key, WString& value) const
{
    const Setting* setting = contents->Find(section, key);
    if (setting)
        value = setting->value;
    return setting != nullptr;
}

unsigned int IniFile::GetLine(const WString& section, const WString& key) const
{
    const Setting* setting = contents->Find(section, key);
    return setting ? setting->number : 0;
}

bool IniFile::CanHold(const WString& section, const WString& key, const WString& value)
{
    const WString name = key.Trim();
    return !HasAny(section.Trim(), L"]\r\n\0"sv) && !HasAny(name, L"=\r\n\0"sv) && !HasAny(value.Trim(), L"\r\n\0"sv) &&
        !name.IsEmpty() && !HasAny(name.Left(1), L"[;#\xFEFF");
}

void IniFile::Set(const WString& section, const WString& key, const WString& value)
{
    contents->Set(section.Trim(), key.Trim(), value.Trim());
}

bool IniFile::TryDelete(const WString& section, const WString& key)
{
    return contents->TryDelete(section, key);
}

void IniFile::GetSections(WStringArray& sections) const
{
    contents->sections.GetNames(sections);
}

void IniFile::GetKeys(const WString& section, WStringArray& keys) const
{
    if (const Section* found = contents->sections.Find(section))
        found->settings.GetNames(keys);
    else
        keys.Clear();
}
