/// @file
/// The files of two folders, side by side.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace Tool
{

/// Two files of the same relative name, of which one may be missing.
struct FilePair
{
    enum Presence
    {
        OnBothSides,
        OnlyOnLeft,
        OnlyOnRight
    };

    std::string left;
    std::string right;
    Presence presence;
};

bool IsFolder(const std::string& path);

/// All files in and below two folders that have one of the extensions, in any case, sorted by name.
/// @throws Trouble when a folder cannot be read
std::vector<FilePair> FilesOfFolders(const std::string& left, const std::string& right,
                                     const std::vector<std::string>& extensions);

/// Tells on standard error how far long work has come, where that is a terminal.
class Progress
{
  public:
    /// @param whatIsDone the word before the figures
    Progress(const char* whatIsDone, size_t numberOfSteps);

    void Advance();

    /// Takes the figures off the terminal, at the end and before other output.
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
