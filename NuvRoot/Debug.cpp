#include "NuvRoot/Debug.hpp"

#include <atomic>
#include <cstdio>

namespace Nuv
{
namespace
{

void WriteToStandardError([[maybe_unused]] const char* file, [[maybe_unused]] unsigned int line,
                          [[maybe_unused]] const char* message, [[maybe_unused]] const char* function)
{
#ifndef NDEBUG
    std::fprintf(stderr, "%s:%u: %s (%s)\n", file, line, message, function);
#endif
}

/// A pointer that needs no dynamic initialisation: assertions are raised while libraries are being loaded.
constinit std::atomic<DBBreakHandler> currentHandler{WriteToStandardError};

} // namespace

void DBBreak(const char* file, unsigned int line, const char* message, const char* function)
{
    currentHandler.load()(file, line, message, function);
}

DBBreakHandler SetDBBreakHandler(DBBreakHandler handler)
{
    return currentHandler.exchange(handler ? handler : WriteToStandardError);
}

} // namespace Nuv
