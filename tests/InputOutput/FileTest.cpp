#include "InputOutput/File.hpp"

#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <type_traits>

namespace
{

using namespace IO;
using NuvTest::WithoutPrivileges;

class FileTest : public testing::Test
{
  protected:
    Location LocationOf(std::string_view name) const { return Location(scratch.PathOf(name)); }

    /// Makes the scratch folder one that everybody may enter.
    void OpenScratchFolderToAll() const
    {
        std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0777));
    }

    void SetPermissions(std::string_view name, unsigned permissions) const
    {
        std::filesystem::permissions(scratch.Path() / name, std::filesystem::perms(permissions));
    }

    NuvTest::ScratchFolder scratch;
};

int OpenToRead(const Location& location)
{
    File file(location, FailWhenNotFound);
    return file.Open(ReadMode, ReportAccessDenied);
}

int OpenToWrite(const Location& location, OnNotFound onNotFound = CreateWhenNotFound)
{
    File file(location, onNotFound);
    return file.Open(WriteMode, ReportAccessDenied);
}

int StatusOf(const Location& location, OnNotFound onNotFound)
{
    return File(location, onNotFound).GetStatus();
}

int WriteAll(const Location& location, const std::string& bytes)
{
    File file(location, CreateWhenNotFound);
    if (const int code = file.Open(WriteMode, ReportAccessDenied); code != NoError)
        return code;
    if (const int code = file.Write(bytes.data(), bytes.size()); code != NoError)
        return code;
    return file.Close();
}

std::string ReadAll(const Location& location)
{
    File file(location, FailWhenNotFound);
    EXPECT_EQ(file.Open(ReadMode, ReportAccessDenied), NoError);
    std::string bytes;
    char part[1000];
    size_t count = 0;
    while (file.Read(part, sizeof part, count) == NoError)
        bytes.append(part, count);
    return bytes;
}

TEST(FileConstants, AreTheNumbersThatCallersPassAndGet)
{
    EXPECT_EQ(NoError, 0);
    EXPECT_EQ(NotFound, -2130640125);
    EXPECT_EQ(static_cast<unsigned>(NotFound), 0x81010303u);
    EXPECT_EQ(static_cast<unsigned>(EndOfFile), 0x81000100u);
    EXPECT_EQ(static_cast<OnNotFound>(0), FailWhenNotFound);
    EXPECT_EQ(static_cast<OnNotFound>(1), CreateWhenNotFound);
    EXPECT_EQ(static_cast<OpenMode>(0), ReadMode);
    EXPECT_EQ(static_cast<OpenMode>(1), WriteMode);
    EXPECT_EQ(static_cast<AccessDeniedTreatment>(2), ReportAccessDenied);
}

TEST(FileClass, IsAnOutputAndAnInputChannel)
{
    EXPECT_TRUE((std::is_base_of_v<Nuv::OChannel, File>));
    EXPECT_TRUE((std::is_base_of_v<Nuv::IChannel, File>));
    EXPECT_FALSE(std::is_copy_constructible_v<File>);
}

TEST_F(FileTest, ReadsBackWhatItWrote)
{
    std::string bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += static_cast<char>(i * 7);
    EXPECT_EQ(WriteAll(LocationOf("file"), bytes), NoError);
    EXPECT_EQ(scratch.Read("file"), bytes);
    EXPECT_EQ(ReadAll(LocationOf("file")), bytes);
}

TEST_F(FileTest, HasNamesInUTF8WhateverTheLocalCodePage)
{
    const NuvTest::LocalCodePageScope scope("windows-1252");
    for (const char* name :
         {"a b", "100%", "%41", "a#b?c", "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80", "-", "a\nb"})
    {
        EXPECT_EQ(WriteAll(LocationOf(name), name), NoError);
        EXPECT_EQ(scratch.Read(name), name);
        EXPECT_EQ(ReadAll(Location(LocationOf(name).ToURL())), name);
    }
}

TEST_F(FileTest, WritesFromAnEmptyFile)
{
    scratch.Write("file", "a long old content");
    EXPECT_EQ(WriteAll(LocationOf("file"), "new"), NoError);
    EXPECT_EQ(scratch.Read("file"), "new");
    EXPECT_EQ(WriteAll(LocationOf("file"), ""), NoError);
    EXPECT_EQ(scratch.Read("file"), "");
}

TEST_F(FileTest, WritesInSeveralParts)
{
    File file(LocationOf("file"), CreateWhenNotFound);
    ASSERT_EQ(file.Open(WriteMode, ReportAccessDenied), NoError);
    EXPECT_EQ(file.Write("one", 3), NoError);
    EXPECT_EQ(file.Write(nullptr, 0), NoError);
    EXPECT_EQ(file.Write(" two", 4), NoError);
    EXPECT_EQ(scratch.Read("file"), "one two") << "there at once";
    EXPECT_EQ(file.Close(), NoError);
}

