/// @file
/// The status values that channel operations and conversions return as plain `int`.
#pragma once

namespace Nuv
{

/// The operation did what it was asked to do.
inline constexpr int Success = 0;

/// The operation failed: a name was not found, a value has the wrong form, nothing is left to read.
inline constexpr int Failure = -7003;

} // namespace Nuv
