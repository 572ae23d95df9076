// Has each step of saving a file fail, and kills the process at each: the old file is there byte for byte, or
// the new one is.

#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "tests/support/FailingSystem.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/ResourceLimitScope.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace NuvTest::FailingSystem;
using namespace NuvXML;
using Nuv::UniString;
using std::filesystem::perms;

constexpr std::string_view OldText = "<?xml version=\"1.0\"?>\n<old/>\n";
constexpr std::string_view NewText = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n<r>\n"
                                     "\t<v>1</v>\n</r>\n";

Nuv::XMLOChannel* NewChannel(const UniString& path)
{
    Nuv::XMLOChannel* channel = CreateXMLOChannel(IO::Location(path), true);
    channel->WriteStartElement("r");
    channel->WriteXML("v", 1);
    channel->WriteEndElement();
    channel->WriteEndDocument();
    return channel;
}

/// A folder with an old file that a channel is to replace.
class SavingFaults : public testing::TestWithParam<bool>
{
  protected:
    SavingFaults()
        : path(folder.PathOf("a.xml"))
    {
    }

    bool HasOldFile() const { return GetParam(); }

    /// Makes the folder as it was at first.
    void Restore()
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            std::filesystem::remove(entry.path());
        if (!HasOldFile())
            return;
        folder.Write("a.xml", OldText);
        std::filesystem::permissions(folder.Path() / "a.xml", perms(0600));
    }

    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            names.push_back(entry.path().filename().string());
        return names;
    }

    void ExpectNewFile() const
    {
        EXPECT_THAT(Names(), testing::ElementsAre("a.xml"));
        EXPECT_EQ(folder.Read("a.xml"), NewText);
    }

    void ExpectOldFile() const
    {
        if (!HasOldFile())
        {
            EXPECT_THAT(Names(), testing::IsEmpty());
            return;
        }
        EXPECT_THAT(Names(), testing::ElementsAre("a.xml"));
        EXPECT_EQ(folder.Read("a.xml"), OldText);
        EXPECT_EQ(std::filesystem::status(folder.Path() / "a.xml").permissions(), perms(0600));
    }

    /// Takes what a killed process has left beside the file: at most one file, which nobody can read who
    /// could not read the old one.
    void TakeUnfinishedFile() const
    {
        int count = 0;
        for (const std::string& name : Names())
        {
            if (name == "a.xml")
                continue;
            ++count;
            EXPECT_THAT(name, testing::MatchesRegex("NuvXML_unfinished_[-0-9A-F]+\\.tmp"));
            const perms permissions = std::filesystem::status(folder.Path() / name).permissions();
            EXPECT_TRUE(permissions == perms(0600) || !HasOldFile());
            std::filesystem::remove(folder.Path() / name);
        }
        EXPECT_LE(count, 1);
    }

    const ScratchFolder folder;
    const UniString path;
};

INSTANTIATE_TEST_SUITE_P(OldFile, SavingFaults, testing::Bool(),
                         [](const auto& test) { return test.param ? "IsThere" : "IsMissing"; });

/// Whether the document is not saved when call number `nth` fails. Permissions are kept where they can be;
/// once the file is replaced, its folder is flushed where it can be.
bool IsVital(const std::vector<std::string>& calls, size_t nth)
{
    if (nth > calls.size() || calls[nth - 1] == "fchown" || calls[nth - 1] == "fchmod")
        return false;
    const auto failing = calls.begin() + static_cast<std::ptrdiff_t>(nth - 1);
    return std::find(calls.begin(), failing, "rename") == failing;
}

bool IsWrite(const std::vector<std::string>& calls, size_t nth)
{
    return nth <= calls.size() && calls[nth - 1] == "write";
}

