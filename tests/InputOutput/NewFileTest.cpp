// Files that are made to replace others.

#include "InputOutput/File.hpp"

#include "tests/support/ResourceLimitScope.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace IO;
using std::filesystem::perms;

class NewFile : public testing::Test
{
  protected:
    NewFile()
        : file(LocationOf("new"), CreateWhenNotFound)
    {
    }

    Location LocationOf(std::string_view name) const { return Location(scratch.PathOf(name)); }

    perms PermissionsOf(std::string_view name) const
    {
        return std::filesystem::symlink_status(scratch.Path() / name).permissions();
    }

    void WriteOld(unsigned permissions) const
    {
        scratch.Write("old", "old text");
        std::filesystem::permissions(scratch.Path() / "old", perms(permissions));
    }

    struct stat PropertiesOf(std::string_view name) const
    {
        struct stat properties
        {
        };
        EXPECT_EQ(stat((scratch.Path() / name).c_str(), &properties), 0);
        return properties;
    }

    const NuvTest::ScratchFolder scratch;
    File file;
};

TEST_F(NewFile, IsWrittenBesideTheOldOne)
{
    WriteOld(0644);
    ASSERT_EQ(file.OpenNew(LocationOf("old")), NoError);
    EXPECT_EQ(file.Write("text", 4), NoError);
    EXPECT_EQ(file.Flush(), NoError);
    EXPECT_EQ(file.Close(), NoError);
    EXPECT_EQ(scratch.Read("new"), "text");
    EXPECT_EQ(scratch.Read("old"), "old text");
}

TEST_F(NewFile, IsNotMadeWhereThereIsSomething)
{
    const auto expectRefusal = [&](const char* name)
    {
        File other(LocationOf(name), CreateWhenNotFound);
        EXPECT_EQ(other.OpenNew(LocationOf("old")), OtherError) << name;
        EXPECT_EQ(other.Write("text", 4), NotOpen);
    };
    scratch.Write("file", "kept");
    std::filesystem::create_directory(scratch.Path() / "folder");
    std::filesystem::create_symlink("missing", scratch.Path() / "link");
    for (const char* name : {"file", "folder", "link"})
        expectRefusal(name);
    EXPECT_EQ(scratch.Read("file"), "kept");
    EXPECT_TRUE(std::filesystem::is_symlink(scratch.Path() / "link"));
    EXPECT_FALSE(scratch.Has("missing"));
}

TEST_F(NewFile, TellsThatItCannotBeMade)
{
    EXPECT_EQ(File(LocationOf("missing/new"), CreateWhenNotFound).OpenNew(LocationOf("old")), NotFound);
    EXPECT_EQ(File(Location(), CreateWhenNotFound).OpenNew(LocationOf("old")), NotFound);
    {
        const NuvTest::NoMoreFilesScope scope;
        EXPECT_EQ(file.OpenNew(LocationOf("old")), OtherError);
    }
    std::filesystem::permissions(scratch.Path(), perms(0555));
    {
        const NuvTest::WithoutPrivileges scope;
        EXPECT_EQ(file.OpenNew(LocationOf("old")), AccessDenied);
    }
    std::filesystem::permissions(scratch.Path(), perms(0700));
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST_F(NewFile, HasThePermissionsOfTheOldOneFromTheBeginning)
{
    for (const unsigned permissions : {0600u, 0640u, 0664u, 0444u, 0755u, 0u})
    {
        WriteOld(permissions);
        ASSERT_EQ(file.OpenNew(LocationOf("old")), NoError);
        EXPECT_EQ(PermissionsOf("new"), perms(permissions));
        EXPECT_EQ(file.Delete(), NoError);
        std::filesystem::remove(scratch.Path() / "old");
    }
}

TEST_F(NewFile, HasThePermissionsOfAnyNewFileWhenItReplacesNone)
{
    scratch.Write("any", "");
    scratch.Write("target", "");
    std::filesystem::permissions(scratch.Path() / "target", perms(0600));
    std::filesystem::create_symlink("target", scratch.Path() / "link");
    std::filesystem::create_directory(scratch.Path() / "folder");
    for (const char* replaced : {"missing", "link", "folder", "missing/file"})
    {
        ASSERT_EQ(file.OpenNew(LocationOf(replaced)), NoError);
        EXPECT_EQ(PermissionsOf("new"), PermissionsOf("any")) << replaced;
        EXPECT_EQ(file.Delete(), NoError);
    }
}

TEST_F(NewFile, KeepsTheOwnerAndTheGroupForASuperuser)
{
    WriteOld(0640);
    const bool isGivenAway = chown((scratch.Path() / "old").c_str(), 4711, 4712) == 0;
    ASSERT_EQ(file.OpenNew(LocationOf("old")), NoError);
    EXPECT_EQ(PropertiesOf("new").st_uid, isGivenAway ? 4711 : geteuid());
    EXPECT_EQ(PropertiesOf("new").st_gid, PropertiesOf("old").st_gid);
    EXPECT_EQ(PermissionsOf("new"), perms(0640));
}

TEST_F(NewFile, GivesAnotherGroupWhatEverybodyHas)
{
    WriteOld(0664);
    const bool isGivenAway = chown((scratch.Path() / "old").c_str(), 4711, 4712) == 0;
    std::filesystem::permissions(scratch.Path(), perms(0777));
    {
        const NuvTest::WithoutPrivileges scope;
        ASSERT_EQ(file.OpenNew(LocationOf("old")), NoError);
        EXPECT_EQ(PropertiesOf("new").st_uid, geteuid());
    }
    EXPECT_EQ(PermissionsOf("new"), perms(isGivenAway ? 0644 : 0664));
}

TEST_F(NewFile, IsDeletedWhetherItIsOpenOrNot)
{
    ASSERT_EQ(file.OpenNew(LocationOf("old")), NoError);
    EXPECT_EQ(file.Delete(), NoError);
    EXPECT_EQ(file.Close(), NotOpen);
    EXPECT_EQ(file.Delete(), NotFound);
    ASSERT_EQ(file.OpenNew(LocationOf("old")), NoError);
    EXPECT_EQ(file.Close(), NoError);
    EXPECT_EQ(file.Delete(), NoError);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST_F(NewFile, CannotBeFlushedWhenItIsNotOpenOrHasNoDevice)
{
    EXPECT_EQ(file.Flush(), NotOpen);
    File device(Location(u"/dev/null"), FailWhenNotFound);
    ASSERT_EQ(device.Open(WriteMode, ReportAccessDenied), NoError);
    EXPECT_EQ(device.Flush(), OtherError);
}

} // namespace
