#pragma once

#include "EEToken.h"

/// An operand that holds the value: a number, a boolean or a text.
template <typename Value>
EEToken Operand(Value value, int position = 7)
{
    EEToken token;
    token.SetValue(value);
    token.SetPosition(position);
    return token;
}
