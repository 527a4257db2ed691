#pragma once

#include "HostApi.h"
#include "Text/WString.h"

#include <limits>

/// Finds the name that a mistyped one was most likely meant to be: a few letters, by its length, are missing, wrong,
/// too many, or have changed places with their neighbours. Case does not count.
class HOST_API SimilarName
{
public:
    explicit SimilarName(const WString& typed) : typed(typed) {}

    void Offer(const WString& name);
    /// The nearest of the names offered, of several the first; empty when none is near.
    const WString& Get() const noexcept { return nearest; }

private:
    WString typed;
    WString nearest;
    unsigned int distance = std::numeric_limits<unsigned int>::max();
};
