/// @file
/// Byte channels: destinations and sources of bytes.
#pragma once

#include "NuvRoot/Export.hpp"

#include <cstddef>
#include <string>

namespace Nuv
{

/// A destination for text. Every operation returns 0 for success, and an error code otherwise.
class NUVROOT_API OChannel
{
  public:
    virtual ~OChannel();

    /// Writes all `count` bytes or fails.
    virtual int Write(const void* bytes, size_t count) = 0;
};

/// A destination for bytes of any kind.
class NUVROOT_API OBinaryChannel
{
  public:
    virtual ~OBinaryChannel();

    /// Writes all `count` bytes or fails. Returns 0 for success, and an error code otherwise.
    virtual int Write(const void* bytes, size_t count) = 0;
};

/// A source of bytes.
class NUVROOT_API IChannel
{
  public:
    virtual ~IChannel();

    /// Reads up to `capacity` bytes and sets `count` to their number, also on failure. Returns 0 for success,
    /// and an error code otherwise, also at the end of the input.
    virtual int Read(void* bytes, size_t capacity, size_t& count) = 0;
};

/// Collects the bytes in memory. Fails only for lack of memory, with an exception.
class NUVROOT_API MemoryOChannel : public OChannel
{
  public:
    int Write(const void* bytes, size_t count) override;
    const std::string& GetBytes() const { return collected; }

  private:
    std::string collected;
};

/// Collects the bytes in memory. Fails only for lack of memory, with an exception.
class NUVROOT_API MemoryOBinaryChannel : public OBinaryChannel
{
  public:
    int Write(const void* bytes, size_t count) override;
    const std::string& GetBytes() const { return collected; }

  private:
    std::string collected;
};

} // namespace Nuv
