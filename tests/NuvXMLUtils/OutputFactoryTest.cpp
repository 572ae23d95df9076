#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "tests/NuvRoot/RecordingChannels.hpp"
#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <exception>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace
{

using namespace NuvXML;
using Nuv::UniString;
using Messages = Nuv::Array<UniString>;

/// A channel of another kind: it remembers messages with their lines and tells when it is deleted.
class MessageChannel : public RecordingOChannel
{
  public:
    explicit MessageChannel(const UniString& path = UniString(), bool* deletedFlag = nullptr)
        : location(path)
        , deleted(deletedFlag)
    {
    }
    ~MessageChannel() override
    {
        if (deleted)
            *deleted = true;
    }

    void Add(const UniString& text, int line) { messages.emplace_back(text, line); }

    bool GetLocation(IO::Location& out) override
    {
        if (location.IsEmpty())
            return false;
        out.Set(location);
        return true;
    }
    int GetNumberOfMessage() override { return static_cast<int>(messages.size()); }
    void GetMessage(int index, UniString& text, int& line) override
    {
        text = messages[static_cast<size_t>(index)].first;
        line = messages[static_cast<size_t>(index)].second;
    }

  private:
    UniString location;
    bool* deleted;
    std::vector<std::pair<UniString, int>> messages;
};

/// A builder whose text is its own.
class OwnExport : public DOMBuilder
{
  public:
    UniString Export() override { return UniString(u"own"); }
    using DOMBuilder::Export;
};

void WriteRoot(Nuv::XMLOChannel& channel)
{
    channel.WriteStartElement("r");
    channel.WriteXML("v", 1);
    channel.WriteEndElement();
    channel.WriteEndDocument();
}

constexpr char RootAsBytes[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n<r>\n\t<v>1</v>\n</r>\n";

TEST(CreateXMLOChannel, MakesABuilderOverANewDocument)
{
    for (const bool throwOnError : {false, true})
    {
        const std::unique_ptr<Nuv::XMLOChannel> channel(CreateXMLOChannel(throwOnError));
        auto* builder = dynamic_cast<DOMBuilder*>(channel.get());
        ASSERT_NE(builder, nullptr);
        EXPECT_EQ(builder->GetDOMDocument()->getFirstChild(), nullptr);
        WriteRoot(*channel);
        EXPECT_EQ(builder->Export(), UniString(RootAsBytes));
    }
}

TEST(CreateXMLOChannel, MakesABuilderThatWritesItsFileWhenItIsDisposedOf)
{
    for (const bool throwOnError : {false, true})
    {
        const NuvTest::ScratchFolder folder;
        Nuv::XMLOChannel* channel = CreateXMLOChannel(IO::Location(folder.PathOf("a.xml")), throwOnError);
        ASSERT_NE(dynamic_cast<DOMBuilder*>(channel), nullptr);
        IO::Location location;
        EXPECT_TRUE(channel->GetLocation(location));
        EXPECT_EQ(location.ToPath(), folder.PathOf("a.xml"));
        WriteRoot(*channel);
        EXPECT_FALSE(folder.Has("a.xml"));
        DisposeXMLOChannel(channel);
        EXPECT_EQ(folder.Read("a.xml"), RootAsBytes);
    }
}

/// Takes the place of Xerces' memory manager till the end of the scope and throws instead of giving memory.
template <class Exception>
class ThrowingMemoryManager : public xercesc_3_0::MemoryManager
{
  public:
    ThrowingMemoryManager() { xercesc_3_0::XMLPlatformUtils::fgMemoryManager = this; }
    ~ThrowingMemoryManager() override { xercesc_3_0::XMLPlatformUtils::fgMemoryManager = original; }

    xercesc_3_0::MemoryManager* getExceptionMemoryManager() override { return original; }
    void* allocate(XMLSize_t) override { throw Exception(); }
    void deallocate(void*) override {}

  private:
    xercesc_3_0::MemoryManager* const original = xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
};

template <class Exception>
void ExpectFailureToMakeAChannel(const UniString& message)
{
    const ThrowingMemoryManager<Exception> manager;
    EXPECT_EQ(CreateXMLOChannel(false), nullptr);
    try
    {
        DisposeXMLOChannel(CreateXMLOChannel(true));
        ADD_FAILURE() << "no exception";
    }
    catch (const XMLOChannelException& exception)
    {
        EXPECT_EQ(exception.GetMessage(), message);
    }
}

/// What keeps a document from being made, of both kinds that the factory tells apart.
struct ExceptionOfBothKinds : xercesc_3_0::DOMException, DOMBuilderException
{
};

TEST(CreateXMLOChannel, TellsWhatKindOfExceptionKeptItFromMakingADocument)
{
    ExpectFailureToMakeAChannel<DOMBuilderException>(u"NuvXML DOMBuilderException");
    ExpectFailureToMakeAChannel<ExceptionOfBothKinds>(u"Xercesc DOMException");
    ExpectFailureToMakeAChannel<xercesc_3_0::DOMException>(u"Xercesc DOMException");
    ExpectFailureToMakeAChannel<std::exception>(u"Unkonwn Exception in CreateXMLOChannel");
    ExpectFailureToMakeAChannel<std::bad_alloc>(u"Not enough memory in CreateXMLOChannel");
}

TEST(SaveXMLOChannel, TellsThatAnUnknownExceptionKeptItFromSaving)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    const std::unique_ptr<Nuv::XMLOChannel> channel(CreateXMLOChannel(IO::Location(path), true));
    UniString reason;
    {
        const ThrowingMemoryManager<std::exception> manager;
        EXPECT_FALSE(SaveXMLOChannel(channel.get(), &reason));
    }
    EXPECT_EQ(reason, u"Unknown exception in SaveXMLOChannel");
    EXPECT_EQ(folder.Read("a.xml"), "old");
}

template <class... Arguments>
constexpr bool MakesAChannel = requires(Arguments... arguments)
{
    CreateXMLOChannel(arguments...);
};

TEST(CreateXMLOChannel, TakesNoPointerForABool)
{
    EXPECT_TRUE(MakesAChannel<bool>);
    EXPECT_TRUE((MakesAChannel<IO::Location, bool>));
    EXPECT_FALSE(MakesAChannel<const char*>);
    EXPECT_FALSE(MakesAChannel<const char16_t*>);
    EXPECT_FALSE(MakesAChannel<const IO::Location*>);
    EXPECT_FALSE(MakesAChannel<UniString>);
    EXPECT_FALSE((MakesAChannel<const char*, bool>));
}

TEST(DisposeXMLOChannel, DeletesTheChannelThroughItsVirtualDestructor)
{
    bool deleted = false;
    DisposeXMLOChannel(new MessageChannel(UniString(), &deleted));
    EXPECT_TRUE(deleted);
}

TEST(DisposeXMLOChannel, IgnoresNull) { DisposeXMLOChannel(nullptr); }

TEST(ExportOChannelToUniString, GivesTheWholeDocument)
{
    const std::unique_ptr<Nuv::XMLOChannel> channel(CreateXMLOChannel(true));
    WriteRoot(*channel);
    EXPECT_EQ(ExportOChannelToUniString(channel.get()), UniString(RootAsBytes));
}

TEST(ExportOChannelToUniString, AsksTheBuilderThroughTheVirtualTable)
{
    OwnExport builder;
    EXPECT_EQ(ExportOChannelToUniString(&builder), UniString(u"own"));
}

TEST(ExportOChannelToUniString, IsEmptyForNull)
{
    EXPECT_EQ(ExportOChannelToUniString(nullptr), UniString());
}

TEST(ExportOChannelToUniString, IsEmptyForChannelsOfOtherKinds)
{
    MessageChannel channel;
    EXPECT_EQ(ExportOChannelToUniString(&channel), UniString());
}

TEST(XMLOChannelGuard, DoesNothingOverNull)
{
    Messages messages;
    Nuv::XMLOChannel* channel = nullptr;
    {
        const XMLOChannelGuard overNoPointer(nullptr);
        const XMLOChannelGuard overNoPointerWithList(nullptr, &messages);
        const XMLOChannelGuard overNoChannel(&channel);
        const XMLOChannelGuard overNoChannelWithList(&channel, &messages);
    }
    EXPECT_EQ(channel, nullptr);
    EXPECT_EQ(messages, Messages());
}

TEST(XMLOChannelGuard, HarvestsTheMessagesAndDeletesTheChannel)
{
    bool deleted = false;
    auto* own = new MessageChannel(UniString(u"/projects/house.xml"), &deleted);
    own->Add(UniString(u"first"), 3);
    own->Add(UniString(u"second"), 7);
    Nuv::XMLOChannel* channel = own;
    Messages messages{UniString(u"before")};
    {
        const XMLOChannelGuard guard(&channel, &messages);
        EXPECT_FALSE(deleted);
    }
    EXPECT_EQ(messages, (Messages{UniString(u"before"), UniString(u"/projects/house.xml (3):  first\n"),
                                  UniString(u"/projects/house.xml (7):  second\n")}));
    EXPECT_TRUE(deleted);
    EXPECT_EQ(channel, nullptr);
}

TEST(XMLOChannelGuard, LeavesTheListAloneWhenThereAreNoMessages)
{
    bool deleted = false;
    Nuv::XMLOChannel* channel = new MessageChannel(UniString(u"/a.xml"), &deleted);
    Messages messages{UniString(u"before")};
    {
        const XMLOChannelGuard guard(&channel, &messages);
    }
    EXPECT_EQ(messages, Messages{UniString(u"before")});
    EXPECT_TRUE(deleted);
    EXPECT_EQ(channel, nullptr);
}

TEST(XMLOChannelGuard, PutsTheTextOfAnEmptyLocationBeforeTheMessagesOfAChannelWithoutLocation)
{
    auto* own = new MessageChannel;
    own->Add(UniString(u"100%s %d"), -2);
    Nuv::XMLOChannel* channel = own;
    Messages messages;
    {
        const XMLOChannelGuard guard(&channel, &messages);
    }
    EXPECT_EQ(messages, Messages{UniString(u" (-2):  100%s %d\n")});
}

TEST(XMLOChannelGuard, PutsTheLocationIntoTheLocalCodePageAndLeavesTheMessageAsItIs)
{
    const NuvTest::LocalCodePageScope codePage("windows-1252");
    auto* own = new MessageChannel(UniString(u"/Größe%s/\u03A9.xml"));
    own->Add(UniString(u"\u03A9"), 1);
    Nuv::XMLOChannel* channel = own;
    Messages messages;
    {
        const XMLOChannelGuard guard(&channel, &messages);
    }
    EXPECT_EQ(messages, Messages{UniString(u"/Größe%s/?.xml (1):  \u03A9\n")});
}

TEST(XMLOChannelGuard, DeletesTheChannelWithoutAListToo)
{
    bool firstDeleted = false;
    bool secondDeleted = false;
    Nuv::XMLOChannel* first = new MessageChannel(UniString(), &firstDeleted);
    Nuv::XMLOChannel* second = new MessageChannel(UniString(), &secondDeleted);
    static_cast<MessageChannel*>(first)->Add(UniString(u"lost"), 1);
    {
        const XMLOChannelGuard guard(&first);
        const XMLOChannelGuard guardWithNullList(&second, nullptr);
    }
    EXPECT_TRUE(firstDeleted);
    EXPECT_TRUE(secondDeleted);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(second, nullptr);
}

TEST(XMLOChannelGuard, EndsTheChannelThatStandsBehindThePointerThen)
{
    bool firstDeleted = false;
    bool secondDeleted = false;
    const std::unique_ptr<Nuv::XMLOChannel> first(new MessageChannel(UniString(u"/1"), &firstDeleted));
    auto* second = new MessageChannel(UniString(u"/2"), &secondDeleted);
    second->Add(UniString(u"text"), 1);
    Nuv::XMLOChannel* channel = first.get();
    Messages messages;
    {
        const XMLOChannelGuard guard(&channel, &messages);
        channel = second;
    }
    EXPECT_FALSE(firstDeleted);
    EXPECT_TRUE(secondDeleted);
    EXPECT_EQ(messages, Messages{UniString(u"/2 (1):  text\n")});
    EXPECT_EQ(channel, nullptr);
}

TEST(XMLOChannelGuard, WritesTheFileOfABuilder)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.PathOf("a b.xml");
    Messages messages;
    {
        Nuv::XMLOChannel* channel = CreateXMLOChannel(IO::Location(path), true);
        const XMLOChannelGuard guard(&channel, &messages);
        WriteRoot(*channel);
        channel->AddMessage(UniString(u"a message"));
    }
    EXPECT_EQ(folder.Read("a b.xml"), RootAsBytes);
    EXPECT_EQ(messages, Messages{path + UniString(u" (1):  a message\n")});
}

