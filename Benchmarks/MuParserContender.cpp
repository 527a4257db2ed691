#include "Contender.h"

#include <muParser.h>

namespace {
class MuParserContender : public Contender
{
public:
    explicit MuParserContender(const std::string& expression) : expression(expression)
    {
        parser.DefineVar("a", &a);
        parser.DefineVar("b", &b);
        parser.DefineVar("c", &c);
        parser.DefineVar("d", &d);
    }

    void Evaluate() override
    {
        try {
            parser.SetExpr(expression);
            value = parser.Eval();
        } catch (const mu::ParserError& error) {
            value = error.GetMsg();
        }
    }

    Value GetValue() override { return value; }

private:
    mu::Parser parser;
    std::string expression;
    Value value;
    double a = variableA;
    double b = variableB;
    double c = variableC;
    double d = variableD;
};
} // namespace

std::unique_ptr<Contender> MakeMuParser(const std::string& expression)
{
    return std::make_unique<MuParserContender>(expression);
}
