#include "BuiltIns/JUnitReport.h"

#include "Services/File.h"

/// The text as it stands between tags or in double quotes; characters that XML cannot hold become question marks.
static std::string Escape(const WString& text)
{
    std::string result;
    for (const char ch : text.ToUtf8()) {
        switch (ch) {
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '&': result += "&amp;"; break;
        case '"': result += "&quot;"; break;
        default: result += static_cast<unsigned char>(ch) >= ' ' || ch == '\n' || ch == '\t' ? ch : '?';
        }
    }
    return result;
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
