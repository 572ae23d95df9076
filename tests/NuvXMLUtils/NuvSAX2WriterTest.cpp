#include "NuvXMLUtils/SAXWriters.hpp"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace xercesc_3_0;
using Nuv::UniString;
using NuvXML::NuvSAX2Writer;

TEST(NuvSAX2Writer, IndentsElementsByTwoBlanks)
{
    Nuv::MemoryOChannel channel;
    NuvSAX2Writer writer(channel);
    writer.StartDocument();
    writer.StartElement(u"a");
    writer.SimpleElement(u"b", u"x");
    writer.EndElement(u"a");
    writer.EndDocument();
    EXPECT_EQ(channel.GetBytes(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n  <b>x</b>\n</a>\n");
}

TEST(NuvSAX2Writer, WritesToABinaryChannelToo)
{
    Nuv::MemoryOBinaryChannel channel;
    NuvSAX2Writer writer(channel);
    writer.SimpleElement(u"b", u"x");
    EXPECT_EQ(channel.GetBytes(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<b>x</b>\n");
}

/// What the calls write behind the declaration.
template <class Calls>
std::string Write(Calls calls)
{
    Nuv::MemoryOChannel channel;
    NuvSAX2Writer writer(channel);
    calls(writer);
    return channel.GetBytes().substr(channel.GetBytes().find('\n') + 1);
}

TEST(NuvSAX2Writer, IndentsNestedElements)
{
    EXPECT_EQ(Write(
                  [](NuvSAX2Writer& writer)
                  {
                      writer.StartElement(u"a");
                      writer.StartElement(u"b");
                      writer.SimpleElement(u"c", u"1");
                      writer.SimpleElement(u"d", u"");
                      writer.EndElement(u"b");
                      writer.StartElement(u"e");
                      writer.EndElement(u"e");
                      writer.EndElement(u"a");
                  }),
              "<a>\n  <b>\n    <c>1</c>\n    <d></d>\n  </b>\n  <e></e>\n</a>\n");
}

TEST(NuvSAX2Writer, EscapesTextAndAttributes)
{
    NuvSAX2Writer::Attrs attributes;
    attributes.Add(u"k", u"a\"b");
    attributes.Add(u"l", u"<&>'\n");
    EXPECT_EQ(
        Write([&](NuvSAX2Writer& writer) { writer.SimpleElement(u"n", attributes, u"1 < 2 & 3 > 2 \"'"); }),
        "<n k=\"a&quot;b\" l=\"&lt;&amp;>'&#xA;\">1 &lt; 2 &amp; 3 &gt; 2 \"'</n>\n");
}

TEST(NuvSAX2Writer, WritesNoIndentationWhenMoreElementsEndThanStarted)
{
    EXPECT_EQ(Write(
                  [](NuvSAX2Writer& writer)
                  {
                      writer.EndElement(u"a");
                      writer.EndElement(u"b");
                      writer.SimpleElement(u"c", u"");
                  }),
              "</a>\n</b>\n<c></c>\n");
}

TEST(NuvSAX2Writer, ForwardsEventsWithoutIndentation)
{
    EXPECT_EQ(Write(
                  [](NuvSAX2Writer& writer)
                  {
                      writer.startElement(u"urn", u"l", u"q", NuvSAX2Writer::Attrs());
                      writer.characters(u"<", 1);
                      writer.ignorableWhitespace(u" ", 1);
                      writer.processingInstruction(u"p", u"d");
                      writer.endElement(u"urn", u"l", u"q");
                      writer.setDocumentLocator(nullptr);
                      writer.startPrefixMapping(u"p", u"u");
                      writer.endPrefixMapping(u"p");
                      writer.skippedEntity(u"e");
                      writer.endDocument();
                  }),
              "<q>&lt; <?p d?></q>");
}

TEST(NuvSAX2Writer, CallsItsOwnVirtualOperations)
{
    class Recorder : public NuvSAX2Writer
    {
      public:
        using NuvSAX2Writer::NuvSAX2Writer;
        void startDocument() override { calls += "startDocument "; }
        void endDocument() override { calls += "endDocument "; }
        void characters(const XMLCh*, XMLSize_t) override { calls += "characters "; }
        void startElement(const XMLCh*, const XMLCh*, const XMLCh*, const Attributes&) override
        {
            calls += "startElement ";
        }
        void endElement(const XMLCh*, const XMLCh*, const XMLCh*) override { calls += "endElement "; }
        std::string calls;
    };
    Nuv::MemoryOChannel channel;
    Recorder writer(channel);
    writer.StartDocument();
    writer.SimpleElement(u"a", u"t");
    writer.EndDocument();
    EXPECT_EQ(writer.calls, "startDocument startElement characters endElement characters endDocument ");
}

TEST(NuvSAX2Writer, DropsOutputAfterAnErrorOfTheChannel)
{
    class FailingChannel : public Nuv::OChannel
    {
      public:
        int Write(const void*, size_t) override
        {
            ++writes;
            return -1;
        }
        int writes = 0;
    } channel;
    NuvSAX2Writer writer(channel);
    writer.SimpleElement(u"a", u"t");
    EXPECT_EQ(channel.writes, 1);
}

// Attrs.

TEST(NuvSAX2WriterAttrs, GiveTheirContentsByPosition)
{
    NuvSAX2Writer::Attrs attributes;
    EXPECT_EQ(attributes.getLength(), 0u);
    for (int i = 0; i < 9; ++i)
        attributes.Add(UniString(u"name") + UniString(std::to_string(i)), UniString(std::to_string(i)));
    ASSERT_EQ(attributes.getLength(), 9u);
    EXPECT_EQ(UniString(attributes.getQName(8)), u"name8");
    EXPECT_EQ(UniString(attributes.getLocalName(8)), u"name8");
    EXPECT_EQ(UniString(attributes.getValue(8)), u"8");
    EXPECT_EQ(UniString(attributes.getType(8)), u"CDATA");
    EXPECT_EQ(UniString(attributes.getURI(8)), u"");
}

TEST(NuvSAX2WriterAttrs, FindNothingByName)
{
    NuvSAX2Writer::Attrs attributes;
    attributes.Add(u"name", u"value");
    const Attributes& list = attributes;
    EXPECT_EQ(list.getIndex(u"name"), -1);
    EXPECT_EQ(list.getIndex(u"", u"name"), -1);
    XMLSize_t index = 0;
    EXPECT_FALSE(list.getIndex(u"name", index));
    EXPECT_EQ(index, ~XMLSize_t(0));
    index = 0;
    EXPECT_FALSE(list.getIndex(u"", u"name", index));
    EXPECT_EQ(index, ~XMLSize_t(0));
    EXPECT_EQ(list.getType(u"name"), nullptr);
    EXPECT_EQ(list.getType(u"", u"name"), nullptr);
    EXPECT_EQ(list.getValue(u"name"), nullptr);
    EXPECT_EQ(list.getValue(u"", u"name"), nullptr);
}

} // namespace
