/// @file
/// The files of two folders, side by side.
#pragma once

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

/// All files in and below two folders that have one of the extensions, in any case, sorted by name.
/// @throws Trouble when a folder cannot be read
std::vector<FilePair> FilesOfFolders(const std::string& left, const std::string& right,
                                     const std::vector<std::string>& extensions);

} // namespace Tool
