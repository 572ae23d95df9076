#include "NuvXMLUtils/SAXWriters.hpp"

#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/testing/XMLMatchers.hpp"
#include "tests/NuvXMLUtils/ExactCompareOptions.hpp"
#include "tests/NuvXMLUtils/PrinterSupport.hpp"

#include <xercesc/internal/VecAttributesImpl.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/TranscodingException.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace xercesc_3_0;
using Nuv::UniString;
using NuvXML::EqualsXML;
using NuvXML::NuvSAX2Writer;
using NuvXML::SAX2Writer;
using NuvXML::SAXWriter;

/// A formatter to memory, as a caller of the echo writers makes it.
struct Output
{
    explicit Output(const char16_t* encoding = u"UTF-8",
                    XMLFormatter::UnRepFlags lacking = XMLFormatter::UnRep_CharRef,
                    const char16_t* version = u"1.0")
        : target(channel)
        , formatter(encoding, version, &target, XMLFormatter::NoEscapes, lacking)
    {
    }

    /// What was written behind the declaration.
    std::string Body() const
    {
        const std::string& bytes = channel.GetBytes();
        return bytes.substr(bytes.find('\n') + 1);
    }

    Nuv::MemoryOChannel channel;
    NuvXML::OChannelXMLFormatTarget target;
    XMLFormatter formatter;
};

void WriteCharacters(ContentHandler& writer, std::u16string_view text)
{
    writer.characters(text.data(), text.size());
}

// Echo of a parse.

MemBufInputSource SourceOf(std::string_view text)
{
    return MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "source");
}

/// @param reportsDeclarations whether the parser reports namespace declarations as attributes
std::string EchoSAX2(std::string_view text, bool expandNamespaces = false, bool reportsDeclarations = true)
{
    Output output;
    SAX2Writer writer(output.formatter, expandNamespaces);
    const std::unique_ptr<SAX2XMLReader> reader(XMLReaderFactory::createXMLReader());
    reader->setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, reportsDeclarations);
    reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
    reader->setContentHandler(&writer);
    reader->parse(SourceOf(text));
    return output.channel.GetBytes();
}

std::string EchoSAX(std::string_view text)
{
    Output output;
    SAXWriter writer(output.formatter);
    SAXParser parser;
    parser.setDocumentHandler(&writer);
    parser.parse(SourceOf(text));
    return output.channel.GetBytes();
}

constexpr char Sample[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<r a='1&lt;&quot;&amp;>&#9;' b=''><?p d?><?q?>x &lt; y &amp; z ]]&gt;\xC3\xA4<e/>"
                          "<![CDATA[<&>]]><!--c--></r><?end?>";
