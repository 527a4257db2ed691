#pragma once

#include "Cases.h"

#include <memory>
#include <string>

/// An evaluator with its variables set and one expression to evaluate. The text is held in the form that the evaluator
/// takes.
class Contender
{
public:
    virtual ~Contender() = default;
    /// From text to value: nothing made of the text may be kept for the next time.
    virtual void Evaluate() = 0;
    /// The value of the last evaluation, or what went wrong.
    virtual Value GetValue() = 0;
};

std::unique_ptr<Contender> MakeEvaluator(const std::string& expression);
std::unique_ptr<Contender> MakeMuParser(const std::string& expression);
std::unique_ptr<Contender> MakeLua(const std::string& expression);
std::unique_ptr<Contender> MakeTcl(const std::string& expression);
