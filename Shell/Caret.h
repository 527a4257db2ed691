#pragma once

#include "Commands/RunObserver.h"
#include "PromptCommands.h"

#include <optional>

/// Points, under the line as it was typed, at the place where an expression could not be evaluated: for one who types,
/// on standard error. What a command shows itself counts characters, and its expression alone.
class Caret : public RunObserver
{
public:
    /// Where an expression has its fault.
    struct Place
    {
        WString expression;
        std::size_t index;   // in the expression
        std::size_t fromEnd; // of the line as it was typed
    };

    explicit Caret(const PromptCommands& commands);
    ~Caret() override;
    /// Null where nobody types.
    static Caret* GetOrNull() noexcept;

    void OnBegin(const CommandRun& run) noexcept override;
    void OnBadExpression(const CommandRun& run, const WString& expression, std::size_t place) noexcept override;
    void OnEnd(const CommandRun& run) noexcept override;

    /// Of the command that was begun last; none when it has not failed by its expression, or the place cannot be told.
    const std::optional<Place>& GetLast() const noexcept { return last; }
    /// Keeps the place, if there was one, of a failure that is to be told when the line has ended.
    void Keep(const std::optional<Place>& place) { kept.emplace(place); }
    /// The place of the failure of the line that is told next: of the one that was kept first.
    std::optional<Place> TakeOfLine();

    /// Shows the line with the caret at the place, if there is one; but not when a command has just shown the place
    /// itself at the same terminal, rightly and in one piece.
    void Show(const std::optional<Place>& place) const;

private:
    const PromptCommands& commands;
    std::optional<Place> last;
    std::optional<std::optional<Place>> kept;
};
