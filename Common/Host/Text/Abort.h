#pragma once

#include "HostApi.h"

/// The request to end what is running (Ctrl-C). One flag for the process.
namespace Abort {
/// May be called from a signal handler.
HOST_API void Request() noexcept;
HOST_API bool IsRequested() noexcept;
HOST_API void Clear() noexcept;
/// Throws HostException(HostError::Aborted) when an abort was requested.
HOST_API void ThrowIfRequested();
} // namespace Abort
