#pragma once

#include "InputOutput/ErrorCodes.hpp"
#include "InputOutput/Export.hpp"
#include "InputOutput/Location.hpp"

namespace IO
{

/// A folder on disk.
class INPUTOUTPUT_API Folder
{
  public:
    explicit Folder(const Location& folder);

    /// Makes a name that begins with `prefix` and that nothing in the folder has, with or without an
    /// extension. Nothing is created. NotFound, with `name` untouched, when there is no such folder.
    int GenerateUnusedName(const Nuv::UniString& prefix, Name& name) const;

  private:
    Location location;
};

} // namespace IO
