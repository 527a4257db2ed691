#pragma once

#include "EEToken.h"
#include "ValueKinds.h"

#include <cstddef>
#include <limits>

/// What can be told of an operand without reading anything: its value, or what kinds of values it may have.
struct AbstractValue
{
    static constexpr std::size_t noFinding = std::numeric_limits<std::size_t>::max();
    /// Longer texts are not followed, so that no expression makes work of more than its length.
    static constexpr std::size_t followedLength = 256;

    EEToken token; // the value; else only its position
    unsigned int kinds = ValueKinds::Any;
    bool isKnown = false;
    bool isPlaceSure = true;         // that it has this position, whatever its value
    std::size_t finding = noFinding; // that tells of it, when it is an error

    static AbstractValue Known(const EEToken& token)
    {
        AbstractValue value;
        value.token = token;
        value.kinds = ValueKinds::Of(token);
        value.isKnown = value.IsError() || token.GetText().Length() <= followedLength;
        return value;
    }
    static AbstractValue Unknown(unsigned int kinds, int position)
    {
        AbstractValue value;
        value.token.SetPosition(position);
        value.kinds = kinds;
        return value;
    }

    bool IsError() const noexcept { return kinds == ValueKinds::Error; }
    bool MayBe(unsigned int others) const noexcept { return (kinds & others) != 0; }
    int GetPosition() const noexcept { return token.GetPosition(); }
};
