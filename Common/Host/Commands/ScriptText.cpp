#include "Commands/ScriptText.h"

#include "Commands/CommandRunner.h"
#include "Services/WholeFile.h"
#include "Text/Utf16.h"

#include <algorithm>
#include <utility>

bool TextLines::TryReadLine(std::string& line)
{
    line.clear();
    if (rest.empty())
        return false;
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    line = rest.substr(0, std::min<std::size_t>(end, CommandRunner::maxLineLength + 1));
    if (line.ends_with('\r'))
        line.pop_back();
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return true;
}

std::string DecodeScriptText(std::string bytes, const std::string& name)
{
    if (auto decoder = Utf16Decoder::TryRecognise(bytes, name)) {
        bytes = decoder->Decode(bytes);
        bytes += decoder->Finish();
    }
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.erase(0, 3);
    return bytes;
}

std::string ReadScriptText(const std::string& path)
{
    std::string bytes;
    if (const int error = WholeFile::Read(path, bytes); error != 0)
        WholeFile::Fail(path, error);
    return DecodeScriptText(std::move(bytes), path);
}
