#pragma once

#include "InputOutput/ErrorCodes.hpp"
#include "InputOutput/Export.hpp"
#include "InputOutput/File.hpp"
#include "InputOutput/Location.hpp"

namespace IO
{

/// How carefully a file is deleted.
enum DataSafety
{
    DeleteForGood = 0
};

/// Operations on the file system as a whole. Every operation returns 0 for success or one of the codes in
/// ErrorCodes.hpp.
class INPUTOUTPUT_API FileSystem
{
  public:
    FileSystem() = delete;

    enum SpecLocId
    {
        TemporaryFolder = 12 ///< the folder for temporary files
    };

    /// Gives a location of the user's system; OtherError, with `location` untouched, for an unknown `id`.
    static int GetSpecialLocation(SpecLocId id, Location& location);

    /// Deletes a file; IsAFolder for a folder.
    static int Delete(const Location& location, DataSafety safety, AccessDeniedTreatment treatment);

    /// Puts the file `from` in the place of the file or link `to`, which need not exist, in one step: whoever
    /// opens `to` meanwhile, or after a crash, finds the old file or the new one. Both must be on
    /// the same device. IsAFolder when either is a folder. On failure, also by an exception, nothing has
    /// changed.
    static int Replace(const Location& from, const Location& to);
};

} // namespace IO
