#include "Paths.hpp"

#include <filesystem>
#include <system_error>

namespace Tool
{

std::string DisplayName(const std::string& path) { return path == StandardInput ? "(standard input)" : path; }

bool IsFolder(const std::string& path)
{
    std::error_code notThere;
    return path != StandardInput && std::filesystem::is_directory(path, notThere);
}

} // namespace Tool
