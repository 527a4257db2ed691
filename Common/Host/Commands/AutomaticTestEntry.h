#pragma once

#include "Text/WString.h"

class TestCommand;

/// An automatic test that a plug-in registers. `kind` is passed through unchanged (1: runs without an instrument).
struct AutomaticTestEntry
{
    AutomaticTestEntry() = default;
    AutomaticTestEntry(const wchar_t* name, const wchar_t* title, unsigned int kind, void (*run)(TestCommand&))
        : name(name), title(title), kind(kind), run(run)
    {}

    WString name;
    WString title;
    unsigned int kind = 0;
    void (*run)(TestCommand&) = nullptr;
};
