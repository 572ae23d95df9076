#pragma once

#include <filesystem>

namespace NuvTest
{

/// Makes a folder the current one of the process and puts the old one back at the end of the scope.
class CurrentFolderScope
{
  public:
    explicit CurrentFolderScope(const std::filesystem::path& folder)
        : saved(std::filesystem::current_path())
    {
        std::filesystem::current_path(folder);
    }
    CurrentFolderScope(const CurrentFolderScope&) = delete;
    CurrentFolderScope& operator=(const CurrentFolderScope&) = delete;
    ~CurrentFolderScope() { std::filesystem::current_path(saved); }

  private:
    std::filesystem::path saved;
};

} // namespace NuvTest
