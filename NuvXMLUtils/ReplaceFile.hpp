/// @file
/// Writes a file without losing the old one. Private to NuvXMLUtils.
#pragma once

#include "InputOutput/Location.hpp"
#include "NuvRoot/UniString.hpp"

#include <string_view>

namespace NuvXML
{

/// Writes a new file beside the one at `location`, which need not exist, and puts it in its place once it is
/// complete and on the device. On failure, also by an exception, the old file is as it was and the new one is
/// deleted; a process that is killed leaves the new one, whose name begins with "NuvXML_unfinished_".
/// @return 0 or a code of ErrorCodes.hpp
int ReplaceFile(const IO::Location& location, std::string_view bytes);

/// Why a file could not be written, for a message.
Nuv::UniString TextOfWritingError(int code);

} // namespace NuvXML
