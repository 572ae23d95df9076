#include "tests/support/FailingSystem.hpp"

#include <cerrno>
#include <csignal>
#include <cstdarg>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

using NuvTest::FailingSystem::Fault;

bool isArmed = false;
int countdown = 0;
Fault currentFault = Fault::Failure;
std::vector<std::string>* calls = nullptr; // made for good: other objects may close files at the very end

/// Whether the call is the chosen one and must fail. Does not come back when the process is to be killed.
bool MustFail(const char* name)
{
    if (!isArmed)
        return false;
    calls->push_back(name);
    if (--countdown != 0)
        return false;
    if (currentFault == Fault::Kill)
        raise(SIGKILL);
    return true;
}

bool IsInTheMiddle()
{
    return currentFault == Fault::FailureInTheMiddle || currentFault == Fault::KillInTheMiddle;
}

int Fail(int error)
{
    errno = error;
    return -1;
}

ssize_t WriteToSystem(int descriptor, const void* bytes, size_t count)
{
    return syscall(SYS_write, descriptor, bytes, count);
}

} // namespace

namespace NuvTest::FailingSystem
{

void FaultAt(int nth, Fault fault)
{
    if (!calls)
        calls = new std::vector<std::string>;
    calls->clear();
    countdown = nth;
    currentFault = fault;
    isArmed = true;
}

std::vector<std::string> Disarm()
{
    isArmed = false;
    return *calls;
}

} // namespace NuvTest::FailingSystem

extern "C"
{

    int open(const char* path, int flags, ...)
    {
        mode_t mode = 0;
        if (flags & O_CREAT)
        {
            va_list arguments;
            va_start(arguments, flags);
            mode = va_arg(arguments, mode_t);
            va_end(arguments);
            if (MustFail("open"))
                return Fail(EMFILE);
        }
        return openat(AT_FDCWD, path, flags, mode);
    }

    ssize_t write(int descriptor, const void* bytes, size_t count)
    {
        if (!MustFail("write"))
            return WriteToSystem(descriptor, bytes, count);
        if (IsInTheMiddle() && WriteToSystem(descriptor, bytes, count / 2) > 0 &&
            currentFault == Fault::KillInTheMiddle)
            raise(SIGKILL);
        return Fail(ENOSPC);
    }

    int fsync(int descriptor)
    {
        return MustFail("fsync") ? Fail(EIO) : static_cast<int>(syscall(SYS_fsync, descriptor));
    }

    int close(int descriptor)
    {
        const bool mustFail = MustFail("close"); // a file is closed even when that is reported to have failed
        const int result = static_cast<int>(syscall(SYS_close, descriptor));
        return mustFail ? Fail(EIO) : result;
    }

    int rename(const char* from, const char* to) noexcept
    {
        return MustFail("rename") ? Fail(EIO) : renameat(AT_FDCWD, from, AT_FDCWD, to);
    }

    int unlink(const char* path) noexcept
    {
        return MustFail("unlink") ? Fail(EIO) : unlinkat(AT_FDCWD, path, 0);
    }

    int fchown(int descriptor, uid_t owner, gid_t group) noexcept
    {
        return MustFail("fchown") ? Fail(EPERM)
                                  : static_cast<int>(syscall(SYS_fchown, descriptor, owner, group));
    }

    int fchmod(int descriptor, mode_t mode) noexcept
    {
        return MustFail("fchmod") ? Fail(EPERM) : static_cast<int>(syscall(SYS_fchmod, descriptor, mode));
    }

} // extern "C"