constexpr char SampleEcho[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<r a=\"1&lt;&quot;&amp;>&#x9;\" b=\"\"><?p d?><?q ?>x &lt; y &amp; z ]]&gt;\xC3\xA4<e></e>"
    "&lt;&amp;&gt;</r><?end ?>";

TEST(SAXWriter, EchoesAParse) { EXPECT_EQ(EchoSAX(Sample), SampleEcho); }

TEST(SAX2Writer, EchoesAParse) { EXPECT_EQ(EchoSAX2(Sample), SampleEcho); }

TEST(SAX2Writer, WritesQualifiedNamesOrExpandedOnes)
{
    constexpr char text[] = "<n:e xmlns:n='urn:x' n:a='1' b='2'><f/></n:e>";
    EXPECT_EQ(EchoSAX2(text, false, false), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                            "<n:e n:a=\"1\" b=\"2\"><f></f></n:e>");
    EXPECT_EQ(EchoSAX2(text, true, false), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                           "<urn:x:e urn:x:a=\"1\" b=\"2\"><f></f></urn:x:e>");
}

TEST(SAX2Writer, TakesAMissingURIForAnEmptyOne)
{
    Output output;
    SAX2Writer writer(output.formatter, true);
    writer.startElement(nullptr, u"e", u"n:e", VecAttributesImpl());
    writer.endElement(u"", u"e", u"n:e");
    EXPECT_EQ(output.Body(), "<e></e>");
}

TEST(SAXWriters, WriteAnInstructionWithoutData)
{
    Output output;
    SAX2Writer writer(output.formatter, false);
    writer.processingInstruction(u"p", nullptr);
    EXPECT_EQ(output.Body(), "<?p?>");
    Output output1;
    SAXWriter writer1(output1.formatter);
    writer1.processingInstruction(u"p", nullptr);
    EXPECT_EQ(output1.Body(), "<?p?>");
}

TEST(SAXWriters, WriteIgnorableWhitespaceWithoutEscapes)
{
    Output output;
    SAX2Writer writer(output.formatter, false);
    writer.ignorableWhitespace(u" \r\n\t", 4);
    EXPECT_EQ(output.Body(), " \r\n\t");
    Output output1;
    SAXWriter writer1(output1.formatter);
    writer1.ignorableWhitespace(u" \r\n\t", 4);
    EXPECT_EQ(output1.Body(), " \r\n\t");
}

TEST(SAXWriters, WriteTheDeclarationWithTheEscapeFlagsOfTheFormatter)
{
    Output output;
    output.formatter << XMLFormatter::AttrEscapes;
    SAX2Writer writer(output.formatter, false);
    EXPECT_EQ(output.channel.GetBytes(),
              "&lt;?xml version=&quot;1.0&quot; encoding=&quot;UTF-8&quot;?>&#xA;");
}

TEST(SAXWriters, LeaveTheFormatterWithoutEscapesAfterMarkup)
{
    Output output;
    SAX2Writer writer(output.formatter, false);
    output.formatter << XMLFormatter::AttrEscapes;
    writer.startElement(u"", u"e", u"e", VecAttributesImpl());
    EXPECT_EQ(output.formatter.getEscapeFlags(), XMLFormatter::NoEscapes);
}

TEST(SAXWriters, WriteEachEventAtOnce)
{
    Output output;
    SAX2Writer writer(output.formatter, false);
    writer.startElement(u"", u"e", u"e", VecAttributesImpl());
    EXPECT_EQ(output.Body(), "<e>");
    output.formatter << u"<!--c-->";
    WriteCharacters(writer, u"t");
    EXPECT_EQ(output.Body(), "<e><!--c-->t");
}

TEST(SAXWriters, GiveTheTargetABlockThatEndsInAZero)
{
    class Target : public XMLFormatTarget
    {
      public:
        void writeChars(const XMLByte* bytes, XMLSize_t, XMLFormatter*) override
        {
            text += reinterpret_cast<const char*>(bytes);
        }
        std::string text;
    } target;
    XMLFormatter formatter(u"UTF-8", &target);
    SAX2Writer writer(formatter, false);
    target.text.clear();
    WriteCharacters(writer, u"a long text");
    WriteCharacters(writer, u"short");
    EXPECT_EQ(target.text, "a long textshort");
}

TEST(SAXWriters, IgnoreTheOtherEvents)
{
    Output output;
    SAX2Writer writer(output.formatter, false);
    writer.startDocument();
    writer.startPrefixMapping(u"p", u"u");
    writer.endPrefixMapping(u"p");
    writer.skippedEntity(u"e");
    writer.setDocumentLocator(nullptr);
    writer.endDocument();
    EXPECT_EQ(output.Body(), "");
}

// Characters that the encoding lacks.

TEST(SAXWriters, LeaveCharactersThatTheEncodingLacksToTheFormatter)
{
    Output references(u"ISO-8859-1");
    SAX2Writer writer(references.formatter, false);
    WriteCharacters(writer, u"\u00E4\u20AC\U0001F600\u0416z");
    EXPECT_EQ(references.Body(), "\xE4&#x20AC;&#x1F600;&#x416;z");

    Output replacing(u"ISO-8859-1", XMLFormatter::UnRep_Replace);
    SAX2Writer replacingWriter(replacing.formatter, false);
    WriteCharacters(replacingWriter, u"\u00E4\u20ACz");
    EXPECT_EQ(replacing.Body(), "\xE4\x1Az");

    Output converted(u"KOI8-R");
    SAX2Writer convertedWriter(converted.formatter, false);
    WriteCharacters(convertedWriter, u"\u0416\u200B\U0001F600z");
    EXPECT_EQ(converted.Body(), "\xF6&#x200B;&#x1F600;z");

    Output windows(u"windows-1252");
    SAX2Writer windowsWriter(windows.formatter, false);
    WriteCharacters(windowsWriter, u"\uFF1Ca\u20AC");
    EXPECT_EQ(windows.Body(), "&#xFF1C;a\x80");

    Output failing(u"ISO-8859-1", XMLFormatter::UnRep_Fail);
    SAX2Writer failingWriter(failing.formatter, false);
    EXPECT_THROW(WriteCharacters(failingWriter, u"\u20AC"), TranscodingException);
}

TEST(SAXWriters, EscapeControlCharactersForXML11)
{
    Output output(u"UTF-8", XMLFormatter::UnRep_CharRef, u"1.1");
    SAX2Writer writer(output.formatter, false);
    WriteCharacters(writer, u"a\u0001b\u0085c\u007Fd\n");
    EXPECT_EQ(output.Body(), "a&#x1;b\xC2\x85"
                             "c&#x7F;d\n");
}

// Surrogates.

TEST(SAXWriters, PutAPairTogetherThatArrivesInTwoEvents)
{
    Output output;
    SAX2Writer writer(output.formatter, false);
    WriteCharacters(writer, u"a\xD83D");
    WriteCharacters(writer, u"\xDE00z");
    WriteCharacters(writer, u"\xD83D");
    WriteCharacters(writer, u"\xDE00");
    WriteCharacters(writer, u"");
    EXPECT_EQ(output.Body(), "a\xF0\x9F\x98\x80z\xF0\x9F\x98\x80");
}

TEST(SAXWriters, WriteHalfAPairAsAReference)
{
    for (const char16_t* const encoding : {u"UTF-8", u"ISO-8859-1", u"KOI8-R"})
    {
        Output output(encoding);
        SAXWriter writer(output.formatter);
        const std::u16string_view text = u"\xDE00<\xD83D<a\xD83D"
                                         u"b\xD83D";
        writer.characters(text.data(), text.size());
        writer.endElement(u"e\xD83D");
        writer.processingInstruction(u"p", u"\xD83D");
        EXPECT_EQ(output.Body(), "&#xDE00;&lt;&#xD83D;&lt;a&#xD83D;b&#xD83D;</e&#xD83D;><?p &#xD83D;?>");
    }
}

TEST(SAXWriters, WriteHalfAPairAsAReferenceWhateverTheFormatterIsTold)
{
    for (const auto lacking : {XMLFormatter::UnRep_Replace, XMLFormatter::UnRep_Fail})
    {
        Output output(u"UTF-8", lacking);
        SAX2Writer writer(output.formatter, false);
        WriteCharacters(writer, u"a\xDE00z");
        EXPECT_EQ(output.Body(), "a&#xDE00;z");
    }
}

TEST(SAXWriters, WriteAWaitingHalfBeforeTheNextEvent)
{
    const auto write = [](auto nextEvent)
    {
        Output output;
        SAX2Writer writer(output.formatter, false);
        WriteCharacters(writer, u"\xD83D");
        nextEvent(writer);
        return output.Body();
    };
    EXPECT_EQ(write([](SAX2Writer& writer) { writer.endDocument(); }), "&#xD83D;");
    EXPECT_EQ(write([](SAX2Writer& writer) { writer.endElement(u"", u"e", u"e"); }), "&#xD83D;</e>");
    EXPECT_EQ(write([](SAX2Writer& writer) { writer.startElement(u"", u"e", u"e", VecAttributesImpl()); }),
              "&#xD83D;<e>");
    EXPECT_EQ(write([](SAX2Writer& writer) { writer.ignorableWhitespace(u" ", 1); }), "&#xD83D; ");
    EXPECT_EQ(write([](SAX2Writer& writer) { writer.processingInstruction(u"p", nullptr); }),
              "&#xD83D;<?p?>");
    EXPECT_EQ(write([](SAX2Writer& writer) { WriteCharacters(writer, u"a"); }), "&#xD83D;a");
}

TEST(SAXWriter, WritesAWaitingHalfAtTheEndOfTheDocument)
{
    Output output;
    SAXWriter writer(output.formatter);
    writer.characters(u"\xD83D", 1);
    EXPECT_EQ(output.Body(), "");
    writer.endDocument();
    EXPECT_EQ(output.Body(), "&#xD83D;");
}

TEST(SAXWriters, ReadNothingBehindTheText)
{
    for (const char16_t* const encoding : {u"UTF-8", u"ISO-8859-1", u"KOI8-R", u"ISO-2022-JP"})
    {
        const std::vector<char16_t> text = {u'a', u'\r', u'<', 0xD7FB};
        Output output(encoding);
        SAX2Writer writer(output.formatter, false);
        writer.characters(text.data(), text.size());
        writer.characters(text.data() + 3, 1);
        const std::string last = encoding == std::u16string_view(u"UTF-8") ? "\xED\x9F\xBB" : "&#xD7FB;";
        EXPECT_EQ(output.Body(), "a&#xD;&lt;" + last + last);
    }
}

TEST(SAXWriters, WriteStatefulEncodings)
{
    Output output(u"ISO-2022-JP");
    SAX2Writer writer(output.formatter, false);
    WriteCharacters(writer, u"a\u65E5\u672C<\U0001F600\u65E5\u200B\uD7A3z\xD83D");
    writer.endElement(u"", u"e", u"e");
    EXPECT_EQ(output.Body(), "a\x1B$BF|K\\\x1B(B&lt;&#x1F600;\x1B$BF|\x1B(B&#x200B;&#xD7A3;z&#xD83D;</e>");
}

TEST(SAXWriters, WriteAReferenceForACharacterOfWhichAConverterKeepsAPart)
{
    Output output(u"UTF-7");
    SAX2Writer writer(output.formatter, false);
    WriteCharacters(writer, u"a\u65E5z");
    EXPECT_EQ(output.Body(), "a&#x65E5;z");
}

TEST(SAXWriters, GoOnAfterAnExceptionWithTheNextEvent)
{
    Output output(u"ISO-8859-1", XMLFormatter::UnRep_Fail);
    SAX2Writer writer(output.formatter, false);
    EXPECT_THROW(writer.processingInstruction(u"p", u"\u20AC"), TranscodingException);
    writer.endElement(u"", u"e", u"e");
    EXPECT_EQ(output.Body(), "<?p </e>");
}

TEST(SAXWriters, WriteHalfAPairAsItIsInUTF16)
{
    Output output(u"UTF-16LE");
    const size_t start = output.channel.GetBytes().size();
    SAX2Writer writer(output.formatter, false);
    const size_t declaration = output.channel.GetBytes().size() - start;
    WriteCharacters(writer, u"\xD83D<\xDE00");
    EXPECT_EQ(output.channel.GetBytes().substr(declaration), LittleEndian(u"\xD83D&lt;\xDE00"));
}

// Against the formatter alone.

TEST(SAXWriters, WriteTheBytesOfTheFormatterForCharactersAndValues)
{
    const std::u16string_view texts[] = {u"",
                                         u"a",
                                         u"0123456789abcdef<&>\"'",
                                         u"\t\n\r ]]>",
                                         u"\u00E4\u20AC\u0416",
                                         u"\U0001F600&\U0001F600",
                                         u"\u007F\u0080\u0085\u009F\u00A0"};
    for (const char16_t* const encoding :
         {u"UTF-8", u"UTF-16LE", u"ISO-8859-1", u"US-ASCII", u"windows-1252"})
        for (const std::u16string_view text : texts)
        {
            Output expected(encoding);
            expected.formatter.formatBuf(text.data(), text.size(), XMLFormatter::CharEscapes);
            expected.formatter << XMLFormatter::NoEscapes << u"<e a=\"" << XMLFormatter::AttrEscapes;
            expected.formatter.formatBuf(text.data(), text.size());
            expected.formatter << XMLFormatter::NoEscapes << u"\">";

            Output actual(encoding);
            SAX2Writer writer(actual.formatter, false);
            const size_t declaration = actual.channel.GetBytes().size();
            NuvSAX2Writer::Attrs attributes;
            attributes.Add(u"a", text);
            WriteCharacters(writer, text);
            writer.startElement(u"", u"e", u"e", attributes);
            EXPECT_EQ(actual.channel.GetBytes().substr(declaration), expected.channel.GetBytes())
                << UniString(encoding) << ": " << UniString(text);
        }
}

TEST(SAXWriters, WriteTextsThatAreLongerThanTheirBuffer)
{
    std::u16string text;
    std::string expected;
    for (size_t i = 0; i < 5000; ++i)
    {
        text += i % 7 == 0 ? u"\U0001F600" : i % 11 == 0 ? u"<" : u"abc";
        expected += i % 7 == 0 ? "\xF0\x9F\x98\x80" : i % 11 == 0 ? "&lt;" : "abc";
    }
    Output output;
    SAX2Writer writer(output.formatter, false);
    WriteCharacters(writer, text);
    EXPECT_TRUE(output.Body() == expected);
}

// Round trips.

/// Elements, attributes and text, which are all that an echo keeps.
void RemoveOtherNodes(DOMNode& node)
{
    for (DOMNode* child = node.getFirstChild(); child;)
    {
        DOMNode* const next = child->getNextSibling();
        const auto type = child->getNodeType();
        if (type == DOMNode::COMMENT_NODE || type == DOMNode::DOCUMENT_TYPE_NODE)
            node.removeChild(child)->release();
        else if (type == DOMNode::CDATA_SECTION_NODE)
            node.replaceChild(node.getOwnerDocument()->createTextNode(child->getNodeValue()), child)
                ->release();
        else
            RemoveOtherNodes(*child);
        child = next;
    }
}

TEST(SAXWriters, EchoTextThatParsesToAnEqualTree)
{
    for (unsigned seed = 0; seed < 300; ++seed)
    {
        const Document document = DocumentGenerator(seed).Make();
        const std::string text = Print(*document);
        RemoveOtherNodes(*document);
        document->normalizeDocument();
        document->normalize();
        EXPECT_THAT(EchoSAX(text), EqualsXML(text, ExactCompareOptions())) << "seed " << seed;
        EXPECT_TRUE(Parse(EchoSAX(text))->isEqualNode(document.get())) << "seed " << seed;
    }
}

TEST(SAXWriters, EchoATypeDatabaseToAnEqualTree)
{
    const std::string text = ReadTypeDatabase();
    const auto parse = [](std::string_view bytes)
    {
        Document document = Parse(bytes);
        RemoveOtherNodes(*document);
        document->normalize();
        return document;
    };
    EXPECT_TRUE(parse(EchoSAX(text))->isEqualNode(parse(text).get()));
    EXPECT_TRUE(parse(EchoSAX2(text))->isEqualNode(parse(text).get()));
}

} // namespace
