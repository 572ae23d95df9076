#include "InputOutput/File.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "tests/NuvRoot/RecordingChannels.hpp"
#include "tests/support/CurrentFolderScope.hpp"
#include "tests/support/ResourceLimitScope.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <sys/stat.h>

namespace
{

using namespace NuvXML;
using namespace NuvTest;
using Nuv::UniString;
using Channel = std::unique_ptr<Nuv::XMLOChannel>;

constexpr char Declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>";
const std::string EmptyRoot = Declaration + std::string("\n<r/>");

/// A channel with a root element that is open.
Channel NewChannel(const UniString& path)
{
    Channel channel(CreateXMLOChannel(IO::Location(path), true));
    channel->WriteStartElement("r");
    return channel;
}

bool IsSaved(const Channel& channel)
{
    UniString reason(u"untouched");
    const bool isSaved = SaveXMLOChannel(channel.get(), &reason);
    EXPECT_EQ(reason == u"untouched", isSaved) << reason;
    return isSaved;
}

/// The reason why the channel cannot be saved.
UniString ReasonOf(Nuv::XMLOChannel* channel)
{
    UniString reason;
    EXPECT_FALSE(SaveXMLOChannel(channel, &reason));
    EXPECT_FALSE(SaveXMLOChannel(channel, nullptr));
    return reason;
}

// Success.

TEST(SaveXMLOChannel, WritesTheDocumentAsItIsNow)
{
    const ScratchFolder folder;
    const Channel channel = NewChannel(folder.PathOf("a.xml"));
    EXPECT_TRUE(IsSaved(channel));
    EXPECT_EQ(folder.Read("a.xml"), EmptyRoot);
    channel->WriteXML("v", 1);
    EXPECT_EQ(folder.Read("a.xml"), EmptyRoot);
    EXPECT_TRUE(SaveXMLOChannel(channel.get(), nullptr));
    EXPECT_EQ(folder.Read("a.xml"), Declaration + std::string("\n<r>\n\t<v>1</v></r>"));
}

TEST(SaveXMLOChannel, WritesEachTimeThatItIsCalled)
{
    const ScratchFolder folder;
    const Channel channel = NewChannel(folder.PathOf("a.xml"));
    EXPECT_TRUE(IsSaved(channel));
    folder.Write("a.xml", "of another program");
    EXPECT_TRUE(IsSaved(channel));
    EXPECT_EQ(folder.Read("a.xml"), EmptyRoot);
}

/// Whether the end of a channel that was saved writes again, after `call`.
bool IsWrittenAgain(const std::function<void(Nuv::XMLOChannel&)>& call, bool isRootClosed = false)
{
    const ScratchFolder folder;
    Channel channel = NewChannel(folder.PathOf("a.xml"));
    if (isRootClosed)
        channel->WriteEndElement();
    EXPECT_TRUE(IsSaved(channel));
    folder.Write("a.xml", "of another program");
    call(*channel);
    channel.reset();
    return folder.Read("a.xml") != "of another program";
}

TEST(SaveXMLOChannel, LeavesNothingToWriteAtTheEndOfTheChannel)
{
    EXPECT_FALSE(IsWrittenAgain([](Nuv::XMLOChannel&) {}));
    EXPECT_FALSE(IsWrittenAgain([](Nuv::XMLOChannel& channel) { channel.WriteEndElement(); }))
        << "an empty element has no layout";
    EXPECT_FALSE(IsWrittenAgain([](Nuv::XMLOChannel& channel) { channel.WriteStartDocument(); }));
    EXPECT_FALSE(
        IsWrittenAgain([](Nuv::XMLOChannel& channel) { channel.AddMessage(u"not of the document"); }));
    EXPECT_FALSE(
        IsWrittenAgain([](Nuv::XMLOChannel& channel)
                       { dynamic_cast<DOMBuilder&>(channel).GetActualNode()->setAttribute(u"a", u"1"); }));
}

TEST(SaveXMLOChannel, LeavesNothingToWriteAfterACallThatAddsNothing)
{
    using xercesc_3_0::DOMException;
    EXPECT_FALSE(IsWrittenAgain([](Nuv::XMLOChannel& channel) { channel.WriteStartElement("again"); }, true));
    EXPECT_FALSE(IsWrittenAgain([](Nuv::XMLOChannel& channel) { channel.WriteXMLAttr("a", 1); }, true));
    EXPECT_FALSE(IsWrittenAgain([](Nuv::XMLOChannel& channel)
                                { EXPECT_THROW(channel.WriteXML("1", 1), DOMException); }));
    EXPECT_FALSE(IsWrittenAgain([](Nuv::XMLOChannel& channel)
                                { EXPECT_THROW(channel.WriteXMLAttr("1", 1), DOMException); }));
}

TEST(SaveXMLOChannel, LeavesToTheEndOfTheChannelWhatIsAddedLater)
{
    using Call = void (*)(Nuv::XMLOChannel&);
    const Call calls[] = {[](auto& channel) { channel.WriteStartElement("e"); },
                          [](auto& channel) { channel.WriteXML("v", 1); },
                          [](auto& channel) { channel.WriteXMLAttr("a", 1); },
                          [](auto& channel) { channel.WriteXMLTextNode(UniString(u"text")); },
                          [](auto& channel) { channel.WriteXMLCDATAString(UniString(u"text")); },
                          [](auto& channel) { channel.WriteEndDocument(); }};
    for (const Call call : calls)
        EXPECT_TRUE(IsWrittenAgain(call));
}

TEST(SaveXMLOChannel, WritesADocumentThatIsTakenOver)
{
    const ScratchFolder folder;
    auto* document =
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"r", nullptr);
    document->setDocumentURI(IO::Location(folder.PathOf("a b.xml")).ToURL().ToUTF16());
    DOMBuilder builder(document, document->getDocumentElement(), DOMBuilder::TakeDocumentOver, 1);
    EXPECT_TRUE(SaveXMLOChannel(&builder, nullptr));
    EXPECT_EQ(folder.Read("a b.xml"), Declaration + std::string("<r/>"));
}

