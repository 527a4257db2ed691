#pragma once

#include <string>

/// The path that a "file:" URI names; empty for any other.
std::string ReadFileUri(const std::string& uri);
/// The URI of an absolute path.
std::string MakeFileUri(const std::string& path);
