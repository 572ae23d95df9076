#include "InputOutput/FileSystem.hpp"

#include "InputOutput/SystemErrors.hpp"

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace IO
{
namespace
{

bool IsFolder(const std::string& path)
{
    struct stat properties;
    return lstat(path.c_str(), &properties) == 0 && S_ISDIR(properties.st_mode);
}

/// The folder's own path, for the file system.
std::string FolderOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash + 1);
}

/// Writes a change of names to the device, where the file system can do that.
void FlushFolder(const std::string& path)
{
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    fsync(folder);
    close(folder);
}

} // namespace

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

int FileSystem::Replace(const Location& from, const Location& to)
{
    const std::string source = from.ToNativePath();
    const std::string target = to.ToNativePath();
    const std::string folder = FolderOf(target);
    if (IsFolder(source))
        return IsAFolder;
    if (rename(source.c_str(), target.c_str()) != 0)
        return CodeOfLastError();
    FlushFolder(folder);
    return NoError;
}

} // namespace IO
