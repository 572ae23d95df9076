#include "InputOutput/Folder.hpp"

#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

namespace
{

using namespace IO;
using Nuv::UniString;
using NuvTest::ScratchFolder;

Folder FolderOf(const ScratchFolder& scratch) { return Folder(Location(scratch.PathOf(""))); }

TEST(Folder, GeneratesNamesThatNothingInItHas)
{
    const ScratchFolder scratch;
    std::set<std::string> names;
    for (int i = 0; i < 200; ++i)
    {
        Name name;
        ASSERT_EQ(FolderOf(scratch).GenerateUnusedName(u"Scratch_", name), NoError);
        const std::string text = name.ToUniString().ToUTF8();
        EXPECT_EQ(text.substr(0, 8), "Scratch_");
        EXPECT_GT(text.size(), 8u);
        EXPECT_FALSE(scratch.Has(text));
        scratch.Write(text, "");
        names.insert(text);
    }
    EXPECT_EQ(names.size(), 200u);
}

TEST(Folder, CreatesNothingWhenItGeneratesAName)
{
    const ScratchFolder scratch;
    Name name;
    ASSERT_EQ(FolderOf(scratch).GenerateUnusedName(u"", name), NoError);
    EXPECT_FALSE(name.ToUniString().IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
}

TEST(Folder, GeneratesNamesWithAnyPrefix)
{
    const ScratchFolder scratch;
    Name name;
    ASSERT_EQ(FolderOf(scratch).GenerateUnusedName(u"a %41 \u00E4", name), NoError);
    EXPECT_EQ(name.ToUniString().View().substr(0, 7), u"a %41 \u00E4");
}

TEST(Folder, GeneratesNoNameWhereThereIsNoFolder)
{
    const ScratchFolder scratch;
    scratch.Write("file", "");
    Name name(u"old");
    for (const char* path : {"missing", "missing/folder", "file"})
        EXPECT_EQ(Folder(Location(scratch.PathOf(path))).GenerateUnusedName(u"p", name), NotFound) << path;
    EXPECT_EQ(Folder(Location()).GenerateUnusedName(u"p", name), NotFound);
    EXPECT_EQ(name.ToUniString(), u"old");
}

TEST(Folder, GeneratesNoNameThatIsTooLong)
{
    const ScratchFolder scratch;
    Name name(u"old");
    EXPECT_EQ(FolderOf(scratch).GenerateUnusedName(UniString(std::u16string(300, u'a')), name), OtherError);
    EXPECT_EQ(name.ToUniString(), u"old");
}

TEST(Folder, GeneratesNoNameThatNoFileCanHave)
{
    const ScratchFolder scratch;
    Name name(u"old");
    EXPECT_EQ(FolderOf(scratch).GenerateUnusedName(UniString(u"a\0b", 3), name), OtherError);
    EXPECT_EQ(FolderOf(scratch).GenerateUnusedName(UniString(u"\xD800"), name), OtherError);
    EXPECT_EQ(name.ToUniString(), u"old");
}

TEST(Folder, GeneratesNoNameInTheFolderWithTheNameUpToAZero)
{
    const ScratchFolder scratch;
    Name name(u"old");
    const Location folder(scratch.PathOf("") + UniString(u"\0", 1));
    EXPECT_EQ(Folder(folder).GenerateUnusedName(u"p", name), NotFound);
    EXPECT_EQ(name.ToUniString(), u"old");
}

TEST(Folder, GeneratesNoNameWhereItCannotLook)
{
    const ScratchFolder scratch;
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0));
    Name name(u"old");
    {
        const NuvTest::WithoutPrivileges scope;
        EXPECT_EQ(FolderOf(scratch).GenerateUnusedName(u"p", name), AccessDenied);
    }
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0700));
    EXPECT_EQ(name.ToUniString(), u"old");
}

} // namespace
