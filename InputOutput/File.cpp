#include "InputOutput/File.hpp"

#include "InputOutput/SystemErrors.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace IO
{
namespace
{

/// Repeats a system call that a signal interrupted.
template <class Call>
auto Uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

int OpenFlags(OpenMode mode, OnNotFound onNotFound)
{
    if (mode == ReadMode)
        return O_RDONLY | O_CLOEXEC;
    return O_WRONLY | O_TRUNC | O_CLOEXEC | (onNotFound == CreateWhenNotFound ? O_CREAT : 0);
}

/// Folders can be opened for reading, but not read.
bool IsFolder(int descriptor)
{
    struct stat properties;
    return fstat(descriptor, &properties) == 0 && S_ISDIR(properties.st_mode);
}

constexpr mode_t ReadableAndWritable = 0666;
constexpr mode_t ByTheOwnerOnly = 0600;

/// Only a superuser can give a file to another owner; others have a choice of groups. A file system without
/// permissions keeps the file as it was made.
void TakePermissions(int descriptor, const struct stat& old)
{
    const bool hasGroup = fchown(descriptor, old.st_uid, old.st_gid) == 0 ||
                          fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
    const mode_t ofGroup = hasGroup ? old.st_mode & S_IRWXG : (old.st_mode & S_IRWXO) << 3;
    fchmod(descriptor, (old.st_mode & (S_IRWXU | S_IRWXO)) | ofGroup);
}

} // namespace

File::File(const Location& file, OnNotFound treatment)
    : path(file.ToNativePath())
    , onNotFound(treatment)
{
    struct stat properties;
    if (onNotFound == FailWhenNotFound && stat(path.c_str(), &properties) != 0)
        status = CodeOfLastError();
}

File::~File()
{
    if (descriptor >= 0)
        close(descriptor);
}

int File::Open(OpenMode mode, AccessDeniedTreatment)
{
    if (descriptor >= 0)
        Close();
    const int opened =
        Uninterrupted([&] { return open(path.c_str(), OpenFlags(mode, onNotFound), ReadableAndWritable); });
    if (opened < 0)
        return CodeOfLastError();
    if (IsFolder(opened))
    {
        close(opened);
        return IsAFolder;
    }
    descriptor = opened;
    return NoError;
}

int File::OpenNew(const Location& replaced)
{
    struct stat old;
    const bool replacesFile = lstat(replaced.ToNativePath().c_str(), &old) == 0 && S_ISREG(old.st_mode);
    if (descriptor >= 0)
        Close();
    descriptor = Uninterrupted(
        [&]
        {
            return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                        replacesFile ? ByTheOwnerOnly : ReadableAndWritable);
        });
    if (descriptor < 0)
    {
        const int systemError = errno;
        if (systemError != EEXIST)
            unlink(path.c_str()); // a file system may have made what it could not open
        return CodeOfSystemError(systemError);
    }
    if (replacesFile)
        TakePermissions(descriptor, old);
    return NoError;
}

int File::Flush()
{
    if (descriptor < 0)
        return NotOpen;
    return Uninterrupted([&] { return fsync(descriptor); }) == 0 ? NoError : CodeOfLastError();
}

int File::Close()
{
    if (descriptor < 0)
        return NotOpen;
    const int result = close(descriptor);
    descriptor = -1;
    return result == 0 ? NoError : CodeOfLastError();
}

int File::Delete()
{
    Close();
    return unlink(path.c_str()) == 0 ? NoError : CodeOfLastError();
}

int File::Write(const void* bytes, size_t count)
{
    if (descriptor < 0)
        return NotOpen;
    for (const char* next = static_cast<const char*>(bytes); count != 0;)
    {
        const ssize_t written = Uninterrupted([&] { return write(descriptor, next, count); });
        if (written < 0)
            return CodeOfLastError();
        next += written;
        count -= static_cast<size_t>(written);
    }
    return NoError;
}

int File::Read(void* bytes, size_t capacity, size_t& count)
{
    count = 0;
    if (descriptor < 0)
        return NotOpen;
    while (count < capacity)
    {
        const ssize_t got = Uninterrupted(
            [&] { return read(descriptor, static_cast<char*>(bytes) + count, capacity - count); });
        if (got < 0)
            return CodeOfLastError();
        if (got == 0)
            return count == 0 ? EndOfFile : NoError;
        count += static_cast<size_t>(got);
    }
    return NoError;
}

} // namespace IO
