#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <limits>

/// The same words for what was found otherwise, or an empty text for an empty one.
HOST_API WString DidYouMean(const WString& meant);

/// Finds the name that a mistyped one was most likely meant to be: a few letters, by its length, are missing, wrong,
/// too many, or have changed places with their neighbours. The first letter of a short name is taken to be right. Case
/// does not count.
class HOST_API SimilarName
{
public:
    explicit SimilarName(const WString& typed) : typed(typed) {}

    void Offer(const WString& name);
    void Offer(const WStringArray& names);
    /// The nearest of the names offered, of several the first, or the first as long as the typed one; empty when none
    /// is near.
    const WString& Get() const noexcept { return nearest; }
    /// " (did you mean <name>?)" to be put behind a message; empty when no name is near.
    WString GetQuestion() const { return DidYouMean(nearest); }

private:
    WString typed;
    WString nearest;
    unsigned int distance = std::numeric_limits<unsigned int>::max();
};
