#pragma once

#include "Commands/RunObserver.h"

/// Writes, while it lives, the notes on lines that succeed: for one who types them, and may wonder at what they did.
class PromptNotes : public RunObserver
{
public:
    void OnEnd(const CommandRun& run) noexcept override;
};
