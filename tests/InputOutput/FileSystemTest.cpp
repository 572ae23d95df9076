#include "InputOutput/FileSystem.hpp"

#include "tests/support/CurrentFolderScope.hpp"
#include "tests/support/EnvironmentScope.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

using namespace IO;
using NuvTest::CurrentFolderScope;
using NuvTest::EnvironmentScope;
using NuvTest::ScratchFolder;

constexpr auto TemporaryFolder = static_cast<FileSystem::SpecLocId>(12);
constexpr auto ForGood = static_cast<DataSafety>(0);

int Delete(const Location& location) { return FileSystem::Delete(location, ForGood, ReportAccessDenied); }

TEST(FileSystem, TellsTheFolderForTemporaryFiles)
{
    Location location;
    EXPECT_EQ(FileSystem::GetSpecialLocation(TemporaryFolder, location), NoError);
    EXPECT_TRUE(std::filesystem::is_directory(location.ToNativePath()));
    EXPECT_EQ(FileSystem::TemporaryFolder, TemporaryFolder);
}

TEST(FileSystem, FollowsTheEnvironmentToTheFolderForTemporaryFiles)
{
    const ScratchFolder scratch;
    const EnvironmentScope environment("TMPDIR", scratch.Path().string());
    Location location;
    EXPECT_EQ(FileSystem::GetSpecialLocation(TemporaryFolder, location), NoError);
    EXPECT_EQ(location.ToPath(), Nuv::UniString::FromUTF8(scratch.Path().string()));
}

TEST(FileSystem, TellsThatThereIsNoFolderForTemporaryFiles)
{
    const ScratchFolder scratch;
    const EnvironmentScope environment("TMPDIR", (scratch.Path() / "missing").string());
    Location location(u"/old");
    EXPECT_EQ(FileSystem::GetSpecialLocation(TemporaryFolder, location), NotFound);
    EXPECT_EQ(location.ToPath(), u"/old");
}

TEST(FileSystem, KnowsNoOtherSpecialLocation)
{
    Location location(u"/old");
    for (const int id : {0, 1, 11, 13})
        EXPECT_EQ(FileSystem::GetSpecialLocation(static_cast<FileSystem::SpecLocId>(id), location),
                  OtherError);
    EXPECT_EQ(location.ToPath(), u"/old");
}

TEST(FileSystem, DeletesAFile)
{
    const ScratchFolder scratch;
    EXPECT_EQ(Delete(Location(scratch.Write("a %41 \xC3\xA4", "content"))), NoError);
    EXPECT_FALSE(scratch.Has("a %41 \xC3\xA4"));
}

TEST(FileSystem, TellsThatThereIsNothingToDelete)
{
    const ScratchFolder scratch;
    EXPECT_EQ(Delete(Location(scratch.PathOf("missing"))), NotFound);
    EXPECT_EQ(Delete(Location(scratch.PathOf("missing/file"))), NotFound);
    EXPECT_EQ(Delete(Location()), NotFound);
}

TEST(FileSystem, DeletesNoFileOfTheNameUpToAZero)
{
    const ScratchFolder scratch;
    Location location(scratch.Write("file", "kept"));
    location = Location(location.ToPath() + Nuv::UniString(u"\0.xml", 5));
    EXPECT_EQ(Delete(location), NotFound);
    EXPECT_EQ(scratch.Read("file"), "kept");
}

TEST(FileSystem, DeletesNoFolder)
{
    const ScratchFolder scratch;
    std::filesystem::create_directory(scratch.Path() / "folder");
    EXPECT_EQ(Delete(Location(scratch.PathOf("folder"))), IsAFolder);
    EXPECT_TRUE(scratch.Has("folder"));
}

TEST(FileSystem, DeletesALinkAndNotItsTarget)
{
    const ScratchFolder scratch;
    scratch.Write("target", "kept");
    std::filesystem::create_symlink(scratch.Path() / "target", scratch.Path() / "link");
    EXPECT_EQ(Delete(Location(scratch.PathOf("link"))), NoError);
    EXPECT_FALSE(scratch.Has("link"));
    EXPECT_EQ(scratch.Read("target"), "kept");
}

