/// @file
/// Debug assertions: faults that the program survives.
#pragma once

#include "NuvRoot/Export.hpp"

namespace Nuv
{

/// Receives a debug assertion: its place, what is wrong, and the function.
using DBBreakHandler = void (*)(const char* file, unsigned int line, const char* message,
                                const char* function);

/// Calls the handler.
NUVROOT_API void DBBreak(const char* file, unsigned int line, const char* message, const char* function);

/// Replaces the handler and returns the old one. Null restores the default, which writes a line to
/// standard error in debug builds and does nothing in others.
NUVROOT_API DBBreakHandler SetDBBreakHandler(DBBreakHandler handler);

} // namespace Nuv

using Nuv::DBBreak;
using Nuv::SetDBBreakHandler;
