#include "BuiltIns/BuiltIn.h"
#include "Services/File.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Echo [-f<file>] [<text>]",
    L" Writes the text, its words separated by single blanks.",
    L" Put double quotes around blanks that are to be kept.",
    L"Options: (Must be specified before the text)",
    L" -f<file>  Append the text to the file instead.",
};

constexpr FileOption file_lc(L"f", badOptionValue, 1, 4096, L"Append the text to this file");
constexpr OptionRecord options_lc[] = {file_lc};

class Echo : public BuiltIn
{
public:
    Echo() : BuiltIn(echo_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Echo::Main(ArgumentList& arguments, Options& options)
{
    WString file;
    const bool toFile = options.TryGetString(file_lc, file);
    Accept(arguments, options);

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

constexpr CommandRecord echo_gb = {L"Echo", 2003, Create<Echo>, usage_lc, options_lc, CommandFlags::optionsFirst};
