#pragma once

/// Serves the client at standard input and output, which have nothing but the protocol on them, until it says that it
/// goes or is gone. False when it did not say so in order. Throws HostException, also when the plug-in is missing that
/// knows the language.
bool RunLanguageServer();
