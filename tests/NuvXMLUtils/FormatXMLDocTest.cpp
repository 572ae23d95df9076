#include "NuvXMLUtils/FormatXMLDoc.hpp"

#include "tests/NuvXMLUtils/PrinterSupport.hpp"

#include <xercesc/util/TranscodingException.hpp>

#include <bit>
#include <future>
#include <stdexcept>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace xercesc_3_0;

/// The root element of a new document, with one text child.
std::string PrintText(const char16_t* text)
{
    const Document document = NewDocument();
    document->getDocumentElement()->appendChild(document->createTextNode(text));
    return PrintBody(*document->getDocumentElement());
}

std::string PrintValue(const char16_t* value)
{
    const Document document = NewDocument();
    document->getDocumentElement()->setAttribute(u"a", value);
    return PrintBody(*document->getDocumentElement());
}

// Nodes.

TEST(FormatXMLDoc, WritesEachChildOfADocumentOnALineOfItsOwn)
{
    const Document document = Parse("<!--c--><?p d?><r/><!--e-->");
    EXPECT_EQ(Print(*document), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<!--c-->\n<?p d?>\n<r/>\n<!--e-->\n");
}

TEST(FormatXMLDoc, WritesOnlyADeclarationForAnEmptyDocument)
{
    const Document document(DOMImplementation::getImplementation()->createDocument());
    EXPECT_EQ(PrintBody(*document), "");
}

TEST(FormatXMLDoc, WritesAnElementWithoutChildrenAsAnEmptyTag)
{
    EXPECT_EQ(PrintBody(*NewDocument()->getDocumentElement()), "<r/>");
}

TEST(FormatXMLDoc, WritesElementsInsideElementsWithoutIndentation)
{
    const Document document = Parse("<r><a x='1' y='2'><b/>t</a><c></c></r>");
    EXPECT_EQ(PrintBody(*document->getDocumentElement()), "<r><a x=\"1\" y=\"2\"><b/>t</a><c/></r>");
}

TEST(FormatXMLDoc, WritesAnEndTagWhereTheOnlyChildIsAnEmptyText) { EXPECT_EQ(PrintText(u""), "<r></r>"); }

TEST(FormatXMLDoc, WritesOnlyTheNodeAndNotItsSiblings)
{
    const Document document = Parse("<r><a><b/></a><c/></r>");
    EXPECT_EQ(PrintBody(*document->getDocumentElement()->getFirstChild()), "<a><b/></a>");
}

TEST(FormatXMLDoc, WritesAttributesInTheOrderOfTheirMap)
{
    const Document document = Parse("<r c='3' a='1' b='2'/>");
    const DOMNamedNodeMap& map = *document->getDocumentElement()->getAttributes();
    std::string expected = "<r";
    for (XMLSize_t i = 0; i < map.getLength(); ++i)
    {
        const Nuv::UniString name(map.item(i)->getNodeName());
        expected.append(" ")
            .append(name.ToUTF8())
            .append("=\"")
            .append(Nuv::UniString(map.item(i)->getNodeValue()).ToUTF8())
            .append("\"");
    }
    EXPECT_EQ(PrintBody(*document->getDocumentElement()), expected + "/>");
}

TEST(FormatXMLDoc, WritesTextAndEntityReferencesOfAnAttribute)
{
    const Document document = NewDocument();
    DOMAttr* const attribute = document->createAttribute(u"a");
    attribute->appendChild(document->createTextNode(u"<1>"));
    attribute->appendChild(document->createEntityReference(u"e"));
    attribute->appendChild(document->createTextNode(u"2"));
    document->getDocumentElement()->setAttributeNode(attribute);
    EXPECT_EQ(PrintBody(*document->getDocumentElement()), "<r a=\"&lt;1>&e;2\"/>");
}

TEST(FormatXMLDoc, WritesAnAttributeWithoutChildrenAsAnEmptyValue)
{
    EXPECT_EQ(PrintValue(u""), "<r a=\"\"/>");
}

TEST(FormatXMLDoc, WritesSectionsCommentsAndInstructionsWithoutEscapes)
{
    const Document document = NewDocument();
    DOMElement& root = *document->getDocumentElement();
    root.appendChild(document->createCDATASection(u"<&>\"']]"));
    root.appendChild(document->createComment(u"<&>\"'"));
    root.appendChild(document->createProcessingInstruction(u"p", u"<&>\"'"));
    EXPECT_EQ(PrintBody(root), "<r><![CDATA[<&>\"']]]]><!--<&>\"'--><?p <&>\"'?></r>");
}

TEST(FormatXMLDoc, WritesNoBlankInAnInstructionWithoutData)
{
    const Document document = NewDocument();
    EXPECT_EQ(PrintBody(*document->createProcessingInstruction(u"p", u"")), "<?p?>");
    EXPECT_EQ(PrintBody(*document->createProcessingInstruction(u"p", nullptr)), "<?p?>");
}

TEST(FormatXMLDoc, WritesTheNameOfAnEntityReferenceAndNotItsContents)
{
    const Document document = Parse("<!DOCTYPE r [<!ENTITY e '<x>1</x>'>]><r>a&e;b</r>");
    EXPECT_EQ(PrintBody(*document->getDocumentElement()), "<r>a&e;b</r>");
}

TEST(FormatXMLDoc, WritesAnEntityWithItsPartsRunTogether)
{
    const Document document = Parse("<!DOCTYPE r [<!NOTATION n SYSTEM 'ns'>"
                                    "<!ENTITY i 'text'><!ENTITY s SYSTEM 'sys'>"
                                    "<!ENTITY p PUBLIC 'pub' 'sys'><!ENTITY u SYSTEM 'sys' NDATA n>]><r/>");
    const DOMNamedNodeMap& entities = *document->getDoctype()->getEntities();
    EXPECT_EQ(PrintBody(*entities.getNamedItem(u"i")), "<!ENTITY i>\n");
    EXPECT_EQ(PrintBody(*entities.getNamedItem(u"s")), "<!ENTITY sSYSTEM \"sys\">\n");
    EXPECT_EQ(PrintBody(*entities.getNamedItem(u"p")), "<!ENTITY pPUBLIC \"pub\"SYSTEM \"sys\">\n");
    EXPECT_EQ(PrintBody(*entities.getNamedItem(u"u")), "<!ENTITY uSYSTEM \"sys\"NDATA \"n\">\n");
}

TEST(FormatXMLDoc, WritesADocumentTypeWithTheIdentifiersThatItHas)
{
    const auto print = [](const char16_t* publicId, const char16_t* systemId)
    {
        DOMImplementation& implementation = *DOMImplementation::getImplementation();
        DOMDocumentType* const type = implementation.createDocumentType(u"r", publicId, systemId);
        const Document document(implementation.createDocument(nullptr, u"r", type));
        return PrintBody(*type);
    };
    EXPECT_EQ(print(nullptr, nullptr), "<!DOCTYPE r>");
    EXPECT_EQ(print(u"", u""), "<!DOCTYPE r>");
    EXPECT_EQ(print(nullptr, u"s"), "<!DOCTYPE r SYSTEM \"s\">");
    EXPECT_EQ(print(u"p", nullptr), "<!DOCTYPE r PUBLIC \"p\">");
    EXPECT_EQ(print(u"p", u"s"), "<!DOCTYPE r PUBLIC \"p\" \"s\">");
}

TEST(FormatXMLDoc, WritesTheInternalSubset)
{
    const Document document = Parse("<!DOCTYPE r [<!ENTITY e \"v\"><!ATTLIST r a CDATA #IMPLIED>]><r/>");
    EXPECT_EQ(PrintBody(*document), "<!DOCTYPE r[<!ENTITY e \"v\"><!ATTLIST r a CDATA #IMPLIED>]>\n<r/>\n");
}

TEST(FormatXMLDoc, WritesNothingForAttributesFragmentsAndNotations)
{
    const Document document = Parse("<!DOCTYPE r [<!NOTATION n SYSTEM 'ns'>]><r a='1'/>");
    DOMDocumentFragment* const fragment = document->createDocumentFragment();
    fragment->appendChild(document->createTextNode(u"t"));
    EXPECT_EQ(PrintBody(*document->getDocumentElement()->getAttributeNode(u"a")), "");
    EXPECT_EQ(PrintBody(*fragment), "");
    EXPECT_EQ(PrintBody(*document->getDoctype()->getNotations()->getNamedItem(u"n")), "");
}

TEST(FormatXMLDoc, PrintsADocumentNestedVeryDeeply)
{
    constexpr size_t Depth = 100'000;
    std::string expected;
    for (size_t i = 1; i < Depth; ++i)
        expected += "<e>";
    expected += "<e/>";
    for (size_t i = 1; i < Depth; ++i)
        expected += "</e>";
    EXPECT_TRUE(PrintBody(*Parse(expected)) == expected + "\n");
}

// Escapes.

TEST(FormatXMLDoc, EscapesAmpersandAndLessThanInText)
{
    EXPECT_EQ(PrintText(u"a&b<c>d\"e'f\ng\th"), "<r>a&amp;b&lt;c>d\"e'f\ng\th</r>");
}

TEST(FormatXMLDoc, EscapesGreaterThanInTextOnlyAtTheEndOfASectionEnd)
{
    EXPECT_EQ(PrintText(u"a]]>b"), "<r>a]]&gt;b</r>");
    EXPECT_EQ(PrintText(u"a]>b> ]]x> ]>]]]>"), "<r>a]>b> ]]x> ]>]]]&gt;</r>");
}

TEST(FormatXMLDoc, RecognisesASectionEndThatTwoTextsShare)
{
    const auto print = [](std::vector<const char16_t*> texts)
    {
        const Document document = NewDocument();
        for (const char16_t* const text : texts)
            document->getDocumentElement()->appendChild(document->createTextNode(text));
        return PrintBody(*document->getDocumentElement());
    };
    EXPECT_EQ(print({u"]]", u">"}), "<r>]]&gt;</r>");
    EXPECT_EQ(print({u"]", u"]>"}), "<r>]]&gt;</r>");
    EXPECT_EQ(print({u"]", u"]", u"", u">"}), "<r>]]&gt;</r>");
    EXPECT_EQ(print({u"]", u"x]>"}), "<r>]x]></r>");
}

TEST(FormatXMLDoc, DoesNotTakeMarkupBetweenTwoTextsForASectionEnd)
{
    const Document document = NewDocument();
    DOMElement& root = *document->getDocumentElement();
    root.appendChild(document->createTextNode(u"]]"));
    root.appendChild(document->createElement(u"e"));
    root.appendChild(document->createTextNode(u">]]"));
    root.appendChild(document->createComment(u""));
    root.appendChild(document->createTextNode(u">"));
    EXPECT_EQ(PrintBody(root), "<r>]]<e/>>]]<!---->></r>");
}

TEST(FormatXMLDoc, DoesNotTakeTheEndOfAnAttributeForTheStartOfASectionEnd)
{
    const Document document = NewDocument();
    DOMElement& root = *document->getDocumentElement();
    root.setAttribute(u"a", u"]]");
    root.appendChild(document->createTextNode(u">"));
    EXPECT_EQ(PrintBody(root), "<r a=\"]]\">></r>");
}

TEST(FormatXMLDoc, EscapesBothQuotesButNotGreaterThanInAttributes)
{
    EXPECT_EQ(PrintValue(u"a&b<c>d\"e'f]]>g\nh\ti"), "<r a=\"a&amp;b&lt;c>d&quot;e&apos;f]]>g\nh\ti\"/>");
}

// What does not come back.

/// A document whose root has the one child that `make` makes.
template <class Make>
Document DocumentWith(Make make)
{
    Document document = NewDocument();
    document->getDocumentElement()->appendChild(make(*document));
    return document;
}

/// The root element after it was printed and parsed, printed once more.
std::string ReadBack(const DOMDocument& document, const char16_t* encoding = u"UTF-8")
{
    return PrintBody(*Parse(Print(document, encoding))->getDocumentElement());
}

TEST(FormatXMLDoc, WritesASectionACommentAndAnInstructionThatEndEarly)
{
    const Document section =
        DocumentWith([](DOMDocument& document) { return document.createCDATASection(u"a]]>b"); });
    EXPECT_EQ(PrintBody(*section->getDocumentElement()), "<r><![CDATA[a]]>b]]></r>");
    EXPECT_THROW(ReadBack(*section), std::runtime_error);
    const Document comment =
        DocumentWith([](DOMDocument& document) { return document.createComment(u"a--b"); });
    EXPECT_EQ(PrintBody(*comment->getDocumentElement()), "<r><!--a--b--></r>");
    EXPECT_THROW(ReadBack(*comment), std::runtime_error);
    const Document instruction = DocumentWith(
        [](DOMDocument& document) { return document.createProcessingInstruction(u"p", u"a?>b"); });
    EXPECT_EQ(ReadBack(*instruction), "<r><?p a?>b?></r>");
    EXPECT_FALSE(Parse(Print(*instruction))->isEqualNode(instruction.get())) << "the end is text now";
}

TEST(FormatXMLDoc, WritesReferencesThatAreTextInSectionsAndComments)
{
    const Document section =
        DocumentWith([](DOMDocument& document) { return document.createCDATASection(u"\u20AC"); });
    EXPECT_EQ(ReadBack(*section, u"US-ASCII"), "<r><![CDATA[&#x20AC;]]></r>");
    const Document comment =
        DocumentWith([](DOMDocument& document) { return document.createComment(u"\u20AC"); });
    EXPECT_EQ(ReadBack(*comment, u"US-ASCII"), "<r><!--&#x20AC;--></r>");
}

TEST(FormatXMLDoc, WritesTheInternalSubsetAsXercesKeepsIt)
{
    const Document commented = Parse("<!DOCTYPE r [<!--c-->]><r/>");
    EXPECT_EQ(PrintBody(*commented), "<!DOCTYPE r[<!-- c -->]>\n<r/>\n");
    const Document quoted = Parse("<!DOCTYPE r [<!ENTITY e 'a\"b'>]><r/>");
    EXPECT_EQ(PrintBody(*quoted), "<!DOCTYPE r[<!ENTITY e \"a\"b\">]>\n<r/>\n");
    EXPECT_THROW(ReadBack(*quoted), std::runtime_error);
}

TEST(FormatXMLDoc, WritesWhiteSpaceThatParsersNormalise)
{
    const Document document =
        DocumentWith([](DOMDocument& owner) { return owner.createTextNode(u"\r\n \r"); });
    document->getDocumentElement()->setAttribute(u"a", u"1\t2\n3\r4");
    EXPECT_EQ(PrintBody(*document->getDocumentElement()), "<r a=\"1\t2\n3\r4\">\r\n \r</r>");
    EXPECT_EQ(ReadBack(*document), "<r a=\"1 2 3 4\">\n \n</r>");
}

TEST(FormatXMLDoc, WritesNeighbouringTextsThatBecomeOne)
{
    const Document document = DocumentWith([](DOMDocument& owner) { return owner.createTextNode(u"a"); });
    document->getDocumentElement()->appendChild(document->createTextNode(u""));
    document->getDocumentElement()->appendChild(document->createTextNode(u"b"));
    const Document parsed = Parse(Print(*document));
    EXPECT_EQ(Nuv::UniString(parsed->getDocumentElement()->getFirstChild()->getNodeValue()), u"ab");
}

// Choosing the encoding.

std::string Declaration(const DOMNode& node, const char16_t* encoding, bool preferGivenEncoding)
{
    Nuv::MemoryOChannel channel;
    EXPECT_TRUE(FormatXMLDoc(&node, &channel, encoding, preferGivenEncoding));
    return channel.GetBytes().substr(0, channel.GetBytes().find("?>"));
}

TEST(FormatXMLDoc, PrefersTheEncodingOfTheDocument)
{
    const Document document = Parse("<?xml version='1.0' encoding='UTF-8'?><r/>");
    EXPECT_EQ(Declaration(*document, u"ISO-8859-1", false),
              "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"");
    EXPECT_EQ(Declaration(*document->getDocumentElement(), u"ISO-8859-1", false),
              "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"");
}

TEST(FormatXMLDoc, PrefersTheGivenEncodingWhenAsked)
{
    const Document document = Parse("<?xml version='1.0' encoding='UTF-8'?><r/>");
    EXPECT_EQ(Declaration(*document, u"ISO-8859-1", true), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"");
    EXPECT_EQ(Declaration(*document, nullptr, true), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"");
}

TEST(FormatXMLDoc, TakesTheGivenEncodingWhereTheDocumentDeclaresNone)
{
    const Document document = NewDocument();
    EXPECT_EQ(Declaration(*document, u"US-ASCII", false), "<?xml version=\"1.0\" encoding=\"US-ASCII\"");
    EXPECT_EQ(Declaration(*document, nullptr, false), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"");
    EXPECT_EQ(Declaration(*document, nullptr, true), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"");
}

TEST(FormatXMLDoc, TakesTheGivenEncodingForANodeWithoutADocument)
{
    const NuvXML::XercesPtr<DOMDocumentType> type(
        DOMImplementation::getImplementation()->createDocumentType(u"r", nullptr, nullptr));
    ASSERT_EQ(type->getOwnerDocument(), nullptr);
    EXPECT_EQ(Declaration(*type, u"US-ASCII", false), "<?xml version=\"1.0\" encoding=\"US-ASCII\"");
    EXPECT_EQ(PrintBody(*type), "<!DOCTYPE r>");
}

TEST(FormatXMLDoc, NeverWritesAStandalonePart)
{
    EXPECT_EQ(Print(*Parse("<?xml version='1.0' encoding='US-ASCII' standalone='yes'?><r/>"), u"US-ASCII"),
              "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n<r/>\n");
}

TEST(FormatXMLDoc, KnowsBothNamesOfUTF8InAnyCase)
{
    const Document document = NewDocument();
    EXPECT_EQ(Declaration(*document, u"utf-8", true), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"");
    EXPECT_EQ(Declaration(*document, u"Utf8", true), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF8\"");
}

constexpr std::u16string_view UTF16Text = u"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<r/>";

std::string InNativeByteOrder(std::u16string_view units)
{
    return std::endian::native == std::endian::little ? LittleEndian(units) : BigEndian(units);
}

TEST(FormatXMLDoc, WritesPlainUTF16LittleEndian)
{
    const Document document = NewDocument();
    for (const char16_t* const name : {u"UTF-16", u"UCS2", u"IBM1200", u"IBM-1200", u"utf-16", u"ibm1200"})
        EXPECT_EQ(Print(*document->getDocumentElement(), name), LittleEndian(UTF16Text));
}

TEST(FormatXMLDoc, WritesUTF16InTheByteOrderOfItsName)
{
    const Document document = NewDocument();
    for (const char16_t* const name : {u"UTF-16LE", u"UTF-16 (LE)", u"utf-16le"})
        EXPECT_EQ(Print(*document->getDocumentElement(), name), LittleEndian(UTF16Text));
    for (const char16_t* const name : {u"UTF-16BE", u"UTF-16 (BE)", u"utf-16 (be)"})
        EXPECT_EQ(Print(*document->getDocumentElement(), name), BigEndian(UTF16Text));
}

TEST(FormatXMLDoc, WritesNoMarkForOtherNamesOfUTF16)
{
    const Document document = NewDocument();
    for (const std::u16string name : {u"UTF16", u"UCS-2", u"ISO-10646-UCS-2"})
    {
        const std::u16string text = u"<?xml version=\"1.0\" encoding=\"" + name + u"\"?>\n<r/>";
        EXPECT_EQ(Print(*document->getDocumentElement(), name.c_str()), InNativeByteOrder(text));
    }
}

TEST(FormatXMLDocUC, WritesUTF16LittleEndianWhateverTheDocumentDeclares)
{
    const Document document = Parse("<?xml version='1.0' encoding='US-ASCII'?><r/>");
    Nuv::MemoryOChannel channel;
    EXPECT_TRUE(FormatXMLDocUC(document->getDocumentElement(), &channel));
    EXPECT_EQ(channel.GetBytes(), LittleEndian(UTF16Text));
}

// Failures.

/// Fails at one write and tells how often it was called.
class FailingChannel : public Nuv::OChannel
{
  public:
    explicit FailingChannel(size_t failingWrite)
        : failAt(failingWrite)
    {
    }

    int Write(const void*, size_t count) override
    {
        bytes += count;
        return ++writes == failAt ? -1 : 0;
    }

    size_t failAt;
    size_t writes = 0;
    size_t bytes = 0;
};

TEST(FormatXMLDoc, WritesNothingWithoutAChannelOrANode)
{
    const Document document = NewDocument();
    Nuv::MemoryOChannel channel;
    EXPECT_FALSE(FormatXMLDoc(document.get(), nullptr, nullptr, false));
    EXPECT_FALSE(FormatXMLDocUC(document.get(), nullptr));
    EXPECT_FALSE(FormatXMLDoc(nullptr, &channel, nullptr, false));
    EXPECT_EQ(channel.GetBytes(), "");
}

TEST(FormatXMLDoc, WritesNothingInAnUnknownEncoding)
{
    const Document document = NewDocument();
    for (const char16_t* const name : {u"no-such-encoding", u"", u"\u20AC"})
    {
        Nuv::MemoryOChannel channel;
        EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, name, true));
        EXPECT_EQ(channel.GetBytes(), "");
    }
}

TEST(FormatXMLDoc, RefusesStatefulEncodings)
{
    const Document document = NewDocument();
    for (const char16_t* const name :
         {u"ISO-2022-JP", u"ISO-2022-KR", u"ISO-2022-CN", u"HZ-GB-2312", u"SCSU", u"BOCU-1", u"UTF-7",
          u"IMAP-mailbox-name", u"ISCII,version=0", u"LMBCS-1", u"ibm-930", u"x11-compound-text"})
    {
        Nuv::MemoryOChannel channel;
        EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, name, true)) << Nuv::UniString(name);
        EXPECT_EQ(channel.GetBytes(), "") << Nuv::UniString(name);
    }
}

