#include "BuiltIns/BuiltIn.h"
#include "Services/File.h"

namespace {
constexpr const wchar_t* usage_lc[] = {
    L"Usage: Echo [-f<file>] [<text>]",
    L" Writes the text, its words separated by single blanks.",
    L" Put double quotes around blanks that are to be kept.",
    L"Options: (Must be specified before the text)",
    L" -f<file>  Append the text to the file instead.",
};
constexpr BuiltInRecord record_lc = {L"Echo", 2003, usage_lc, CommandFlags::optionsFirst};

class Echo : public BuiltIn
{
public:
    Echo() : BuiltIn(record_lc) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Echo::Main(ArgumentList& arguments, Options& options)
{
    WString file;
    const bool toFile = options.TryGetString(L"f", badOptionValue, file, 1, 4096);
    Accept(arguments, options, 0, anyCount);

    WString text;
    for (unsigned int index = 0; index < arguments.Count(); ++index) {
        if (index > 0)
            text += L' ';
        text += arguments.At(index);
    }
    if (toFile) {
        const std::string line = text.ToUtf8() + '\n';
        File(file, FileOpenMode::Append, FileAccessMode::Write).Write(line.data(), line.size());
    } else {
        GetPipe().DoWriteLine(text);
    }
    return ExitCode(0);
}
} // namespace

CommandBase* CreateEcho()
{
    return new Echo();
}
