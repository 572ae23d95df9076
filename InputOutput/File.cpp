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

} // namespace

File::File(const Location& file, OnNotFound treatment)
    : location(file)
    , onNotFound(treatment)
{
    struct stat properties;
    if (onNotFound == FailWhenNotFound && stat(location.ToNativePath().c_str(), &properties) != 0)
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
    const std::string path = location.ToNativePath();
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

int File::Close()
{
    if (descriptor < 0)
        return NotOpen;
    const int result = close(descriptor);
    descriptor = -1;
    return result == 0 ? NoError : CodeOfLastError();
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
