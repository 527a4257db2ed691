#pragma once

#include "Text/WString.h"
#include "Text/WStringArray.h"

/// The arguments of a command line, without its options.
class ArgumentList
{
public:
    ArgumentList() = default;
    explicit ArgumentList(WStringArray arguments) : arguments(std::move(arguments)) {}

    unsigned int Count() const noexcept { return static_cast<unsigned int>(arguments.Count()); }
    const WString& At(unsigned int index) const noexcept { return arguments[index]; } // index below Count()

private:
    WStringArray arguments;
};
