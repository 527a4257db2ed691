#pragma once

/// The processes that run on this machine, whoever started them.
namespace ProcessTable {
/// The id of a running process whose command name, and command line when one is given, match the patterns (`*`, `?`,
/// any case; the command line has its arguments joined by blanks); the lowest id when there are several, -1 when there
/// is none. This process counts too.
int FindMatching(const wchar_t* command, const wchar_t* commandLine);
} // namespace ProcessTable
