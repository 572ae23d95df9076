/// @file
/// Byte channels: where text is written to and read from.
#pragma once

#include "NuvRoot/Export.hpp"

#include <cstddef>
#include <string>

namespace Nuv
{

/// Takes bytes of text. Every operation returns 0 for success, any other value is an error code.
class NUVROOT_API OChannel
{
  public:
    virtual ~OChannel();

    /// Writes all `count` bytes or fails.
    virtual int Write(const void* bytes, size_t count) = 0;
};

/// Takes bytes of any kind.
class NUVROOT_API OBinaryChannel
{
  public:
    virtual ~OBinaryChannel();

    /// Writes all `count` bytes or fails; 0 is success, any other value is an error code.
    virtual int Write(const void* bytes, size_t count) = 0;
};

/// Gives bytes.
class NUVROOT_API IChannel
{
  public:
    virtual ~IChannel();

    /// Reads up to `capacity` bytes and tells in `count` how many there were, also on failure; 0 is success,
    /// any other value is an error code, the end of the input included.
    virtual int Read(void* bytes, size_t capacity, size_t& count) = 0;
};

/// Collects what is written. Never fails but for lack of memory.
class NUVROOT_API MemoryOChannel : public OChannel
{
  public:
    int Write(const void* bytes, size_t count) override;
    const std::string& GetBytes() const { return collected; }

  private:
    std::string collected;
};

/// Collects what is written. Never fails but for lack of memory.
class NUVROOT_API MemoryOBinaryChannel : public OBinaryChannel
{
  public:
    int Write(const void* bytes, size_t count) override;
    const std::string& GetBytes() const { return collected; }

  private:
    std::string collected;
};

} // namespace Nuv