TEST_F(FileTest, TellsTheEndOnlyWhenNothingIsLeft)
{
    File file(Location(scratch.Write("file", "12345")), FailWhenNotFound);
    ASSERT_EQ(file.Open(ReadMode, ReportAccessDenied), NoError);
    char bytes[] = "xxxx";
    size_t count = 99;
    EXPECT_EQ(file.Read(bytes, 3, count), NoError);
    EXPECT_EQ(count, 3u);
    EXPECT_STREQ(bytes, "123x");
    EXPECT_EQ(file.Read(bytes, 3, count), NoError);
    EXPECT_EQ(count, 2u);
    EXPECT_STREQ(bytes, "453x");
    EXPECT_EQ(file.Read(bytes, 3, count), EndOfFile);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(file.Read(bytes, 0, count), NoError) << "no byte was asked for";
}

TEST_F(FileTest, TellsTheEndOfAnEmptyFile)
{
    File file(Location(scratch.Write("file", "")), FailWhenNotFound);
    ASSERT_EQ(file.Open(ReadMode, ReportAccessDenied), NoError);
    char byte = 'x';
    size_t count = 99;
    EXPECT_EQ(file.Read(&byte, 1, count), EndOfFile);
    EXPECT_EQ(count, 0u);
}

TEST_F(FileTest, DoesNothingWhileItIsNotOpen)
{
    File file(LocationOf("file"), CreateWhenNotFound);
    char byte = 'x';
    size_t count = 99;
    EXPECT_EQ(file.Write("a", 1), NotOpen);
    EXPECT_EQ(file.Read(&byte, 1, count), NotOpen);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(file.Close(), NotOpen);
    EXPECT_FALSE(scratch.Has("file"));
}

TEST_F(FileTest, WritesOnlyWhenOpenForWritingAndReadsOnlyWhenOpenForReading)
{
    scratch.Write("file", "old");
    char byte = 'x';
    size_t count = 99;
    File reader(LocationOf("file"), FailWhenNotFound);
    ASSERT_EQ(reader.Open(ReadMode, ReportAccessDenied), NoError);
    EXPECT_NE(reader.Write("a", 1), NoError);
    EXPECT_EQ(scratch.Read("file"), "old");
    File writer(LocationOf("file"), CreateWhenNotFound);
    ASSERT_EQ(writer.Open(WriteMode, ReportAccessDenied), NoError);
    EXPECT_NE(writer.Read(&byte, 1, count), NoError);
    EXPECT_EQ(count, 0u);
}

TEST_F(FileTest, IsClosedOnceAndOpenedAgain)
{
    File file(LocationOf("file"), CreateWhenNotFound);
    ASSERT_EQ(file.Open(WriteMode, ReportAccessDenied), NoError);
    EXPECT_EQ(file.Write("text", 4), NoError);
    EXPECT_EQ(file.Close(), NoError);
    EXPECT_EQ(file.Close(), NotOpen);
    ASSERT_EQ(file.Open(ReadMode, ReportAccessDenied), NoError);
    char bytes[5] = "";
    size_t count = 0;
    EXPECT_EQ(file.Read(bytes, 4, count), NoError);
    EXPECT_STREQ(bytes, "text");
    ASSERT_EQ(file.Open(ReadMode, ReportAccessDenied), NoError) << "an open file begins again";
    EXPECT_EQ(file.Read(bytes, 2, count), NoError);
    EXPECT_STREQ(bytes, "text");
}

/// How many files the process has open.
std::ptrdiff_t OpenFiles()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

TEST_F(FileTest, IsClosedByItsDestructorAndWhenOpenedAgain)
{
    const std::ptrdiff_t before = OpenFiles();
    {
        File file(LocationOf("file"), CreateWhenNotFound);
        ASSERT_EQ(file.Open(WriteMode, ReportAccessDenied), NoError);
        ASSERT_EQ(file.Open(WriteMode, ReportAccessDenied), NoError);
        EXPECT_EQ(OpenFiles(), before + 1);
    }
    EXPECT_EQ(OpenToRead(Location(scratch.PathOf(""))), IsAFolder);
    EXPECT_EQ(OpenFiles(), before);
}

// Missing files.

TEST_F(FileTest, TellsThatItIsMissing)
{
    EXPECT_EQ(StatusOf(LocationOf("missing"), FailWhenNotFound), NotFound);
    EXPECT_EQ(StatusOf(LocationOf("missing/file"), FailWhenNotFound), NotFound);
    EXPECT_EQ(StatusOf(Location(), FailWhenNotFound), NotFound);
    EXPECT_EQ(StatusOf(LocationOf("missing"), CreateWhenNotFound), NoError);
    EXPECT_EQ(StatusOf(Location(scratch.Write("file", "")), FailWhenNotFound), NoError);
    EXPECT_EQ(StatusOf(LocationOf("file/below"), FailWhenNotFound), NotFound) << "a file is no folder";
}

TEST_F(FileTest, FailsToOpenWhenItIsMissing)
{
    EXPECT_EQ(OpenToRead(LocationOf("missing")), NotFound);
    EXPECT_EQ(OpenToRead(Location()), NotFound);
    EXPECT_EQ(OpenToWrite(LocationOf("missing"), FailWhenNotFound), NotFound);
    EXPECT_EQ(OpenToWrite(LocationOf("missing/file")), NotFound);
    EXPECT_EQ(OpenToWrite(Location()), NotFound);
    EXPECT_FALSE(scratch.Has("missing"));
}

