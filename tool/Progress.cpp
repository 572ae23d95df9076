#include "Progress.hpp"

#include <unistd.h>

#include <cstdio>

namespace Tool
{

Progress::Progress(const char* whatIsDone, size_t numberOfSteps)
    : word(whatIsDone)
    , total(numberOfSteps)
    , isTerminal(isatty(STDERR_FILENO) != 0)
    , next(Clock::now() + std::chrono::seconds(1))
{
}

void Progress::Advance()
{
    ++done;
    if (!isTerminal || Clock::now() < next)
        return;
    std::fprintf(stderr, "\r%s %zu of %zu files", word, done, total);
    isShown = true;
    next = Clock::now() + std::chrono::milliseconds(100);
}

void Progress::Clear()
{
    if (isShown)
        std::fputs("\r\x1B[K", stderr);
    isShown = false;
}

} // namespace Tool