TEST(FormatXMLDoc, RefusesEncodingsThatLackCharactersOfMarkup)
{
    const Document document = NewDocument();
    for (const char16_t* const name : {u"ibm-803", u"ibm-420", u"ibm-4899"})
    {
        Nuv::MemoryOChannel channel;
        EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, name, true)) << Nuv::UniString(name);
        EXPECT_EQ(channel.GetBytes(), "") << Nuv::UniString(name);
    }
}

TEST(FormatXMLDoc, StopsWritingAtTheFirstErrorOfTheChannel)
{
    const std::string text(300'000, 'x');
    const Document document = Parse("<r><a>" + text + "</a><b>" + text + "</b></r>");
    FailingChannel healthy(0);
    ASSERT_TRUE(FormatXMLDoc(document.get(), &healthy, nullptr, false));
    ASSERT_GT(healthy.writes, 5u);
    for (size_t failing = 1; failing <= healthy.writes; ++failing)
    {
        FailingChannel channel(failing);
        EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, nullptr, false));
        EXPECT_EQ(channel.writes, failing);
    }
}

TEST(FormatXMLDoc, LetsExceptionsOfTheChannelThrough)
{
    class ThrowingChannel : public Nuv::OChannel
    {
        int Write(const void*, size_t) override { throw std::runtime_error("full"); }
    } channel;
    const Document document = NewDocument();
    EXPECT_THROW(FormatXMLDoc(document.get(), &channel, nullptr, false), std::runtime_error);
}

