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

    /// Makes a name of `prefix` and the text of a new GUID, which nothing in the folder has, and which
    /// is too rare to be there with an extension. Nothing is created. On failure `name` stays as it was:
    /// NotFound when there is no such folder, OtherError when `prefix` is too long for a name, or has a zero
    /// unit or half a surrogate pair.
    int GenerateUnusedName(const Nuv::UniString& prefix, Name& name) const;

  private:
    Location location;
};

} // namespace IO