TEST(SaveXMLOChannel, WritesAFileInTheCurrentFolder)
{
    const ScratchFolder folder;
    const CurrentFolderScope scope(folder.Path());
    EXPECT_TRUE(IsSaved(NewChannel(UniString(u"a.xml"))));
    EXPECT_EQ(folder.Read("a.xml"), EmptyRoot);
}

TEST(SaveXMLOChannel, WritesAFileWithTheLongestName)
{
    const ScratchFolder folder;
    std::string longest(251, 'a');
    for (const std::string& name :
         {longest + ".xml", std::string(255, 'b'), "\xC3\xA4" + std::string(253, 'c')})
    {
        EXPECT_TRUE(IsSaved(NewChannel(folder.PathOf(name))));
        EXPECT_EQ(folder.Read(name), EmptyRoot);
    }
}

TEST(SaveXMLOChannel, LeavesOtherLinksToTheOldFile)
{
    const ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    std::filesystem::create_hard_link(folder.Path() / "a.xml", folder.Path() / "b.xml");
    std::filesystem::create_symlink(folder.Path() / "a.xml", folder.Path() / "link.xml");
    EXPECT_TRUE(IsSaved(NewChannel(path)));
    EXPECT_TRUE(IsSaved(NewChannel(folder.PathOf("link.xml"))));
    EXPECT_EQ(folder.Read("b.xml"), "old");
    EXPECT_FALSE(std::filesystem::is_symlink(folder.Path() / "link.xml"));
    EXPECT_EQ(folder.Read("link.xml"), EmptyRoot);
}

// Permissions.

TEST(SaveXMLOChannel, KeepsThePermissionsOfTheFile)
{
    const ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    for (const unsigned permissions : {0600u, 0640u, 0444u, 0666u, 0755u, 0400u})
    {
        std::filesystem::permissions(folder.Path() / "a.xml", std::filesystem::perms(permissions));
        EXPECT_TRUE(IsSaved(NewChannel(path)));
        EXPECT_EQ(std::filesystem::status(folder.Path() / "a.xml").permissions(),
                  std::filesystem::perms(permissions));
    }
}

TEST(SaveXMLOChannel, GivesANewFileThePermissionsOfAnyOther)
{
    const ScratchFolder folder;
    folder.Write("other", "");
    folder.Write("target", "");
    std::filesystem::permissions(folder.Path() / "target", std::filesystem::perms(0600));
    std::filesystem::create_symlink(folder.Path() / "target", folder.Path() / "link.xml");
    for (const char* name : {"new.xml", "link.xml"})
    {
        EXPECT_TRUE(IsSaved(NewChannel(folder.PathOf(name))));
        EXPECT_EQ(std::filesystem::status(folder.Path() / name).permissions(),
                  std::filesystem::status(folder.Path() / "other").permissions());
    }
}

// Failure.

TEST(SaveXMLOChannel, FailsForAChannelWithoutAFileOfItsOwn)
{
    EXPECT_EQ(ReasonOf(nullptr), u"There is no channel.");
    RecordingOChannel other;
    EXPECT_EQ(ReasonOf(&other), u"The channel is of another kind.");
    const Channel scratch(CreateXMLOChannel(true));
    EXPECT_EQ(ReasonOf(scratch.get()), u"The channel has no file of its own.");
    IO::Location location;
    EXPECT_TRUE(scratch->GetLocation(location));
    EXPECT_FALSE(std::filesystem::exists(location.ToNativePath()));
    EXPECT_EQ(ReasonOf(NewChannel(UniString()).get()), u"The channel has no file of its own.");
}

TEST(SaveXMLOChannel, FailsForADocumentThatTheCallerKeeps)
{
    const ScratchFolder folder;
    const XercesPtr<xercesc_3_0::DOMDocument> document(
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"r", nullptr));
    document->setDocumentURI(folder.PathOf("a.xml").ToUTF16());
    DOMBuilder builder(document.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(ReasonOf(&builder), u"The channel has no file of its own.");
    EXPECT_FALSE(folder.Has("a.xml"));
}

