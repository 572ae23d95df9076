#include "InputOutput/Folder.hpp"

#include "InputOutput/SystemErrors.hpp"
#include "NuvRoot/Guid.hpp"

#include <string>

#include <sys/stat.h>

namespace IO
{
Folder::Folder(const Location& folder)
    : location(folder)
{
}

int Folder::GenerateUnusedName(const Nuv::UniString& prefix, Name& name) const
{
    struct stat properties;
    if (stat(location.ToNativePath().c_str(), &properties) != 0)
        return CodeOfLastError();
    if (!S_ISDIR(properties.st_mode))
        return NotFound;
    for (;;)
    {
        const Name candidate(prefix + Nuv::Guid::Generate().ToUniString());
        Location file = location;
        file.AppendToLocal(candidate);
        const std::string path = file.ToNativePath();
        if (path.empty())
            return OtherError;
        // A link that leads nowhere has its name all the same.
        if (lstat(path.c_str(), &properties) == 0)
            continue;
        if (const int code = CodeOfLastError(); code != NotFound)
            return code;
        name = candidate;
        return NoError;
    }
}

} // namespace IO