TEST(XMLOChannelGuard, CopiesBothPointersWhenItIsAssigned)
{
    Messages messages;
    Nuv::XMLOChannel* channel = nullptr;
    const XMLOChannelGuard source(&channel, &messages);
    {
        XMLOChannelGuard assigned(nullptr);
        assigned = source;
        auto* own = new MessageChannel(UniString(u"/1"));
        own->Add(UniString(u"text"), 1);
        channel = own;
    }
    EXPECT_EQ(messages, Messages{UniString(u"/1 (1):  text\n")});
    EXPECT_EQ(channel, nullptr);
}

TEST(XMLOChannelGuard, HoldsTheTwoPointersOnly) { EXPECT_EQ(sizeof(XMLOChannelGuard), 2 * sizeof(void*)); }

TEST(XMLOChannelGuard, SurvivesAChannelThatFailsToGiveAMessage)
{
    struct Failing : MessageChannel
    {
        using MessageChannel::MessageChannel;
        int GetNumberOfMessage() override { return 2; }
        void GetMessage(int index, UniString& text, int&) override
        {
            if (index == 1)
                throw Nuv::OutOfMemoryException();
            text = UniString(u"first");
        }
    };
    bool deleted = false;
    Nuv::XMLOChannel* channel = new Failing(UniString(u"/1"), &deleted);
    Messages messages;
    {
        const XMLOChannelGuard guard(&channel, &messages);
    }
    EXPECT_EQ(messages, Messages{UniString(u"/1 (0):  first\n")});
    EXPECT_TRUE(deleted);
    EXPECT_EQ(channel, nullptr);
}

} // namespace
