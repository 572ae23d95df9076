#include "InputOutput/FileSystem.hpp"

#include "InputOutput/SystemErrors.hpp"

#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace IO
{

int FileSystem::GetSpecialLocation(SpecLocId id, Location& location)
{
    if (id != TemporaryFolder)
        return OtherError;
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error)
        return CodeOfSystemError(error.value());
    location = Location(Nuv::UniString::FromUTF8(folder.string()));
    return NoError;
}

int FileSystem::Delete(const Location& location, DataSafety, AccessDeniedTreatment)
{
    return unlink(location.ToNativePath().c_str()) == 0 ? NoError : CodeOfLastError();
}

} // namespace IO
