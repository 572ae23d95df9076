#include "NuvRoot/Channels.hpp"

#include "NuvRoot/ResultCodes.hpp"

namespace Nuv
{

OChannel::~OChannel() = default;

OBinaryChannel::~OBinaryChannel() = default;

IChannel::~IChannel() = default;

int MemoryOChannel::Write(const void* bytes, size_t count)
{
    collected.append(static_cast<const char*>(bytes), count);
    return Success;
}

int MemoryOBinaryChannel::Write(const void* bytes, size_t count)
{
    collected.append(static_cast<const char*>(bytes), count);
    return Success;
}

} // namespace Nuv
