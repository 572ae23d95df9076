/// @file
/// Paths that the user has given.
#pragma once

#include <string>

namespace Tool
{

/// The path that means standard input where a file is read.
constexpr const char* StandardInput = "-";

/// The name of a file in messages.
std::string DisplayName(const std::string& path);

bool IsFolder(const std::string& path);

} // namespace Tool
