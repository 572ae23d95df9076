#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include "NuvXMLUtils/NuvXMLDOMReader.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/XercesDownScope.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>

namespace
{

using namespace NuvXML;
using Nuv::UniString;
using Channel = std::unique_ptr<Nuv::XMLIChannel>;
using Messages = Nuv::Array<UniString>;

static_assert(std::is_base_of_v<XMLIOChannelException, XMLIChannelException>);
static_assert(sizeof(XMLIChannelGuard) == 2 * sizeof(void*));

const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

Channel FromMemory(std::string_view text)
{
    return Channel(CreateXMLIChannelFromMemory(Bytes(text), static_cast<unsigned int>(text.size()), true));
}

UniString ValueOf(const Channel& channel, const char* name)
{
    UniString value(u"(none)");
    if (channel)
        channel->ReadXML(name, value);
    return value;
}

/// A way to make a channel, by its flag.
using Factory = std::function<Nuv::XMLIChannel*(bool throwOnError)>;

void ExpectToFail(const Factory& create, const UniString& message)
{
    EXPECT_EQ(create(false), nullptr);
    try
    {
        Channel(create(true));
        ADD_FAILURE() << "nothing was thrown";
    }
    catch (const XMLIChannelException& exception)
    {
        EXPECT_EQ(exception.GetMessage(), message);
        EXPECT_STREQ(exception.GetName(), "XMLIChannelException");
        EXPECT_STREQ(exception.GetFileName(), "NuvXMLInterface");
        EXPECT_GT(exception.GetLineNumber(), 0u);
        EXPECT_EQ(exception.GetID(), -36);
        EXPECT_EQ(exception.GetCause(), nullptr);
    }
}

constexpr char16_t ReaderFailed[] = u"NuvXML DOMReaderException";

TEST(CreateXMLIChannel, ReadsAFile)
{
    const NuvTest::ScratchFolder scratch;
    const IO::Location file(scratch.Write("a b%41\u00FC.xml", "<r><v>text</v></r>"));
    for (const bool throwOnError : {false, true})
    {
        const Channel channel(CreateXMLIChannel(file, throwOnError));
        EXPECT_EQ(ValueOf(channel, "v"), UniString(u"text"));
        IO::Location location;
        EXPECT_TRUE(channel->GetLocation(location));
        EXPECT_EQ(location, file);
    }
}

TEST(CreateXMLIChannel, MakesADOMReader)
{
    const NuvTest::ScratchFolder scratch;
    const Channel channel(CreateXMLIChannel(IO::Location(scratch.Write("a.xml", "<r/>")), false));
    EXPECT_NE(dynamic_cast<DOMReader*>(channel.get()), nullptr);
}

TEST(CreateXMLIChannel, KeepsNeitherFileNorLocation)
{
    const NuvTest::ScratchFolder scratch;
    auto location = std::make_unique<IO::Location>(scratch.Write("a.xml", "<r><v>text</v></r>"));
    const Channel channel(CreateXMLIChannel(*location, false));
    location.reset();
    scratch.Write("a.xml", "overwritten");
    EXPECT_EQ(ValueOf(channel, "v"), UniString(u"text"));
}

TEST(CreateXMLIChannel, FailsForAFileThatIsMissingOrMalformed)
{
    const NuvTest::ScratchFolder scratch;
    const IO::Location missing(scratch.PathOf("missing.xml"));
    ExpectToFail([&](bool flag) { return CreateXMLIChannel(missing, flag); }, ReaderFailed);
    const IO::Location malformed(scratch.Write("a.xml", "<r>"));
    ExpectToFail([&](bool flag) { return CreateXMLIChannel(malformed, flag); }, ReaderFailed);
}

TEST(CreateXMLIChannel, FailsWithAnExceptionOfBothDirectionsBase)
{
    EXPECT_THROW(CreateXMLIChannel(IO::Location(u"/missing/a.xml"), true), XMLIOChannelException);
    EXPECT_THROW(CreateXMLIChannel(IO::Location(u"/missing/a.xml"), true), Nuv::RunTimeErrorException);
}

TEST(CreateXMLIChannelFromMemory, ReadsBytes)
{
    for (const bool throwOnError : {false, true})
    {
        const std::string_view text = "<r><v>\xC3\xBC</v></r> beyond the size";
        const Channel channel(CreateXMLIChannelFromMemory(Bytes(text), 17, throwOnError));
        EXPECT_EQ(ValueOf(channel, "v"), UniString(u"\u00FC"));
    }
}

TEST(CreateXMLIChannelFromMemory, NeedsTheBytesOnlyDuringTheCall)
{
    auto text = std::make_unique<std::string>("<r><v>a text that stays</v></r>");
    const Channel channel = FromMemory(*text);
    text->assign(text->size(), '#');
    text.reset();
    EXPECT_EQ(ValueOf(channel, "v"), UniString(u"a text that stays"));
}

TEST(CreateXMLIChannelFromMemory, FailsForBytesThatAreNoDocument)
{
    ExpectToFail([](bool flag) { return CreateXMLIChannelFromMemory(Bytes("<r>"), 3, flag); }, ReaderFailed);
    ExpectToFail([](bool flag) { return CreateXMLIChannelFromMemory(Bytes(""), 0, flag); }, ReaderFailed);
    ExpectToFail([](bool flag) { return CreateXMLIChannelFromMemory(nullptr, 0, flag); }, ReaderFailed);
}

TEST(CreateXMLIChannelFromMemory, FailsForADocumentThatIsInvalidByItsDTD)
{
    const std::string_view text = "<!DOCTYPE r [<!ELEMENT r EMPTY>]><r>text</r>";
    ExpectToFail(
        [&](bool flag)
        { return CreateXMLIChannelFromMemory(Bytes(text), static_cast<unsigned int>(text.size()), flag); },
        ReaderFailed);
}

TEST(CreateXMLIChannelFromMemory, FailsForWhatItCannotReadOrFindDeclared)
{
    const NuvTest::ScratchFolder scratch;
    const std::string missing = scratch.PathOf("missing").ToUTF8();
    for (const std::string& text :
         {"<!DOCTYPE r SYSTEM '" + missing + "'><r/>",
          "<!DOCTYPE r [<!ELEMENT r ANY><!ENTITY e SYSTEM '" + missing + "'>]><r>&e;</r>",
          std::string("<!DOCTYPE r [<!ENTITY e 'text'>]><r>&e;</r>")})
    {
        SCOPED_TRACE(text);
        ExpectToFail(
            [&](bool flag) {
                return CreateXMLIChannelFromMemory(Bytes(text), static_cast<unsigned int>(text.size()), flag);
            },
            ReaderFailed);
    }
}

TEST(CreateXMLIChannelFromMemory, ReadsText)
{
    const UniString text(u"<r><v>\u00FC\u20AC\U0001F600</v></r>");
    for (const bool throwOnError : {false, true})
    {
        const Channel channel(CreateXMLIChannelFromMemory(text, throwOnError));
        EXPECT_EQ(ValueOf(channel, "v"), UniString(u"\u00FC\u20AC\U0001F600"));
    }
}

TEST(CreateXMLIChannelFromMemory, ReadsTextUpToAZeroCharacter)
{
    const UniString text(std::u16string_view(u"<r><v>text</v></r>\0<<<", 22));
    const Channel channel(CreateXMLIChannelFromMemory(text, false));
    EXPECT_EQ(ValueOf(channel, "v"), UniString(u"text"));
    const UniString early(std::u16string_view(u"<r>\0</r>", 8));
    ExpectToFail([&](bool flag) { return CreateXMLIChannelFromMemory(early, flag); }, ReaderFailed);
}

TEST(CreateXMLIChannelFromMemory, FailsForTextThatIsNoDocument)
{
    ExpectToFail([](bool flag) { return CreateXMLIChannelFromMemory(UniString(), flag); }, ReaderFailed);
    ExpectToFail([](bool flag) { return CreateXMLIChannelFromMemory(UniString(u"text"), flag); },
                 ReaderFailed);
}

TEST(CreateXMLIChannelFromMemory, NamesTheDocument)
{
    IO::Location location;
    EXPECT_TRUE(FromMemory("<r/>")->GetLocation(location));
    EXPECT_EQ(location.ToPath(), UniString(u"DOMReaderCreationFromMemory"));
}

TEST(InputFactories, FailWhileXercesIsDown)
{
    const NuvTest::ScratchFolder scratch;
    const IO::Location file(scratch.Write("a.xml", "<r/>"));
    const NuvTest::XercesDownScope down;
    ExpectToFail([&](bool flag) { return CreateXMLIChannel(file, flag); }, ReaderFailed);
    ExpectToFail([](bool flag) { return CreateXMLIChannelFromMemory(Bytes("<r/>"), 4, flag); }, ReaderFailed);
    ExpectToFail([](bool flag) { return CreateXMLIChannelFromMemory(UniString(u"<r/>"), flag); },
                 ReaderFailed);
}

/// A reader that has messages with lines, and tells when it is deleted.
class ReportingReader : public DOMReader
{
  public:
    explicit ReportingReader(bool* deletedFlag = nullptr, const IO::Location* where = nullptr)
        : DOMReader(static_cast<xercesc_3_0::DOMElement*>(nullptr))
        , deleted(deletedFlag)
        , location(where ? *where : IO::Location())
        , hasLocation(where != nullptr)
    {
    }
    ~ReportingReader() override
    {
        if (deleted)
            *deleted = true;
    }