TEST(FormatXMLDoc, ReportsExceptionsOfXercesAsFailure)
{
    class DOMFailure : public Nuv::OChannel
    {
        int Write(const void*, size_t) override { throw DOMException(DOMException::INVALID_STATE_ERR, 0); }
    } domFailure;
    class XMLFailure : public Nuv::OChannel
    {
        int Write(const void*, size_t) override
        {
            throw TranscodingException(__FILE__, __LINE__, XMLExcepts::Trans_BadSrcSeq);
        }
    } xmlFailure;
    const Document document = NewDocument();
    EXPECT_FALSE(FormatXMLDoc(document.get(), &domFailure, nullptr, false));
    EXPECT_FALSE(FormatXMLDoc(document.get(), &xmlFailure, nullptr, false));
}

// Threads.

TEST(FormatXMLDoc, PrintsOnSeveralThreadsAtOnce)
{
    const auto print = []
    {
        std::string bytes;
        for (unsigned seed = 0; seed < 20; ++seed)
            for (const char16_t* const encoding : {u"UTF-8", u"UTF-16LE", u"KOI8-R", u"Shift_JIS"})
                bytes += Print(*DocumentGenerator(seed).Make(), encoding);
        return bytes;
    };
    std::vector<std::future<std::string>> threads;
    for (int i = 0; i < 4; ++i)
        threads.push_back(std::async(std::launch::async, print));
    const std::string expected = print();
    for (std::future<std::string>& thread : threads)
        EXPECT_TRUE(thread.get() == expected);
}

} // namespace
