#pragma once

#include "HostApi.h"

/// Base of everything that the host's containers own.
class HOST_API Object
{
public:
    virtual ~Object() = default;
    /// Identity, unless a class says otherwise.
    virtual bool operator==(const Object& other) const { return this == &other; }

protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};
