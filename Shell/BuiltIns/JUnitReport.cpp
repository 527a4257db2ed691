#include "BuiltIns/JUnitReport.h"

#include "Services/File.h"

/// The text as it stands in an attribute; characters that XML cannot hold become question marks.
static std::string Escape(const WString& text)
{
    WString result;
    for (const wchar_t ch : text) {
        switch (ch) {
        case L'<': result += L"&lt;"; break;
        case L'>': result += L"&gt;"; break;
        case L'&': result += L"&amp;"; break;
        case L'"': result += L"&quot;"; break;
        case L'\t': result += L"&#9;"; break; // as such, blank space would be read as a blank
        case L'\n': result += L"&#10;"; break;
        case L'\r': result += L"&#13;"; break;
        case L'\uFFFE':
        case L'\uFFFF': result += L'?'; break;
        default: result += ch < L' ' ? L'?' : ch;
        }
    }
    return result.ToUtf8();
}

void JUnitReport::Add(const AutomaticTestEntry& test, const std::vector<WString>& failures)
{
    ++testCount;
    failureCount += !failures.empty();
    cases += "  <testcase classname=\"" + Escape(test.name) + "\" name=\"" + Escape(test.title) + "\">\n";
    for (const WString& failure : failures)
        cases += "    <failure message=\"" + Escape(failure) + "\"/>\n";
    cases += "  </testcase>\n";
}

void JUnitReport::Write(const WString& file) const
{
    const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"labsh\" tests=\"" +
        std::to_string(testCount) + "\" failures=\"" + std::to_string(failureCount) + "\">\n" + cases +
        "</testsuite>\n";
    File(file, FileOpenMode::Create, FileAccessMode::Write).Write(text.data(), text.size());
}