TEST_P(SavingFaults, OfEachStepLeaveTheOldFileAndAreReported)
{
    for (const Fault fault : {Fault::Failure, Fault::FailureInTheMiddle})
    {
        std::vector<std::string> calls;
        for (size_t nth = 1; nth <= calls.size() + 1; ++nth)
        {
            Restore();
            Nuv::XMLOChannel* channel = NewChannel(path);
            UniString reason;
            FaultAt(static_cast<int>(nth), fault);
            const bool isSaved = SaveXMLOChannel(channel, &reason);
            calls = Disarm();
            EXPECT_EQ(isSaved, !IsVital(calls, nth)) << nth;
            EXPECT_EQ(reason.IsEmpty(), isSaved);
            EXPECT_EQ(reason.View().ends_with(u"the device is full"), IsWrite(calls, nth));
            isSaved ? ExpectNewFile() : ExpectOldFile();
            DisposeXMLOChannel(channel); // which tries it again
            ExpectNewFile();
        }
        EXPECT_THAT(calls, testing::IsSupersetOf({"open", "write", "fsync", "close", "rename", "fsync"}));
    }
}

TEST_P(SavingFaults, OfEachStepLeaveTheOldFileWhenTheChannelEnds)
{
    std::vector<std::string> calls;
    for (size_t nth = 1; nth <= calls.size() + 1; ++nth)
    {
        Restore();
        Nuv::XMLOChannel* channel = NewChannel(path);
        FaultAt(static_cast<int>(nth), Fault::Failure);
        DisposeXMLOChannel(channel);
        calls = Disarm();
        IsVital(calls, nth) ? ExpectOldFile() : ExpectNewFile();
    }
    EXPECT_GT(calls.size(), 6u);
}

// Killed.

/// Runs `call` in a process of its own.
/// @return how it ended: 0, or the negative number of the signal
int StatusOf(const std::function<void()>& call)
{
    const pid_t child = fork();
    if (child == 0)
    {
        call();
        _exit(0);
    }
    return WaitFor(child).status;
}

TEST_P(SavingFaults, OfAKilledProcessLeaveTheOldFileOrTheNewOne)
{
    for (const Fault fault : {Fault::Kill, Fault::KillInTheMiddle})
    {
        int killed = 0;
        int replaced = 0;
        for (int nth = 1; nth <= 15; ++nth)
        {
            Restore();
            Nuv::XMLOChannel* channel = NewChannel(path);
            const int status = StatusOf(
                [&]
                {
                    FaultAt(nth, fault);
                    SaveXMLOChannel(channel, nullptr);
                });
            const bool isNew = folder.Has("a.xml") && folder.Read("a.xml") == NewText;
            killed += status == -SIGKILL ? 1 : 0;
            replaced += status == -SIGKILL && isNew ? 1 : 0;
            TakeUnfinishedFile();
            isNew ? ExpectNewFile() : ExpectOldFile();
            EXPECT_TRUE(isNew || status != 0 || fault == Fault::KillInTheMiddle);
            DisposeXMLOChannel(channel);
        }
        // Before open, write, flush, close, rename, and in the folder; two more for the permissions.
        const int kills = HasOldFile() ? 9 : 7;
        EXPECT_EQ(killed, fault == Fault::KillInTheMiddle ? 1 : kills);
        EXPECT_EQ(replaced, fault == Fault::KillInTheMiddle ? 0 : 2);
    }
}

TEST_P(SavingFaults, OfAProcessThatTheSystemEndsOnAFullDeviceLeaveTheOldFile)
{
    Restore();
    Nuv::XMLOChannel* channel = NewChannel(path);
    const int status = StatusOf(
        [&]
        {
            std::signal(SIGXFSZ, SIG_DFL);
            const ResourceLimitScope fileSize(RLIMIT_FSIZE, 10);
            SaveXMLOChannel(channel, nullptr);
        });
    EXPECT_EQ(status, -SIGXFSZ) << "the library leaves the signal to the application";
    TakeUnfinishedFile();
    ExpectOldFile();
    DisposeXMLOChannel(channel);
}

} // namespace
