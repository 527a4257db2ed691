#include "Instrument/IniFile.h"

#include "Instrument/NamedValues.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <SimpleIni.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace {

/// While it lives, the parser is reading on this thread. An exception that passed the parser would leak its copy of the
/// text. So when an abort is requested all names count as equal, which lets the parser come to its end at once, and
/// what it has read is thrown away.
class Reading
{
public:
    Reading() { current = this; }
    ~Reading() { current = nullptr; }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    bool IsAborted() const { return isAborted; }
    /// To be called once a comparison.
    static bool IsEnding() { return current && current->Look(); }

private:
    bool Look()
    {
        if (++comparisons % Abort::interval == 0)
            isAborted = isAborted || Abort::IsRequested();
        return isAborted;
    }

    static thread_local Reading* current;
    std::size_t comparisons = 0;
    bool isAborted = false;
};

thread_local Reading* Reading::current = nullptr;

bool IsAscii(char ch)
{
    return static_cast<unsigned char>(ch) < 0x80;
}

struct Utf8NameOrder
{
    bool operator()(const char* left, const char* right) const
    {
        if (Reading::IsEnding())
            return false;
        for (; IsAscii(*left) && IsAscii(*right); ++left, ++right) {
            const wchar_t l = ToLower(static_cast<wchar_t>(*left));
            const wchar_t r = ToLower(static_cast<wchar_t>(*right));
            if (l != r || l == 0)
                return l < r;
        }
        return NameOrder()(WString::FromUtf8(left), WString::FromUtf8(right));
    }
};

using Ini = CSimpleIniTempl<char, Utf8NameOrder, SI_ConvertA<char>>;

struct Line
{
    std::string_view text; // without the blanks at its start
    std::size_t end;       // where the next one starts
};

Line GetLine(std::string_view text, std::size_t start)
{
    const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
    std::string_view line = text.substr(start, end - start);
    line.remove_prefix(std::min(line.find_first_not_of(" \t\r\n"), line.size()));
    return {line, end};
}

/// The length of the text up to the end of its last line that is neither blank nor a comment.
std::size_t GetContentLength(std::string_view text)
{
    Abort::Watch watch;
    std::size_t length = 0;
    for (std::size_t start = 0; start < text.size();) {
        watch.Step();
        const Line line = GetLine(text, start);
        if (!line.text.empty() && line.text[0] != ';' && line.text[0] != '#')
            length = line.end;
        start = line.end;
    }
    return length;
}

/// The parser would put the keys that follow a broken section line into a section of its own making.
void CheckText(const std::string& path, std::string_view text)
{
    if (text.find('\0') != text.npos)
        WholeFile::Fail(path, L"not a text file");
    Abort::Watch watch;
    int number = 0;
    for (std::size_t start = 0; start < text.size();) {
        watch.Step();
        const Line line = GetLine(text, start);
        ++number;
        if (line.text.starts_with('[') && line.text.find(']') == line.text.npos)
            WholeFile::Fail(path, WString::Format(L"line %d: missing ]", number));
        start = line.end;
    }
}

bool HasAny(const WString& text, std::wstring_view characters)
{
    return text.View().find_first_of(characters) != std::wstring_view::npos;
}

using Settings = NamedValues<WString>;
using Sections = NamedValues<Settings>;

void CopySettings(const Ini::TKeyVal& entries, Settings& settings)
{
    constexpr std::size_t interval = 0x1000; // an entry costs as much as many characters
    Abort::Watch watch;
    std::vector<const Ini::TKeyVal::value_type*> sorted;
    for (const auto& entry : entries) {
        watch.Step();
        sorted.push_back(&entry);
    }
    std::ranges::sort(sorted, {}, [&](const auto* entry) {
        watch.Step();
        return entry->first.nOrder;
    });
    std::size_t count = 0;
    for (const auto* entry : sorted) {
        settings.Get(WString::FromUtf8(entry->first.pItem)) = WString::FromUtf8(entry->second);
        if (++count % interval == 0)
            Abort::ThrowIfRequested();
    }
}

