#include "Contender.h"
#include "Variation.h"

#include <muParser.h>

namespace {
class MuParserContender : public Contender
{
public:
    explicit MuParserContender(const Texts& expressions) : expressions(expressions)
    {
        for (Variable& variable : variables)
            parser.DefineVar(variable.name, &variable.value);
    }

    void Evaluate(std::size_t text) override
    {
        try {
            parser.SetExpr(expressions[text]);
            value = parser.Eval();
        } catch (const mu::ParserError& error) {
            value = error.GetMsg();
        }
    }

    Value GetValue() override { return value; }

private:
    mu::Parser parser;
    Texts expressions;
    std::vector<Variable> variables = MakeVariables();
    Value value;
};
} // namespace

std::unique_ptr<Contender> MakeMuParser(const Texts& expressions)
{
    return std::make_unique<MuParserContender>(expressions);
}
