/// @file
/// The error codes of the operating system as those of this library. Private to InputOutput.
#pragma once

#include "InputOutput/ErrorCodes.hpp"

#include <cerrno>

namespace IO
{

inline int CodeOfSystemError(int systemError)
{
    switch (systemError)
    {
    case ENOENT:
    case ENOTDIR:
        return NotFound;
    case EACCES:
    case EPERM:
    case EROFS:
        return AccessDenied;
    case EISDIR:
        return IsAFolder;
    case ENOSPC:
    case EDQUOT:
        return NoSpace;
    default:
        return OtherError;
    }
}

/// The code of the system call that has just failed.
inline int CodeOfLastError() { return CodeOfSystemError(errno); }

} // namespace IO
