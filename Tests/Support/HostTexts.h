#pragma once

#include "Text/HostError.h"
#include "Text/WStringArray.h"

#include <ostream>
#include <string>

/// How failed expectations show a text.
inline void PrintTo(const WString& text, std::ostream* stream)
{
    *stream << '"' << text.ToUtf8() << '"';
}

/// The texts joined by line feeds.
inline std::string Join(const WStringArray& texts)
{
    std::string joined;
    for (unsigned int index = 0; index < texts.Count(); ++index)
        joined += (index == 0 ? "" : "\n") + texts[index].ToUtf8();
    return joined;
}

inline std::string Repeat(const std::string& text, int count)
{
    std::string repeated;
    for (int index = 0; index < count; ++index)
        repeated += text;
    return repeated;
}

/// What the function throws: an exit code with the host's message behind it, or "" for nothing.
template <typename Function>
std::string GetThrown(Function&& run)
{
    try {
        run();
        return "";
    } catch (const HostException& error) {
        return error.ToString().ToUtf8() + " " + error.GetMessage().ToUtf8();
    } catch (const ExitCode& code) {
        return code.ToString().ToUtf8();
    }
}
