#include "Commands/Pipe.h"

void StreamPipe::DoWriteLine(const WString& line)
{
    const std::string bytes = line.ToUtf8() + '\n';
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
}