Sections CopySections(const Ini& ini)
{
    Ini::TNamesDepend names;
    ini.GetAllSections(names);
    names.sort(Ini::Entry::LoadOrder());
    Sections sections;
    for (const Ini::Entry& name : names)
        CopySettings(*ini.GetSection(name.pItem), sections.Get(WString::FromUtf8(name.pItem)));
    return sections;
}

} // namespace

/// The file's text in the hands of the parser, which alone knows its comments, and the settings that it gives.
struct IniFile::Contents
{
    Ini ini;
    std::string lastComment; // the parser drops what follows the last key
    Sections sections;

    explicit Contents(const std::string& text)
    {
        ini.SetUnicode();
        ini.SetSpaces(false);
        const std::size_t length = GetContentLength(text);
        Read(text.data(), length);
        lastComment = text.substr(length);
        sections = CopySections(ini);
    }
    void Read(const char* text, std::size_t length)
    {
        const Reading reading;
        if (ini.LoadData(text, length) < 0)
            throw std::bad_alloc();
        if (reading.IsAborted())
            throw HostException(HostError::Aborted);
    }
    std::string GetText() const
    {
        std::string text;
        ini.Save(text);
        return text + lastComment;
    }
};

IniFile::IniFile() : contents(std::make_unique<Contents>("")) {}

IniFile::IniFile(const IniFile& other)
    : contents(std::make_unique<Contents>(other.contents->GetText())), path(other.path), stamp(other.stamp)
{}

IniFile::~IniFile() = default;

void IniFile::Load(const std::string& name)
{
    const FileStamp current = WholeFile::GetStamp(name); // taken first: a change while reading is noticed afterwards
    std::string text;
    const int errorNumber = WholeFile::Read(name, text);
    if (errorNumber != 0 && errorNumber != ENOENT)
        WholeFile::Fail(name, errorNumber);
    CheckText(name, text);
    contents = std::make_unique<Contents>(text);
    path = name;
    stamp = current;
}

bool IniFile::IsOutdated() const
{
    const FileStamp current = WholeFile::GetStamp(path);
    return current != FileStamp() && current != stamp;
}

void IniFile::Save()
{
    const std::string text = contents->GetText();
    stamp = WholeFile::Write(path, text);
    contents = std::make_unique<Contents>(text); // the parser keeps replaced values until it is made anew
}

bool IniFile::TryGet(const WString& section, const WString& key, WString& value) const
{
    const Settings* settings = contents->sections.Find(section);
    const WString* found = settings ? settings->Find(key) : nullptr;
    if (!found)
        return false;
    value = *found;
    return true;
}

bool IniFile::CanHold(const WString& section, const WString& key, const WString& value)
{
    using namespace std::literals;
    const WString name = key.Trim();
    return !HasAny(section.Trim(), L"]\r\n\0"sv) && !HasAny(name, L"=\r\n\0"sv) && !HasAny(value.Trim(), L"\r\n\0"sv) &&
        !name.IsEmpty() && !HasAny(name.Left(1), L"[;#");
}

void IniFile::Set(const WString& section, const WString& key, const WString& value)
{
    const std::string utf8[] = {section.Trim().ToUtf8(), key.Trim().ToUtf8(), value.Trim().ToUtf8()};
    contents->ini.SetValue(utf8[0].c_str(), utf8[1].c_str(), utf8[2].c_str());
    Settings& settings = contents->sections.Get(WString::FromUtf8(utf8[0]));
    settings.Get(WString::FromUtf8(utf8[1])) = WString::FromUtf8(utf8[2]); // as the file gives it back
}

bool IniFile::TryDelete(const WString& section, const WString& key)
{
    Settings* settings = contents->sections.Find(section);
    if (!settings || !settings->TryDelete(key))
        return false;
    contents->ini.Delete(section.ToUtf8().c_str(), key.ToUtf8().c_str());
    return true;
}

void IniFile::GetSections(WStringArray& sections) const
{
    contents->sections.GetNames(sections);
}

void IniFile::GetKeys(const WString& section, WStringArray& keys) const
{
    if (const Settings* settings = contents->sections.Find(section))
        settings->GetNames(keys);
    else
        keys.Clear();
}
