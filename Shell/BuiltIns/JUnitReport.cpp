#include "BuiltIns/JUnitReport.h"

#include "Text/HostError.h"

#include <filesystem>
#include <system_error>

static constexpr const char* kinds_lc[] = {"failure", "error", "skipped"};

/// The text as it stands in an attribute, or in an element, where a line feed may remain. Characters that XML cannot
/// hold become question marks.
static std::string Escape(const WString& text, const wchar_t* lineFeed = L"&#10;")
{
    WString result;
    for (const wchar_t ch : text) {
        switch (ch) {
        case L'<': result += L"&lt;"; break;
        case L'>': result += L"&gt;"; break;
        case L'&': result += L"&amp;"; break;
        case L'"': result += L"&quot;"; break;
        case L'\t': result += L"&#9;"; break; // as such, blank space would be read as a blank
        case L'\n': result += lineFeed; break;
        case L'\r': result += L"&#13;"; break;
        case L'\uFFFE':
        case L'\uFFFF': result += L'?'; break;
        default: result += ch < L' ' ? L'?' : ch;
        }
    }
    return result.ToUtf8();
}

static std::string FormatAttribute(const char* name, const WString& value)
{
    return std::string(" ") + name + "=\"" + Escape(value) + "\"";
}

static std::string FormatProblem(const std::string& kind, const JUnitCase::Problem& problem)
{
    std::string text = "    <" + kind;
    if (!problem.code.IsEmpty())
        text += FormatAttribute("type", problem.code);
    text += FormatAttribute("message", problem.message);
    if (problem.details.IsEmpty())
        return text + "/>\n";
    return text + ">" + Escape(problem.details, L"\n") + "</" + kind + ">\n";
}

void JUnitReport::Add(const JUnitCase& test)
{
    ++caseCount;
    if (!test.problems.empty())
        ++counts[test.kind];
    cases += "  <testcase" + FormatAttribute("classname", test.group) + FormatAttribute("name", test.name);
    if (!test.file.IsEmpty())
        cases += FormatAttribute("file", test.file) + FormatAttribute("line", WString::Format(L"%u", test.line));
    if (test.seconds)
        cases += FormatAttribute("time", WString::Format(L"%.3f", *test.seconds));
    cases += ">\n";
    for (const JUnitCase::Problem& problem : test.problems)
        cases += FormatProblem(kinds_lc[test.kind], problem);
    cases += "  </testcase>\n";
}

void JUnitReport::Write(File& file, const WString& name) const
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"labsh\" tests=\"" +
        std::to_string(caseCount) + "\" failures=\"" + std::to_string(counts[JUnitCase::Failure]) + "\" errors=\"" +
        std::to_string(counts[JUnitCase::Error]) + "\" skipped=\"" + std::to_string(counts[JUnitCase::Skipped]) +
        "\">\n" + cases + "</testsuite>\n";
    try {
        file.Write(text.data(), text.size());
    } catch (const HostException&) {
        std::error_code ignored;
        std::filesystem::resize_file(name.ToUtf8(), 0, ignored); // a part of a report is none
        throw;
    }
}
