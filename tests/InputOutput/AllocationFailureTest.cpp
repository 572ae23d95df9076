// Makes each allocation of each operation that needs memory fail in turn.

#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
#include "InputOutput/Folder.hpp"
#include "InputOutput/RelativeLocation.hpp"
#include "tests/support/FailingAllocator.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

namespace
{

using namespace IO;
using namespace NuvTest::FailingAllocator;
using Nuv::UniString;

const Name LongName(u"a name that is longer than a short string");
const Name OtherName(u"another name that is longer than a short string");
const UniString LongPath(u"/folder/a file with a name of more than a few characters \u00E4.xml");
const Location LongLocation(LongPath);

/// Expects that the operation fails by the application's exception only.
template <class Operation>
void SweepResult(Operation operation)
{
    EXPECT_GT(Sweep([&] { ExpectOutOfMemoryOnly([&] { operation(); }); }), 0u);
}

RelativeLocation TwoNames()
{
    RelativeLocation location(LongName);
    location.AppendToLocal(OtherName);
    return location;
}

// Names and locations.

TEST(AllocationFailure, OfANameLeavesNothingBehind)
{
    SweepResult([] { Name name(LongPath); });
    SweepResult([] { Name name(LongName); });
}

TEST(AllocationFailure, OfAnExtensionLeavesTheNameAsItWas)
{
    for (const UniString& text : {UniString(), UniString(u"1234567"), LongName.ToUniString()})
        SweepKeeping(Name(text), [](Name& name) { name.AppendExtension(u"an extension, not a short one"); });
}

TEST(AllocationFailure, OfALocationLeavesNothingBehind)
{
    const UniString url = LongLocation.ToURL();
    SweepResult([] { Location location(LongPath); });
    SweepResult([&] { Location location(url); });
    SweepResult([] { Location location(LongLocation); });
    SweepResult([] { LongLocation.ToURL(); });
    SweepResult([] { Location(u"relative").ToURL(); });
    SweepResult([] { LongLocation.ToNativePath(); });
}

TEST(AllocationFailure, OfAChangeLeavesTheLocationAsItWas)
{
    const UniString url = Location(u"/another folder/with a long name").ToURL();
    const RelativeLocation down = TwoNames();
    SweepKeeping(LongLocation, [&](Location& location) { location.Set(url); });
    SweepKeeping(LongLocation, [](Location& location) { location.Set(LongPath + LongPath); });
    for (const UniString& path : {UniString(), UniString(u"/"), UniString(u"/folder"), LongPath})
    {
        SweepKeeping(Location(path), [](Location& location) { location.AppendToLocal(LongName); });
        SweepKeeping(Location(path), [&](Location& location) { location.AppendToLocal(down); });
    }
}

TEST(AllocationFailure, OfTheLastNameLeavesTheNameAsItWas)
{
    SweepKeeping(LongName, [](Name& name) { LongLocation.GetLastLocalName(name); });
}

TEST(AllocationFailure, OfTheFolderLeavesTheLocationAsItWas)
{
    SweepKeeping(LongLocation,
                 [](Location& folder) { Location(LongLocation.ToPath() + u"/b").GetFolder(folder); });
}

TEST(AllocationFailure, OfARelativeLocationLeavesNothingBehind)
{
    const RelativeLocation down = TwoNames();
    SweepResult([] { RelativeLocation location(LongName); });
    SweepResult([&] { RelativeLocation location(down); });
    SweepResult([&] { down.ToURL(); });
}

TEST(AllocationFailure, OfAChangeLeavesTheRelativeLocationAsItWas)
{
    const RelativeLocation down = TwoNames();
    for (const RelativeLocation& original : {RelativeLocation(), RelativeLocation(LongName), down})
    {
        SweepKeeping(original, [](RelativeLocation& location) { location.AppendToLocal(OtherName); });
        SweepKeeping(original, [&](RelativeLocation& location) { location.AppendToLocal(down); });
    }
    SweepKeeping(down, [](RelativeLocation& location) { location.AppendToLocal(location); });
}

// The file system.

TEST(AllocationFailure, OfAFileLeavesNothingBehindAndTheFileAlone)
{
    const NuvTest::ScratchFolder folder;
    const Location location(folder.Write("a file with a long name", "old"));
    SweepResult([&] { File file(location, FailWhenNotFound); });
    EXPECT_EQ(folder.Read("a file with a long name"), "old");
}

TEST(AllocationFailure, NeverKeepsAnOpenFileFromWork)
{
    const NuvTest::ScratchFolder folder;
    const Location location(folder.PathOf("a file with a long name"));
    EXPECT_EQ(Sweep(
                  [&]
                  {
                      std::unique_ptr<File> file;
                      {
                          const Pause pause;
                          file = std::make_unique<File>(location, CreateWhenNotFound);
                      }
                      char bytes[4];
                      size_t count = 0;
                      EXPECT_EQ(file->Open(WriteMode, ReportAccessDenied), NoError);
                      EXPECT_EQ(file->Write("text", 4), NoError);
                      EXPECT_EQ(file->Open(ReadMode, ReportAccessDenied), NoError);
                      EXPECT_EQ(file->Read(bytes, 4, count), NoError);
                      EXPECT_EQ(file->Close(), NoError);
                      const Pause pause;
                      file.reset();
                  }),
              0u);
}

TEST(AllocationFailure, OfDeletingLeavesTheFileAlone)
{
    const NuvTest::ScratchFolder folder;
    const Location location(folder.PathOf("a file with a long name"));
    SweepResult(
        [&]
        {
            {
                const Pause pause;
                folder.Write("a file with a long name", "old");
            }
            bool isDeleted = false;
            ExpectOutOfMemoryOnly(
                [&]
                {
                    EXPECT_EQ(FileSystem::Delete(location, DeleteForGood, ReportAccessDenied), NoError);
                    isDeleted = true;
                });
            const Pause pause;
            EXPECT_EQ(folder.Has("a file with a long name"), !isDeleted);
        });
}

TEST(AllocationFailure, OfReplacingLeavesBothFiles)
{
    const NuvTest::ScratchFolder folder;
    const Location from(folder.PathOf("a new file with a long name"));
    const Location to(folder.PathOf("an old file with a long name"));
    SweepResult(
        [&]
        {
            {
                const Pause pause;
                folder.Write("a new file with a long name", "new");
                folder.Write("an old file with a long name", "old");
            }
            bool isReplaced = false;
            ExpectOutOfMemoryOnly(
                [&]
                {
                    EXPECT_EQ(FileSystem::Replace(from, to), NoError);
                    isReplaced = true;
                });
            const Pause pause;
            EXPECT_EQ(folder.Has("a new file with a long name"), !isReplaced);
            EXPECT_EQ(folder.Read("an old file with a long name"), isReplaced ? "new" : "old");
        });
}

TEST(AllocationFailure, OfANewFileMakesNone)
{
    const NuvTest::ScratchFolder folder;
    const Location location(folder.PathOf("a new file with a long name"));
    const Location replaced(folder.PathOf("an old file with a long name"));
    SweepResult(
        [&]
        {
            std::unique_ptr<File> file;
            {
                const Pause pause;
                file = std::make_unique<File>(location, CreateWhenNotFound);
            }
            bool isMade = false;
            ExpectOutOfMemoryOnly(
                [&]
                {
                    EXPECT_EQ(file->OpenNew(replaced), NoError);
                    isMade = true;
                });
            EXPECT_EQ(file->Delete(), isMade ? NoError : NotFound) << "which needs no memory";
            const Pause pause;
            EXPECT_FALSE(folder.Has("a new file with a long name"));
            file.reset();
        });
}

TEST(AllocationFailure, OfASpecialLocationLeavesTheLocationAsItWas)
{
    SweepKeeping(LongLocation, [](Location& location)
                 { FileSystem::GetSpecialLocation(FileSystem::TemporaryFolder, location); });
}

TEST(AllocationFailure, OfAnUnusedNameLeavesTheNameAsItWas)
{
    const NuvTest::ScratchFolder scratch;
    const Folder folder(Location(scratch.PathOf("")));
    SweepResult([&] { Folder copy(folder); });
    SweepKeeping(LongName, [&](Name& name) { folder.GenerateUnusedName(u"Scratch_", name); });
}

} // namespace
