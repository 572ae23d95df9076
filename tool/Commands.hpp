/// @file
/// The subcommands. Each does its work and gives the exit status of the process.
#pragma once

#include "Output.hpp"
#include "Settings.hpp"

namespace Tool
{

/// @throws Trouble, as all of them, when the work could not be done
ExitStatus Compare(const CompareSettings& settings, Output& output);
ExitStatus Print(const PrintSettings& settings, Output& output);
ExitStatus Validate(const ValidateSettings& settings, Output& output);
ExitStatus Echo(const EchoSettings& settings, Output& output);
ExitStatus Lines(const LinesSettings& settings, Output& output);

} // namespace Tool