TEST_F(FileTest, IsNotMadeByReading)
{
    File file(LocationOf("missing"), CreateWhenNotFound);
    EXPECT_EQ(file.Open(ReadMode, ReportAccessDenied), NotFound);
    EXPECT_FALSE(scratch.Has("missing"));
}

TEST_F(FileTest, FailsOnANameThatIsTooLong)
{
    EXPECT_EQ(OpenToWrite(LocationOf(std::string(1000, 'a'))), OtherError);
}

TEST_F(FileTest, IsNotTheFileWithTheNameUpToAZero)
{
    scratch.Write("file", "kept");
    scratch.Write("\xEF\xBF\xBD", "kept");
    for (const std::u16string_view name :
         {std::u16string_view(u"file\0.xml", 9), std::u16string_view(u"\xD800")})
    {
        Location location(scratch.PathOf(""));
        location.AppendToLocal(Name(name));
        EXPECT_EQ(StatusOf(location, FailWhenNotFound), NotFound);
        EXPECT_EQ(OpenToRead(location), NotFound);
        EXPECT_EQ(OpenToWrite(location), NotFound);
    }
    EXPECT_EQ(scratch.Read("file"), "kept");
    EXPECT_EQ(scratch.Read("\xEF\xBF\xBD"), "kept");
}

// Folders.

TEST_F(FileTest, FailsToOpenAFolder)
{
    std::filesystem::create_directory(scratch.Path() / "folder");
    EXPECT_EQ(OpenToRead(LocationOf("folder")), IsAFolder);
    EXPECT_EQ(OpenToWrite(LocationOf("folder")), IsAFolder);
    EXPECT_EQ(OpenToRead(LocationOf("folder/")), IsAFolder);
}

TEST_F(FileTest, StaysClosedWhenItFailsToOpen)
{
    File file(Location(scratch.PathOf("")), FailWhenNotFound);
    EXPECT_EQ(file.GetStatus(), NoError) << "there is something of that name";
    ASSERT_EQ(file.Open(ReadMode, ReportAccessDenied), IsAFolder);
    EXPECT_EQ(file.Close(), NotOpen);
}

// Denied access.

TEST_F(FileTest, TellsThatAccessIsDenied)
{
    OpenScratchFolderToAll();
    scratch.Write("unreadable", "secret");
    SetPermissions("unreadable", 0);
    const WithoutPrivileges scope;
    EXPECT_EQ(StatusOf(LocationOf("unreadable"), FailWhenNotFound), NoError) << "it is there";
    EXPECT_EQ(OpenToRead(LocationOf("unreadable")), AccessDenied);
    EXPECT_EQ(OpenToWrite(LocationOf("unreadable")), AccessDenied);
}

TEST_F(FileTest, TellsThatItsFolderIsClosed)
{
    OpenScratchFolderToAll();
    std::filesystem::create_directory(scratch.Path() / "closed");
    scratch.Write("closed/file", "secret");
    SetPermissions("closed", 0);
    {
        const WithoutPrivileges scope;
        EXPECT_EQ(StatusOf(LocationOf("closed/file"), FailWhenNotFound), AccessDenied);
        EXPECT_EQ(OpenToRead(LocationOf("closed/file")), AccessDenied);
        EXPECT_EQ(OpenToWrite(LocationOf("closed/new")), AccessDenied);
    }
    SetPermissions("closed", 0700);
}

TEST_F(FileTest, KeepsAFileThatIsReadOnly)
{
    OpenScratchFolderToAll();
    scratch.Write("readonly", "kept");
    SetPermissions("readonly", 0444);
    {
        const WithoutPrivileges scope;
        EXPECT_EQ(OpenToWrite(LocationOf("readonly")), AccessDenied);
        EXPECT_EQ(ReadAll(LocationOf("readonly")), "kept");
    }
    EXPECT_EQ(scratch.Read("readonly"), "kept");
}

// Failing devices.

TEST_F(FileTest, TellsThatTheDeviceIsFull)
{
    File file(Location(u"/dev/full"), FailWhenNotFound);
    ASSERT_EQ(file.GetStatus(), NoError);
    ASSERT_EQ(file.Open(WriteMode, ReportAccessDenied), NoError);
    EXPECT_EQ(file.Write("a", 1), NoSpace);
    EXPECT_EQ(file.Write(nullptr, 0), NoError);
    EXPECT_EQ(file.Close(), NoError);
}

TEST_F(FileTest, TellsThatReadingFailed)
{
    // The memory of a process cannot be read from address 0 on.
    File file(Location(u"/proc/self/mem"), FailWhenNotFound);
    ASSERT_EQ(file.Open(ReadMode, ReportAccessDenied), NoError);
    char byte = 'x';
    size_t count = 99;
    EXPECT_EQ(file.Read(&byte, 1, count), OtherError);
    EXPECT_EQ(count, 0u);
}

} // namespace
