#include "ExpressionEvaluatorException.h"
#include "FunctionClasses.h"
#include "Saturate.h"
#include "Services/DateTime.h"

#include <cmath>

EEMathFunctionPointer::EEMathFunctionPointer(const wchar_t* name, double (*routine)(double))
    : EEFunction(name, 1), routine(routine), routineName(name)
{}

void EEMathFunctionPointer::Evaluate(EEToken& result, EETokenStack& arguments)
{
    if (arguments.Count() != 1)
        throw ExpressionEvaluatorException(Errors::OneParameterRequired.number,
            WString::Format(Errors::OneParameterRequired.message, routineName), arguments.GetTail().GetPosition());
    const EEToken& argument = arguments.Pop();
    const double answer = routine(argument.GetNumber());
    if (!std::isnan(answer)) {
        result.SetValue(answer);
        return;
    }
    result.SetException(Errors::InvalidOperation.number, Errors::InvalidOperation.message);
    result.SetPosition(argument.GetPosition() - 1);
}

double sign(double value)
{
    return value < 0 ? -1 : 1;
}

double MyInt(double value)
{
    return std::trunc(value);
}

double DateToDays(double date)
{
    const int dateInt = Saturate<int>(date);
    DateTime dateTime;
    if (dateInt == 0 || !dateTime.TrySetValue(dateInt, 0))
        throw ExpressionEvaluatorException(
            Errors::InvalidDate.number, WString::Format(Errors::InvalidDate.message, dateInt), -1);
    return dateTime.ToDays();
}

double DaysToDate(double days)
{
    constexpr int floorDate = 16010101;
    const int dayNumber = Saturate<int>(days);
    if (!DateTime::IsDaysValid(dayNumber))
        throw ExpressionEvaluatorException(
            Errors::InvalidDays.number, WString::Format(Errors::InvalidDays.message, dayNumber), -1);
    const int date = DateTime::FromDays(dayNumber).ToDateInt();
    return date != 0 ? date : floorDate; // a host may answer 0 for its first day
}
