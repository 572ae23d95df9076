#pragma once

#include <chrono>
#include <cstddef>

namespace Tool
{

/// Shows on standard error how far long work has come, when that is a terminal.
class Progress
{
  public:
    /// @param whatIsDone the word before the numbers
    Progress(const char* whatIsDone, size_t numberOfSteps);

    void Advance();

    /// Removes the numbers from the terminal: call it at the end and before other output.
    void Clear();

  private:
    using Clock = std::chrono::steady_clock;

    const char* word;
    size_t total;
    size_t done = 0;
    bool isTerminal;
    bool isShown = false;
    Clock::time_point next;
};

} // namespace Tool
