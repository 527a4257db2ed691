#include "Commands/ScriptAssistant.h"

static constinit const ScriptAssistant* assistant_lc = nullptr;

ScriptAssistant::ScriptAssistant() noexcept
{
    assistant_lc = this;
}

ScriptAssistant::~ScriptAssistant()
{
    if (assistant_lc == this)
        assistant_lc = nullptr;
}

const ScriptAssistant* ScriptAssistant::GetOrNull() noexcept
{
    return assistant_lc;
}
