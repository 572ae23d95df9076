#pragma once

#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace NuvTest
{

/// Limits what the process may use, until the end of the scope.
class ResourceLimitScope
{
  public:
    ResourceLimitScope(decltype(RLIMIT_FSIZE) limitedResource, rlim_t limit)
        : resource(limitedResource)
    {
        getrlimit(resource, &saved);
        const rlimit lower{limit, saved.rlim_max};
        if (setrlimit(resource, &lower) != 0)
            throw std::runtime_error("A resource could not be limited.");
    }
    ResourceLimitScope(const ResourceLimitScope&) = delete;
    ResourceLimitScope& operator=(const ResourceLimitScope&) = delete;
    ~ResourceLimitScope() { setrlimit(resource, &saved); }

  private:
    decltype(RLIMIT_FSIZE) resource;
    rlimit saved;
};

/// Lets no file become longer than `limit` bytes, as if the device were full then.
class FullDeviceScope
{
  public:
    explicit FullDeviceScope(rlim_t limit)
        : savedHandler(std::signal(SIGXFSZ, SIG_IGN)) // so that the write fails instead
        , fileSize(RLIMIT_FSIZE, limit)
    {
    }
    FullDeviceScope(const FullDeviceScope&) = delete;
    FullDeviceScope& operator=(const FullDeviceScope&) = delete;
    ~FullDeviceScope() { std::signal(SIGXFSZ, savedHandler); }

  private:
    void (*savedHandler)(int);
    ResourceLimitScope fileSize;
};

/// Lets the process open no further file.
class NoMoreFilesScope
{
  public:
    NoMoreFilesScope()
        : openFiles(RLIMIT_NOFILE, LowestFreeDescriptor())
    {
    }

  private:
    static rlim_t LowestFreeDescriptor()
    {
        const int descriptor = open("/dev/null", O_RDONLY);
        close(descriptor);
        return static_cast<rlim_t>(descriptor);
    }

    ResourceLimitScope openFiles;
};

} // namespace NuvTest
