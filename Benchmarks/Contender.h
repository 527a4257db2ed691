#pragma once

#include "Cases.h"

#include <memory>
#include <string>
#include <vector>

using Texts = std::vector<std::string>;

/// An evaluator with its variables set and expressions to evaluate. The texts are held in the form that the evaluator
/// takes.
class Contender
{
public:
    virtual ~Contender() = default;
    /// From a text, told by its index, to its value: nothing made of it may be kept for the next time.
    virtual void Evaluate(std::size_t text) = 0;
    /// The value of the last evaluation, or what went wrong.
    virtual Value GetValue() = 0;
};

std::unique_ptr<Contender> MakeEvaluator(const Texts& expressions);
std::unique_ptr<Contender> MakeMuParser(const Texts& expressions);
std::unique_ptr<Contender> MakeLua(const Texts& expressions);
std::unique_ptr<Contender> MakeTcl(const Texts& expressions);
