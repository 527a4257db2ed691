#pragma once

/// How many blocks the process has been given by malloc, calloc and realloc, and so by operator new, since it started.
unsigned long GetAllocationCount() noexcept;
