// Makes each allocation of each operation of the SAX writers fail in turn.

#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "tests/NuvXMLUtils/AllocationFailureSupport.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/sax/AttributeList.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace
{

using namespace AllocationFailureTests;
using NuvXML::NuvSAX2Writer;
using NuvXML::SAX2Writer;
using NuvXML::SAXWriter;
using xercesc_3_0::XMLFormatter;

/// Takes the bytes without needing memory.
template <class Base>
class FixedChannel : public Base
{
  public:
    int Write(const void* bytes, size_t count) override
    {
        const std::string_view block(static_cast<const char*>(bytes), count);
        block.copy(taken + length, sizeof taken - length);
        length += count;
        return length <= sizeof taken ? 0 : -1;
    }

    std::string_view Taken() const { return std::string_view(taken, length); }

  private:
    char taken[4096];
    size_t length = 0;
};

using Channel = FixedChannel<Nuv::OChannel>;
using BinaryChannel = FixedChannel<Nuv::OBinaryChannel>;

/// What the writers let through: the application's exception, or Xerces' own of its formatter.
template <class Call>
bool Succeeds(Call call)
{
    try
    {
        call();
        return true;
    }
    catch (const Nuv::OutOfMemoryException&)
    {
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
    }
    return false;
}

/// Long enough for a block of its own, with characters to escape and one that ISO-8859-1 lacks.
const UniString LongTextWithSpecials(UniString(LongText(200)) + UniString(u" < \xD83D\xDE00 "));
const UniString LongName(LongText(100));

// Events.

/// Writes through a formatter in ISO-8859-1, made with memory enough.
template <class Writer>
class Echo
{
  public:
    template <class... Arguments>
    explicit Echo(Arguments... arguments)
        : writer(formatter, arguments...)
        , start(channel.Taken().size())
    {
    }

    /// What was written behind the declaration.
    std::string_view Body() const { return channel.Taken().substr(start); }

  private:
    Channel channel;
    NuvXML::OChannelXMLFormatTarget target{channel};
    XMLFormatter formatter{u"ISO-8859-1", &target, XMLFormatter::NoEscapes, XMLFormatter::UnRep_CharRef};

  public:
    Writer writer;

  private:
    size_t start;
};

/// Makes each allocation of the event fail. Expects that then the beginning of its text has been written, and
/// that the next event is written as ever.
template <class Writer, class Event, class... Arguments>
void SweepEvent(Event event, void (*writeNext)(Writer&), Arguments... arguments)
{
    Echo<Writer> healthy(arguments...);
    event(healthy.writer);
    const std::string whole(healthy.Body());
    ASSERT_NE(whole, "");
    const size_t failures = Sweep(
        [&]
        {
            std::unique_ptr<Echo<Writer>> echo;
            {
                const Pause pause;
                echo = std::make_unique<Echo<Writer>>(arguments...);
            }
            const bool isWritten = Succeeds([&] { event(echo->writer); });
            const Pause pause;
            const std::string written(echo->Body());
            EXPECT_TRUE(isWritten ? written == whole : whole.starts_with(written)) << written;
            writeNext(echo->writer);
            EXPECT_EQ(echo->Body(), written + "</next>");
            echo.reset();
        });
    EXPECT_GT(failures, 0u);
}

class AllocationFailureOfSAX2Writer : public testing::TestWithParam<Operation<SAX2Writer>>
{
};

TEST_P(AllocationFailureOfSAX2Writer, LeavesTheBeginningOfTheEvent)
{
    const auto writeNext = [](SAX2Writer& writer) { writer.endElement(u"", u"next", u"next"); };
    for (const bool expandNamespaces : {false, true})
        SweepEvent<SAX2Writer>(GetParam().call, writeNext, expandNamespaces);
}

const Operation<SAX2Writer> Events[] = {
    {"StartElement",
     [](auto& writer)
     {
         static const auto attributes = []
         {
             auto made = std::make_unique<NuvSAX2Writer::Attrs>();
             made->Add(LongName, LongTextWithSpecials);
             return made;
         }();
         writer.startElement(u"urn:x", LongName.ToUTF16(), LongName.ToUTF16(), *attributes);
     }},
    {"EndElement", [](auto& writer) { writer.endElement(u"urn:x", LongName.ToUTF16(), LongName.ToUTF16()); }},
    {"Characters", [](auto& writer)
     { writer.characters(LongTextWithSpecials.ToUTF16(), LongTextWithSpecials.GetLength()); }},
    {"IgnorableWhitespace", [](auto& writer)
     { writer.ignorableWhitespace(LongTextWithSpecials.ToUTF16(), LongTextWithSpecials.GetLength()); }},
    {"ProcessingInstruction",
     [](auto& writer) { writer.processingInstruction(LongName.ToUTF16(), LongTextWithSpecials.ToUTF16()); }},
};

INSTANTIATE_TEST_SUITE_P(Events, AllocationFailureOfSAX2Writer, testing::ValuesIn(Events),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(AllocationFailureOfSAXWriter, LeavesTheBeginningOfTheEvent)
{
    using xercesc_3_0::AttributeList;
    class OneAttribute : public AttributeList
    {
      public:
        XMLSize_t getLength() const override { return 1; }
        const XMLCh* getName(const XMLSize_t) const override { return LongName.ToUTF16(); }
        const XMLCh* getType(const XMLSize_t) const override { return u"CDATA"; }
        const XMLCh* getValue(const XMLSize_t) const override { return LongTextWithSpecials.ToUTF16(); }
        const XMLCh* getType(const XMLCh* const) const override { return nullptr; }
        const XMLCh* getValue(const XMLCh* const) const override { return nullptr; }
        const XMLCh* getValue(const char* const) const override { return nullptr; }
    };
    const auto writeNext = [](SAXWriter& writer) { writer.endElement(u"next"); };
    const UniString& text = LongTextWithSpecials;
    OneAttribute attributes;
    SweepEvent<SAXWriter>([&](SAXWriter& writer) { writer.startElement(LongName.ToUTF16(), attributes); },
                          writeNext);
    SweepEvent<SAXWriter>([](SAXWriter& writer) { writer.endElement(LongName.ToUTF16()); }, writeNext);
    SweepEvent<SAXWriter>([&](SAXWriter& writer) { writer.characters(text.ToUTF16(), text.GetLength()); },
                          writeNext);
    SweepEvent<SAXWriter>(
        [&](SAXWriter& writer) { writer.ignorableWhitespace(text.ToUTF16(), text.GetLength()); }, writeNext);
    SweepEvent<SAXWriter>([&](SAXWriter& writer)
                          { writer.processingInstruction(LongName.ToUTF16(), text.ToUTF16()); },
                          writeNext);
}

// Constructors.

TEST(AllocationFailureOfSAXWriters, LeavesNothingBehindWhenTheyAreMade)
{
    for (const char16_t* const encoding : {u"UTF-8", u"ISO-8859-1", u"KOI8-R"})
    {
        Channel channel;
        NuvXML::OChannelXMLFormatTarget target(channel);
        XMLFormatter formatter(encoding, &target);
        EXPECT_GT(Sweep([&] { Succeeds([&] { SAXWriter writer(formatter); }); }), 0u);
        EXPECT_GT(Sweep([&] { Succeeds([&] { SAX2Writer writer(formatter, true); }); }), 0u);
    }
}

TEST(AllocationFailureOfFormatTargets, DoesNotHappen)
{
    EXPECT_EQ(Sweep(
                  []
                  {
                      Channel channel;
                      BinaryChannel binaryChannel;
                      NuvXML::OChannelXMLFormatTarget target(channel);
                      NuvXML::OBinaryChannelXMLFormatTarget binaryTarget(binaryChannel);
                      const XMLByte bytes[] = {'a', 'b'};
                      target.writeChars(bytes, 2, nullptr);
                      binaryTarget.writeChars(bytes, 2, nullptr);
                      EXPECT_EQ(target.GetErrorCode() + binaryTarget.GetErrorCode(), 0);
                  }),
              0u);
}

// The stream writer.

/// A formatter on a target, which leaves blocks behind when it cannot be made.
template <class Target, class SomeChannel>
void MakeBareFormatter()
{
    SomeChannel channel;
    const std::unique_ptr<xercesc_3_0::XMLFormatTarget> target(
        new (xercesc_3_0::XMLPlatformUtils::fgMemoryManager) Target(channel));
    const XMLFormatter formatter(xercesc_3_0::XMLUni::fgUTF8EncodingString, target.get());
}

template <class SomeChannel>
void WriteDocument(SomeChannel& channel)
{
    NuvSAX2Writer writer(channel);
    writer.StartDocument();
    writer.StartElement(LongName);
    writer.SimpleElement(u"short", LongTextWithSpecials);
    writer.ignorableWhitespace(u"\n", 1);
    writer.EndElement(LongName);
    writer.EndDocument();
}

/// Expects that what has been written is the beginning of the document.
template <class Target, class SomeChannel>
void SweepDocument()
{
    SomeChannel healthy;
    WriteDocument(healthy);
    SweepBeside(Bare(MakeBareFormatter<Target, SomeChannel>),
                [&]
                {
                    SomeChannel channel;
                    const bool isWritten = Succeeds([&] { WriteDocument(channel); });
                    const Pause pause;
                    EXPECT_TRUE(isWritten ? channel.Taken() == healthy.Taken()
                                          : healthy.Taken().starts_with(channel.Taken()));
                });
}

TEST(AllocationFailureOfNuvSAX2Writer, LeavesTheBeginningOfTheDocument)
{
    SweepDocument<NuvXML::OChannelXMLFormatTarget, Channel>();
    SweepDocument<NuvXML::OBinaryChannelXMLFormatTarget, BinaryChannel>();
}

TEST(AllocationFailureOfNuvSAX2Writer, LeavesAttributesAsTheyWere)
{
    // Five of them do not find room in the list as it is made.
    SweepBeside(Bare([] { const xercesc_3_0::XMLAttr attribute(0, LongName.ToUTF16(), u"", u"value"); }),
                []
                {
                    std::unique_ptr<NuvSAX2Writer::Attrs> attributes;
                    {
                        const Pause pause;
                        attributes = std::make_unique<NuvSAX2Writer::Attrs>();
                        for (int i = 0; i < 4; ++i)
                            attributes->Add(u"name", u"value");
                    }
                    const bool isAdded = Succeeds([&] { attributes->Add(LongName, u"value"); });
                    const Pause pause;
                    EXPECT_EQ(attributes->getLength(), isAdded ? 5u : 4u);
                    attributes.reset();
                });
    EXPECT_GT(Sweep([] { Succeeds([] { NuvSAX2Writer::Attrs attributes; }); }), 0u);
}

} // namespace