    void Add(int line, const UniString& text) { told.push_back({line, text}); }

    bool GetLocation(IO::Location& out) override
    {
        EXPECT_FALSE(told.empty()) << "only messages need a location";
        if (hasLocation)
            out = location;
        return hasLocation;
    }
    int GetNumberOfMessage() override { return static_cast<int>(told.size()); }
    void GetMessage(int index, UniString& text, int& line) override
    {
        text = told[static_cast<size_t>(index)].second;
        line = told[static_cast<size_t>(index)].first;
    }

  private:
    bool* deleted;
    IO::Location location;
    bool hasLocation;
    Nuv::Array<std::pair<int, UniString>> told;
};

TEST(DisposeXMLIChannel, DeletesTheChannel)
{
    bool deleted = false;
    DisposeXMLIChannel(new ReportingReader(&deleted));
    EXPECT_TRUE(deleted);
}

TEST(DisposeXMLIChannel, IgnoresNull) { DisposeXMLIChannel(nullptr); }

TEST(XMLIChannelGuard, DoesNothingWithoutAChannel)
{
    Messages messages{UniString(u"there before")};
    Nuv::XMLIChannel* channel = nullptr;
    {
        const XMLIChannelGuard plain(&channel);
        const XMLIChannelGuard harvesting(&channel, &messages);
        const XMLIChannelGuard withoutPointer(nullptr);
        const XMLIChannelGuard harvestingWithoutPointer(nullptr, &messages);
    }
    EXPECT_EQ(channel, nullptr);
    EXPECT_EQ(messages, Messages{UniString(u"there before")});
}

TEST(XMLIChannelGuard, DeletesTheChannelAndSetsThePointerToNull)
{
    bool deleted = false;
    auto* reader = new ReportingReader(&deleted);
    reader->Add(1, u"nobody asks for this");
    Nuv::XMLIChannel* channel = reader;
    {
        const XMLIChannelGuard guard(&channel);
        EXPECT_FALSE(deleted);
    }
    EXPECT_TRUE(deleted);
    EXPECT_EQ(channel, nullptr);
}

TEST(XMLIChannelGuard, AppendsTheMessagesWithLocationAndLine)
{
    bool deleted = false;
    const IO::Location location(u"/folder/a b%41\u20AC.xml");
    auto* reader = new ReportingReader(&deleted, &location);
    reader->Add(12, u"first %s \u20AC");
    reader->Add(-7, u"");
    Nuv::XMLIChannel* channel = reader;
    Messages messages{UniString(u"there before")};
    {
        const XMLIChannelGuard guard(&channel, &messages);
    }
    EXPECT_EQ(messages, (Messages{UniString(u"there before"),
                                  UniString(u"/folder/a b%41\u20AC.xml (12):  first %s \u20AC\n"),
                                  UniString(u"/folder/a b%41\u20AC.xml (-7):  \n")}));
    EXPECT_TRUE(deleted);
    EXPECT_EQ(channel, nullptr);
}

TEST(XMLIChannelGuard, AppendsTheMessagesOfAChannelWithoutALocation)
{
    auto* reader = new ReportingReader;
    reader->Add(12, u"text");
    Nuv::XMLIChannel* channel = reader;
    Messages messages;
    {
        const XMLIChannelGuard guard(&channel, &messages);
    }
    EXPECT_EQ(messages, Messages{UniString(u" (12):  text\n")});
}

TEST(XMLIChannelGuard, AppendsNothingForAChannelWithoutMessages)
{
    const IO::Location file(UniString(u"/a.xml"));
    Nuv::XMLIChannel* channel = new ReportingReader(nullptr, &file);
    Messages messages;
    {
        const XMLIChannelGuard guard(&channel, &messages);
    }
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(channel, nullptr);
}

TEST(XMLIChannelGuard, HarvestsWhatAReaderCouldNotFind)
{
    const NuvTest::ScratchFolder scratch;
    const IO::Location file(scratch.Write("a.xml", "<r/>"));
    Messages messages;
    Nuv::XMLIChannel* channel = CreateXMLIChannel(file, true);
    {
        const XMLIChannelGuard guard(&channel, &messages);
        int value = 0;
        EXPECT_EQ(channel->ReadXML("v", value), -7003);
    }
    EXPECT_EQ(messages, Messages{file.ToPath() + u" (0):  Start element for v tag not found\n"});
}

TEST(XMLIChannelGuard, EndsTheChannelThatIsThereInTheEnd)
{
    bool firstDeleted = false;
    bool secondDeleted = false;
    ReportingReader first(&firstDeleted);
    Nuv::XMLIChannel* channel = &first;
    {
        const XMLIChannelGuard guard(&channel);
        channel = new ReportingReader(&secondDeleted);
    }
    EXPECT_FALSE(firstDeleted);
    EXPECT_TRUE(secondDeleted);
}

TEST(XMLIChannelGuard, CanBeAssigned)
{
    bool deleted = false;
    Nuv::XMLIChannel* none = nullptr;
    auto* reader = new ReportingReader(&deleted);
    reader->Add(1, u"text");
    Nuv::XMLIChannel* channel = reader;
    Messages messages;
    {
        XMLIChannelGuard target(&none);
        const XMLIChannelGuard source(&channel, &messages);
        target = source;
    }
    EXPECT_TRUE(deleted);
    EXPECT_EQ(messages.size(), 1u);
}

} // namespace