TEST(SaveXMLOChannel, FailsForADocumentThatCannotBeExported)
{
    const ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    const Channel channel = NewChannel(path);
    channel->WriteXMLAttr("a", UniString(u"\u0001"));
    EXPECT_EQ(ReasonOf(channel.get()), u"The document holds what XML cannot hold.");
    EXPECT_EQ(folder.Read("a.xml"), "old");
    channel->WriteXMLAttr("a", UniString(u"mended"));
    EXPECT_TRUE(IsSaved(channel));
    EXPECT_EQ(folder.Read("a.xml"), Declaration + std::string("\n<r a=\"mended\"/>"));
}

UniString WritingFailed(const UniString& path, const char16_t* reason)
{
    return UniString(u"Writing XML file failed: ") + path + u": " + reason;
}

TEST(SaveXMLOChannel, TellsWhyTheFileCannotBeWritten)
{
    const ScratchFolder folder;
    std::filesystem::create_directory(folder.Path() / "folder");
    for (const auto& [name, reason] :
         {std::pair("missing/a.xml", u"there is no such folder"), {"folder", u"a folder has its name"}})
        EXPECT_EQ(ReasonOf(NewChannel(folder.PathOf(name)).get()),
                  WritingFailed(folder.PathOf(name), reason));
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0555));
    {
        const WithoutPrivileges unprivileged;
        EXPECT_EQ(ReasonOf(NewChannel(folder.PathOf("a.xml")).get()),
                  WritingFailed(folder.PathOf("a.xml"), u"access is denied"));
    }
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0700));
    const Channel channel = NewChannel(folder.PathOf("a.xml"));
    const FullDeviceScope full(10);
    EXPECT_EQ(ReasonOf(channel.get()), WritingFailed(folder.PathOf("a.xml"), u"the system refuses it"));
}

TEST(SaveXMLOChannel, CanBeTriedAgainAndElseIsDoneAtTheEnd)
{
    const ScratchFolder folder;
    for (const bool isTriedAgain : {false, true})
    {
        const UniString path = folder.Write("a.xml", "old");
        Channel channel = NewChannel(path);
        {
            const FullDeviceScope full(10);
            ReasonOf(channel.get());
        }
        EXPECT_EQ(folder.Read("a.xml"), "old");
        EXPECT_EQ(isTriedAgain && IsSaved(channel), isTriedAgain);
        channel.reset();
        EXPECT_EQ(folder.Read("a.xml"), EmptyRoot);
    }
}

// Discarded.

TEST(DiscardXMLOChannel, LeavesTheFileAtTheEndOfTheChannel)
{
    const ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    Channel channel = NewChannel(path);
    DiscardXMLOChannel(channel.get());
    EXPECT_EQ(channel->WriteXML("v", 1), 0);
    EXPECT_EQ(ReasonOf(channel.get()), u"The document has been discarded.");
    channel.reset();
    EXPECT_EQ(folder.Read("a.xml"), "old");
}

TEST(DiscardXMLOChannel, LeavesWhatWasSavedBefore)
{
    const ScratchFolder folder;
    Channel channel = NewChannel(folder.PathOf("a.xml"));
    EXPECT_TRUE(IsSaved(channel));
    channel->WriteXML("v", 1);
    DiscardXMLOChannel(channel.get());
    channel.reset();
    EXPECT_EQ(folder.Read("a.xml"), EmptyRoot);
}

TEST(DiscardXMLOChannel, ReleasesADocumentThatIsTakenOver)
{
    const ScratchFolder folder;
    auto* document =
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"r", nullptr);
    document->setDocumentURI(folder.PathOf("a.xml").ToUTF16());
    {
        DOMBuilder builder(document, nullptr, DOMBuilder::TakeDocumentOver, 0);
        DiscardXMLOChannel(&builder);
    }
    EXPECT_FALSE(folder.Has("a.xml"));
}

TEST(DiscardXMLOChannel, IgnoresOtherChannels)
{
    DiscardXMLOChannel(nullptr);
    RecordingOChannel other;
    DiscardXMLOChannel(&other);
    const Channel scratch(CreateXMLOChannel(true));
    DiscardXMLOChannel(scratch.get());
    EXPECT_FALSE(ExportOChannelToUniString(scratch.get()).IsEmpty());
}

TEST(DiscardXMLOChannel, KeepsAGuardFromWritingHalfAnObject)
{
    const ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    try
    {
        Nuv::XMLOChannel* channel = CreateXMLOChannel(IO::Location(path), true);
        const XMLOChannelGuard guard(&channel);
        channel->WriteStartElement("half");
        DiscardXMLOChannel(channel);
        throw Nuv::GeneralException(u"elsewhere");
    }
    catch (const Nuv::GeneralException&)
    {
    }
    EXPECT_EQ(folder.Read("a.xml"), "old");
}

} // namespace