TEST(FileSystem, DeletesNothingFromAReadOnlyFolder)
{
    const ScratchFolder scratch;
    scratch.Write("file", "kept");
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0555));
    {
        const NuvTest::WithoutPrivileges scope;
        EXPECT_EQ(Delete(Location(scratch.PathOf("file"))), AccessDenied);
    }
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0755));
    EXPECT_EQ(scratch.Read("file"), "kept");
}

TEST(FileSystem, ReplacesAFileOrALinkOrNothing)
{
    const ScratchFolder scratch;
    scratch.Write("target", "kept");
    scratch.Write("old", "old");
    std::filesystem::create_symlink("target", scratch.Path() / "link");
    for (const char* to : {"missing", "old", "link"})
    {
        EXPECT_EQ(FileSystem::Replace(Location(scratch.Write("new", to)), Location(scratch.PathOf(to))),
                  NoError);
        EXPECT_FALSE(scratch.Has("new"));
        EXPECT_FALSE(std::filesystem::is_symlink(scratch.Path() / to));
        EXPECT_EQ(scratch.Read(to), to);
    }
    EXPECT_EQ(scratch.Read("target"), "kept");
}

TEST(FileSystem, ReplacesAFileInTheCurrentFolderAndBetweenFolders)
{
    const ScratchFolder scratch;
    const CurrentFolderScope current(scratch.Path());
    scratch.Write("new", "new");
    scratch.Write("old", "old");
    std::filesystem::create_directory(scratch.Path() / "folder");
    EXPECT_EQ(FileSystem::Replace(Location(u"new"), Location(u"folder/new")), NoError);
    EXPECT_EQ(FileSystem::Replace(Location(u"folder/new"), Location(u"old")), NoError);
    EXPECT_EQ(scratch.Read("old"), "new");
}

TEST(FileSystem, ReplacesNothingByAFolderAndNoFolder)
{
    const ScratchFolder scratch;
    const Location file(scratch.Write("file", "kept"));
    for (const char* name : {"folder", "other"})
        std::filesystem::create_directory(scratch.Path() / name);
    const Location folder(scratch.PathOf("folder"));
    EXPECT_EQ(FileSystem::Replace(file, folder), IsAFolder);
    EXPECT_EQ(FileSystem::Replace(folder, file), IsAFolder);
    EXPECT_EQ(FileSystem::Replace(folder, Location(scratch.PathOf("other"))), IsAFolder);
    EXPECT_EQ(scratch.Read("file"), "kept");
    EXPECT_TRUE(scratch.Has("folder"));
}

TEST(FileSystem, TellsThatItCannotReplaceAndChangesNothing)
{
    const ScratchFolder scratch;
    const Location from(scratch.Write("new", "new"));
    const Location to(scratch.Write("old", "old"));
    EXPECT_EQ(FileSystem::Replace(Location(scratch.PathOf("missing")), to), NotFound);
    EXPECT_EQ(FileSystem::Replace(Location(), to), NotFound);
    EXPECT_EQ(FileSystem::Replace(from, Location()), NotFound);
    EXPECT_EQ(FileSystem::Replace(from, Location(scratch.PathOf("missing/old"))), NotFound);
    EXPECT_EQ(FileSystem::Replace(from, Location(scratch.PathOf("old/"))), NotFound) << "no folder";
    EXPECT_EQ(FileSystem::Replace(from, Location(u"/proc/file")), OtherError) << "another device";
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0555));
    {
        const NuvTest::WithoutPrivileges scope;
        EXPECT_EQ(FileSystem::Replace(from, to), AccessDenied);
    }
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0755));
    EXPECT_EQ(scratch.Read("new"), "new");
    EXPECT_EQ(scratch.Read("old"), "old");
}

TEST(FileSystem, ReplacesAFileInAFolderThatCannotBeRead)
{
    const ScratchFolder scratch;
    const Location from(scratch.Write("new", "new"));
    const Location to(scratch.Write("old", "old"));
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0333));
    {
        const NuvTest::WithoutPrivileges scope;
        EXPECT_EQ(FileSystem::Replace(from, to), NoError);
    }
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0755));
    EXPECT_EQ(scratch.Read("old"), "new");
}

} // namespace
