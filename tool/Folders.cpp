#include "Folders.hpp"

#include "Trouble.hpp"

#include "NuvRoot/UniString.hpp"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace fs = std::filesystem;

namespace Tool
{
namespace
{

bool HasExtension(const fs::path& file, const std::vector<std::string>& extensions)
{
    const Nuv::UniString extension = Nuv::UniString::FromUTF8(file.extension().string());
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](const std::string& wanted)
                       {
                           const std::string dotted = (wanted.rfind('.', 0) == 0 ? "" : ".") + wanted;
                           return extension.IsEqual(Nuv::UniString::FromUTF8(dotted), Nuv::CaseInsensitive);
                       });
}

/// Not fs::recursive_directory_iterator, which does not tell which folder it cannot read.
void AddFilesBelow(const fs::path& folder, const std::vector<std::string>& extensions,
                   std::vector<fs::path>& files)
{
    std::error_code brokenLink;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file(brokenLink) && HasExtension(entry.path(), extensions))
            files.push_back(entry.path());
        else if (entry.is_directory(brokenLink) && !entry.is_symlink())
            AddFilesBelow(entry.path(), extensions, files);
}

std::set<std::string> FilesBelow(const std::string& folder, const std::vector<std::string>& extensions)
try
{
    std::vector<fs::path> files;
    AddFilesBelow(folder, extensions, files);
    std::set<std::string> names;
    for (const fs::path& file : files)
        names.insert(file.lexically_relative(folder).string());
    return names;
}
catch (const fs::filesystem_error& error)
{
    throw FileTrouble(error.path1().string(), error.code().value());
}

} // namespace

std::vector<FilePair> FilesOfFolders(const std::string& left, const std::string& right,
                                     const std::vector<std::string>& extensions)
{
    const std::set<std::string> onLeft = FilesBelow(left, extensions);
    const std::set<std::string> onRight = FilesBelow(right, extensions);
    std::set<std::string> names = onLeft;
    names.insert(onRight.begin(), onRight.end());
    std::vector<FilePair> pairs;
    for (const std::string& name : names)
    {
        const FilePair::Presence presence = onRight.count(name) == 0  ? FilePair::OnlyOnLeft
                                            : onLeft.count(name) == 0 ? FilePair::OnlyOnRight
                                                                      : FilePair::OnBothSides;
        pairs.push_back({(fs::path(left) / name).string(), (fs::path(right) / name).string(), presence});
    }
    return pairs;
}

} // namespace Tool
