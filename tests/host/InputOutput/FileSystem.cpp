// The application keeps its temporary files in the current folder, and the file before the last beside the
// last.

#include "InputOutput/FileSystem.hpp"

#include "InputOutput/ErrorCodes.hpp"

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

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

int FileSystem::Replace(const Location& from, const Location& to)
{
    const std::string path = to.ToNativePath();
    const std::string older = path + "~";
    std::error_code ignored; // of a file that is new
    std::filesystem::copy_file(path, older, std::filesystem::copy_options::overwrite_existing, ignored);
    return std::rename(from.ToNativePath().c_str(), path.c_str()) == 0 ? NoError : OtherError;
}

} // namespace IO
