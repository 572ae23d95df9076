/// @file
/// A folder of its own for a test that needs files.
#pragma once

#include "NuvRoot/UniString.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace NuvTest
{

/// A new, empty folder in the system's folder for temporary files, which no other process uses. It is removed
/// with all its contents at the end of the scope.
class ScratchFolder
{
  public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "NuvTest-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("No scratch folder could be made.");
        folder = pattern;
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    const std::filesystem::path& Path() const { return folder; }

    /// The path of `name` in the folder, whether there is such a file or not.
    Nuv::UniString PathOf(std::string_view name) const
    {
        return Nuv::UniString::FromUTF8((folder / name).string());
    }

    /// Writes a file and gives its path.
    Nuv::UniString Write(std::string_view name, std::string_view bytes) const
    {
        std::ofstream file(folder / name, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!file.flush())
            throw std::runtime_error("A scratch file could not be written.");
        return PathOf(name);
    }

    /// All bytes of a file.
    std::string Read(std::string_view name) const
    {
        std::ifstream file(folder / name, std::ios::binary);
        if (!file)
            throw std::runtime_error("A scratch file could not be read.");
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    bool Has(std::string_view name) const { return std::filesystem::exists(folder / name); }

  private:
    std::filesystem::path folder;
};

} // namespace NuvTest
