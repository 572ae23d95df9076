// The application keeps its temporary files in the current folder.

#include "InputOutput/FileSystem.hpp"

#include "InputOutput/ErrorCodes.hpp"

#include <cstdio>

namespace IO
{

int FileSystem::GetSpecialLocation(SpecLocId, Location& location)
{
    location.Set(u".");
    return NoError;
}

int FileSystem::Delete(const Location& location, DataSafety, AccessDeniedTreatment)
{
    return std::remove(location.ToNativePath().c_str()) == 0 ? NoError : OtherError;
}

} // namespace IO
