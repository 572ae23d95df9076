#include "InputOutput/Folder.hpp"

#include "InputOutput/SystemErrors.hpp"

#include <iterator>
#include <random>

#include <sys/stat.h>

namespace IO
{
namespace
{

/// Lower-case letters and digits, so that names differ on file systems without regard to case too.
Nuv::UniString RandomSuffix(std::random_device& source)
{
    static constexpr Nuv::UniChar Characters[] = u"0123456789abcdefghijklmnopqrstuvwxyz";
    std::uniform_int_distribution<size_t> anyCharacter(0, std::size(Characters) - 2);
    Nuv::UniString suffix;
    for (int i = 0; i < 12; ++i)
        suffix += Characters[anyCharacter(source)];
    return suffix;
}

} // namespace

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
    std::random_device source;
    for (;;)
    {
        const Name candidate(prefix + RandomSuffix(source));
        Location file = location;
        file.AppendToLocal(candidate);
        // A link that leads nowhere has its name all the same.
        if (lstat(file.ToNativePath().c_str(), &properties) == 0)
            continue;
        if (const int code = CodeOfLastError(); code != NotFound)
            return code;
        name = candidate;
        return NoError;
    }
}

} // namespace IO
