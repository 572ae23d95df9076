#include "DOMReaderSupport.hpp"

#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/PrivateAccess.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <xercesc/dom/DOM.hpp>

#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace NuvTest
{

using NuvXML::DOMReader;

struct FirstElementChild
{
    using Member = xercesc_3_0::DOMElement* (DOMReader::*)();
    friend Member Reveal(FirstElementChild);
};
template struct Revealed<FirstElementChild, &DOMReader::GetFirstElementChild>;

struct NextElementSibling
{
    using Member = xercesc_3_0::DOMElement* (DOMReader::*)();
    friend Member Reveal(NextElementSibling);
};
template struct Revealed<NextElementSibling, &DOMReader::GetNextElementSibling>;

struct ReadOneToken
{
    using Member = int (DOMReader::*)();
    friend Member Reveal(ReadOneToken);
};
template struct Revealed<ReadOneToken, &DOMReader::ReadToken>;

struct ReadNamedToken
{
    using Member = int (DOMReader::*)(const Nuv::UniString&, Nuv::XMLTokenType);
    friend Member Reveal(ReadNamedToken);
};
template struct Revealed<ReadNamedToken, &DOMReader::ReadTokenWithName>;

struct NextStartTokenName
{
    using Member = Nuv::XMLTokenType (DOMReader::*)(Nuv::UniString&);
    friend Member Reveal(NextStartTokenName);
};
template struct Revealed<NextStartTokenName, &DOMReader::GetNextStartTokenName>;

} // namespace NuvTest

namespace
{

using namespace NuvTest;
using namespace ReaderTests;
using NuvXML::DOMReaderException;
using xercesc_3_0::DOMNode;
using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;

constexpr int NotFound = -7003;
constexpr auto NothingToRead = XMLIChannel::NothingToRead;

static_assert(XMLStartElement == 1 && XMLEndElement == 2 && XMLNoToken == 128);
static_assert(NothingToRead == 3 && XMLIChannel::NoError == 0);
static_assert(std::is_base_of_v<RunTimeErrorException, DOMReaderException>);

Document ParseText(std::string_view text)
{
    return Document(ParseXMLDoc(Bytes(text), static_cast<unsigned int>(text.size()),
                                ValidatingXMLParser::LineInfoParser::Val_Never, true,
                                UniString(u"file:///folder/a.xml"), nullptr, nullptr, nullptr));
}

/// A reader over a document of its own, with its private operations.
class TextReader : public ReaderTests::TextReader
{
  public:
    using ReaderTests::TextReader::TextReader;

    int ReadOne() { return (this->*Reveal(ReadOneToken()))(); }
    int ReadNamed(const UniString& name, XMLTokenType type)
    {
        return (this->*Reveal(ReadNamedToken()))(name, type);
    }
    XMLTokenType NextStart(UniString& name) { return (this->*Reveal(NextStartTokenName()))(name); }
    const DOMNode* FirstChild() { return (this->*Reveal(FirstElementChild()))(); }
    const DOMNode* NextSibling() { return (this->*Reveal(NextElementSibling()))(); }
};

/// All places from where the reader stands to the end of the document.
std::string WalkToTheEnd(DOMReader& reader)
{
    std::string places = PlaceOf(reader);
    while (reader.ReadToken(0) == 0)
        places.append(" ").append(PlaceOf(reader));
    return places;
}

constexpr char16_t EndOfXML[] = u"End of XML reached, token with the specified name was not found";

// Construction.

TEST(DOMReader, StandsOnTheStartOfTheRootElementOfMemory)
{
    TextReader reader("<?xml version='1.0'?><!--c--><r><a/></r>");
    EXPECT_EQ(PlaceOf(reader), "<r");
    EXPECT_EQ(reader.GetErrorStatus(), XMLIChannel::NoError);
    EXPECT_EQ(reader.GetNumberOfMessage(), 0);
}

TEST(DOMReader, StandsOnTheStartOfTheRootElementOfAFile)
{
    const ScratchFolder scratch;
    DOMReader reader(IO::Location(scratch.Write("a.xml", "<r/>")));
    EXPECT_EQ(PlaceOf(reader), "<r");
}

TEST(DOMReader, StandsOnTheStartOfTheCallersElementAndOwnsNothing)
{
    const Document document = ParseText("<r><a><b/></a></r>");
    {
        DOMReader reader(
            static_cast<xercesc_3_0::DOMElement*>(document->getDocumentElement()->getFirstChild()));
        EXPECT_EQ(PlaceOf(reader), "<a");
        EXPECT_EQ(reader.ReadStartElement("b"), 0);
    }
    EXPECT_EQ(UniString(document->getDocumentElement()->getNodeName()), UniString(u"r"));
}

TEST(DOMReader, ThrowsWhenMemoryCannotBeParsed)
{
    try
    {
        TextReader reader("<r>");
        FAIL();
    }
    catch (const DOMReaderException& exception)
    {
        EXPECT_EQ(exception.GetMessage(), UniString(u"Parsing XML from memory failed."));
        EXPECT_STREQ(exception.GetFileName(), "NuvXMLDOMReader");
        EXPECT_GT(exception.GetLineNumber(), 0u);
        EXPECT_EQ(exception.GetID(), -36);
    }
}

TEST(DOMReader, ThrowsWhenAFileCannotBeParsed)
{
    const ScratchFolder scratch;
    for (const char* name : {"missing a%41.xml", "empty.xml"})
    {
        scratch.Write("empty.xml", "");
        try
        {
            DOMReader reader{IO::Location(scratch.PathOf(name))};
            FAIL();
        }
        catch (const DOMReaderException& exception)
        {
            EXPECT_EQ(exception.GetMessage(), UniString(u"Parsing XML file failed: ") + scratch.PathOf(name));
            EXPECT_STREQ(exception.GetFileName(), "NuvXMLDOMReader");
        }
    }
}

TEST(DOMReader, ValidatesWhenThereIsADTD)
{
    const ScratchFolder scratch;
    const std::string_view invalid = "<!DOCTYPE r [<!ELEMENT r EMPTY>]><r>text</r>";
    const std::string_view valid = "<!DOCTYPE r [<!ELEMENT r ANY>]><r>text</r>";
    EXPECT_THROW(TextReader{invalid}, DOMReaderException);
    EXPECT_THROW(DOMReader{IO::Location(scratch.Write("invalid.xml", invalid))}, DOMReaderException);
    EXPECT_THROW(TextReader{"<!DOCTYPE r [<!ENTITY e ''>]><r/>"}, DOMReaderException) << "r is not declared";
    EXPECT_NO_THROW(TextReader{"<!DOCTYPE r><r/>"}) << "which declares nothing";
    EXPECT_NO_THROW(TextReader{valid});
    EXPECT_NO_THROW(DOMReader{IO::Location(scratch.Write("valid.xml", valid))});
}

TEST(DOMReader, ThrowsWhenADTDOrAnEntityCannotBeRead)
{
    const ScratchFolder scratch;
    const std::string missing = scratch.PathOf("missing").ToUTF8();
    for (const std::string& text :
         {"<!DOCTYPE r SYSTEM '" + missing + "'><r/>",
          "<!DOCTYPE r [<!ELEMENT r ANY><!ENTITY e SYSTEM '" + missing + "'>]><r>&e;</r>"})
    {
        EXPECT_THROW(TextReader{text}, DOMReaderException) << text;
        EXPECT_THROW(DOMReader{IO::Location(scratch.Write("a.xml", text))}, DOMReaderException) << text;
    }
}

TEST(DOMReader, ReadsDocumentsWithEntityReferenceNodes)
{
    const ScratchFolder scratch;
    const std::string_view text = "<!DOCTYPE r [<!ELEMENT r ANY><!ENTITY e 'x'>]><r>&e;</r>";
    const auto hasReference = [](DOMReader&& reader)
    { return reader.GetActualNode()->getFirstChild()->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE; };
    EXPECT_TRUE(hasReference(TextReader(text)));
    EXPECT_TRUE(hasReference(DOMReader(IO::Location(scratch.Write("a.xml", text)))));
}

TEST(DOMReader, LeavesPrefixesInNames)
{
    TextReader reader("<p:r><p:a/></p:r>");
    EXPECT_EQ(reader.ReadStartElement("a"), NotFound);
    EXPECT_EQ(reader.ReadStartElement("p:a"), 0);
}

TEST(DOMReader, SharesTheTreeWithItsCopies)
{
    const Document document = ParseText("<r><a/><b/></r>");
    DOMReader reader(document->getDocumentElement());
    ASSERT_EQ(reader.ReadStartElement("a"), 0);
    ASSERT_EQ(reader.ReadEndElement("a"), 0);
    reader.AddMessage(u"message");
    reader.SetChannelPlatform(MacintoshPlatform);
    reader.SetXMLShemaVersion({3, 1, 0});
    DOMReader copy(reader);
    DOMReader assigned(document->getDocumentElement());
    assigned = reader;
    for (DOMReader* each : {&copy, &assigned})
    {
        EXPECT_EQ(each->GetActualNode(), reader.GetActualNode());
        EXPECT_EQ(PlaceOf(*each), ">a");
        EXPECT_EQ(MessagesOf(*each), Array<UniString>{u"message"});
        EXPECT_EQ(each->GetChannelPlatform(), MacintoshPlatform);
        ClassVersion version;
        each->GetXMLShemaVersion(version);
        EXPECT_EQ(version.majorNumber, 3);
        each->ReadStartElement("b");
        each->AddMessage(u"of the copy");
    }
    EXPECT_EQ(PlaceOf(reader), ">a");
    EXPECT_EQ(reader.GetNumberOfMessage(), 1);
}

// A reader that Create made.

std::unique_ptr<DOMReader> MakeEmptyReader()
{
    TextReader reader("<r/>");
    return std::unique_ptr<DOMReader>(reader.Create(UniString(u"ignored"), UniString(u"ignored")));
}

TEST(DOMReaderMadeByCreate, IsEmpty)
{
    const auto reader = MakeEmptyReader();
    EXPECT_EQ(reader->GetActualNode(), nullptr);
    EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NoError);
    EXPECT_EQ(reader->GetNumberOfMessage(), 0);
    EXPECT_EQ(reader->GetChannelPlatform(), UnknownPlatform);
}

TEST(DOMReaderMadeByCreate, TellsNoTokenAndNoLocation)
{
    UniString name(u"untouched");
    IO::Location location(u"untouched");
    const std::pair<const char*, std::function<XMLTokenType(DOMReader&)>> queries[] = {
        {"GetTokenType", [](DOMReader& reader) { return reader.GetTokenType(); }},
        {"GetNextTokenType", [](DOMReader& reader) { return reader.GetNextTokenType(); }},
        {"GetTokenTypeName", [&](DOMReader& reader) { return reader.GetTokenTypeName(name); }},
        {"GetLocation",
         [&](DOMReader& reader) { return reader.GetLocation(location) ? XMLStartElement : XMLNoToken; }},
    };
    for (const auto& [operation, query] : queries)
    {
        const auto reader = MakeEmptyReader();
        EXPECT_EQ(query(*reader), XMLNoToken) << operation;
        EXPECT_EQ(reader->GetErrorStatus(), NothingToRead) << operation;
        EXPECT_EQ(reader->GetNumberOfMessage(), 0) << operation;
    }
    EXPECT_EQ(name, UniString(u"untouched"));
    EXPECT_EQ(location, IO::Location(u"untouched"));
    const auto reader = MakeEmptyReader();
    EXPECT_EQ(reader->GetNextTokenTypeName(name), XMLNoToken);
    EXPECT_EQ(reader->GetErrorStatus(), NothingToRead);
    EXPECT_EQ(name, UniString());
}

TEST(DOMReaderMadeByCreate, FailsToMoveAndSetsTheErrorStatus)
{
    const std::pair<const char*, std::function<int(DOMReader&)>> moves[] = {
        {"ReadEndElement", [](DOMReader& reader) { return reader.ReadEndElement("r"); }},
        {"ReadEndElement of null", [](DOMReader& reader) { return reader.ReadEndElement(nullptr); }},
        {"ReadToken", [](DOMReader& reader) { return reader.ReadToken(0); }},
        {"ReadToken of a mask", [](DOMReader& reader) { return reader.ReadToken(3); }},
        {"the private ReadToken", [](DOMReader& reader) { return (reader.*Reveal(ReadOneToken()))(); }},
        {"ReadTokenWithName", [](DOMReader& reader)
         { return (reader.*Reveal(ReadNamedToken()))(UniString(u"r"), XMLStartElement); }},
    };
    for (const auto& [operation, move] : moves)
    {
        const auto reader = MakeEmptyReader();
        EXPECT_EQ(move(*reader), NotFound) << operation;
        EXPECT_EQ(reader->GetErrorStatus(), NothingToRead) << operation;
        EXPECT_EQ(reader->GetActualNode(), nullptr) << operation;
    }
}

TEST(DOMReaderMadeByCreate, ReturnsTwoFromReadStartElementAndChangesNothing)
{
    const auto reader = MakeEmptyReader();
    EXPECT_EQ(reader->ReadStartElement("r"), 2);
    EXPECT_EQ(reader->ReadStartElement(nullptr), 2);
    EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NoError);
    reader->GetTokenType();
    EXPECT_EQ(reader->ReadStartElement("r"), 2);
    EXPECT_EQ(reader->GetErrorStatus(), NothingToRead);
    EXPECT_EQ(reader->GetNumberOfMessage(), 0);
}

TEST(DOMReaderMadeByCreate, StoresWhatIsOnlyStored)
{
    const auto reader = MakeEmptyReader();
    reader->SetChannelPlatform(WindowsPlatform);
    EXPECT_EQ(reader->GetChannelPlatform(), WindowsPlatform);
    reader->AddMessage(u"message");
    EXPECT_EQ(MessagesOf(*reader), Array<UniString>{u"message"});
    EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NoError);
}

TEST(DOMReaderMadeByCreate, HasItsErrorStatusReset)
{
    const auto reader = MakeEmptyReader();
    reader->GetTokenType();
    reader->ClearErrorStatus();
    EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NoError);
}

// Tokens.

TEST(DOMReader, ReadsTheTokensInTheOrderOfTheDocument)
{
    TextReader reader("<r>t<a><b/><c>t</c></a><!--c--><d/></r>");
    EXPECT_EQ(WalkToTheEnd(reader), "<r <a <b >b <c >c >a <d >d >r >#document");
}

TEST(DOMReader, PassesOverAllThatIsNoElement)
{
    TextReader reader("<!--c--><r>t<![CDATA[c]]><?p q?><!--c--><a/>t<?p q?><b/>t</r><?p q?>");
    EXPECT_EQ(WalkToTheEnd(reader), "<r <a >a <b >b >r >#document");
}

TEST(DOMReader, TurnsTheStartOfAnEmptyElementIntoItsEndWithoutMoving)
{
    TextReader reader("<r/>");
    const DOMNode* root = reader.GetActualNode();
    EXPECT_EQ(reader.ReadToken(0), 0);
    EXPECT_EQ(reader.GetActualNode(), root);
    EXPECT_EQ(reader.GetTokenType(), XMLEndElement);
}

TEST(DOMReader, FailsBehindTheDocumentNodeWithAMessageAndStaysThere)
{
    TextReader reader("<r/>");
    ASSERT_EQ(reader.ReadToken(0), 0);
    ASSERT_EQ(reader.ReadToken(0), 0);
    EXPECT_EQ(PlaceOf(reader), ">#document");
    EXPECT_TRUE(MessagesOf(reader).empty());
    EXPECT_EQ(reader.ReadToken(0), NotFound);
    EXPECT_EQ(PlaceOf(reader), ">#document");
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{EndOfXML});
    EXPECT_EQ(reader.ReadToken(0), NotFound);
    EXPECT_EQ(MessagesOf(reader), (Array<UniString>{EndOfXML, EndOfXML}));
    EXPECT_EQ(reader.GetErrorStatus(), XMLIChannel::NoError);
}

TEST(DOMReader, WorksInEveryOperationOnTheDocumentNode)
{
    TextReader reader("<r a='1'><v>1</v></r>");
    ASSERT_EQ(reader.ReadToken(0) + reader.ReadToken(0) + reader.ReadToken(0) + reader.ReadToken(0), 0);
    ASSERT_EQ(PlaceOf(reader), ">#document");
    UniString text;
    EXPECT_EQ(reader.ReadXMLAttr("a", text), NotFound);
    EXPECT_EQ(reader.ReadXMLCDATAString(text), NotFound);
    EXPECT_EQ(reader.ReadXML("v", text), NotFound);
    EXPECT_EQ(reader.ReadStartElement("r"), NotFound);
    EXPECT_EQ(reader.ReadStartElement(nullptr), NotFound);
    EXPECT_EQ(reader.ReadEndElement("r"), NotFound);
    EXPECT_EQ(reader.GetNextTokenType(), XMLNoToken);
    EXPECT_EQ(reader.FirstChild(), reader.GetActualNode()->getFirstChild());
    EXPECT_EQ(reader.NextSibling(), nullptr);
    IO::Location location;
    EXPECT_TRUE(reader.GetLocation(location));
    EXPECT_EQ(PlaceOf(reader), ">#document");
}

TEST(DOMReader, StopsAtTheRootOfATreeWithoutADocument)
{
    const Document document = ParseText("<r/>");
    xercesc_3_0::DOMElement* detached = document->createElement(u"a");
    DOMReader reader(detached);
    EXPECT_EQ(WalkToTheEnd(reader), "<a >a");
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{EndOfXML});
    IO::Location location(u"untouched");
    EXPECT_FALSE(reader.GetLocation(location));
    EXPECT_EQ(location, IO::Location(u"untouched"));
    EXPECT_EQ(reader.ReadStartElement("a"), NotFound);
    EXPECT_EQ(reader.ReadStartElement(nullptr), NotFound);
    EXPECT_EQ(PlaceOf(reader), ">a");
}

TEST(DOMReader, ReadsOnUntilATokenIsInTheMask)
{
    TextReader reader("<r><a><b/></a><c/></r>");
    EXPECT_EQ(reader.ReadToken(XMLEndElement), 0);
    EXPECT_EQ(PlaceOf(reader), ">b");
    EXPECT_EQ(reader.ReadToken(XMLStartElement), 0);
    EXPECT_EQ(PlaceOf(reader), "<c");
    EXPECT_EQ(reader.ReadToken(XMLStartElement | XMLEndElement), 0);
    EXPECT_EQ(PlaceOf(reader), ">c");
}

TEST(DOMReader, ReadsToTheEndWhenNoTokenIsInTheMask)
{
    TextReader reader("<r><a/></r>");
    EXPECT_EQ(reader.ReadToken(XMLNoToken), NotFound);
    EXPECT_EQ(PlaceOf(reader), ">#document");
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{EndOfXML});
}

TEST(DOMReader, TellsTheNextTokenWithoutMoving)
{
    TextReader reader("<r><a/></r>");
    UniString name;
    EXPECT_EQ(reader.GetNextTokenType(), XMLStartElement);
    EXPECT_EQ(reader.GetNextTokenTypeName(name), XMLStartElement);
    EXPECT_EQ(name, UniString(u"a"));
    EXPECT_EQ(PlaceOf(reader), "<r");
    ASSERT_EQ(reader.ReadToken(0), 0);
    EXPECT_EQ(reader.GetNextTokenType(), XMLEndElement);
    EXPECT_EQ(reader.GetNextTokenTypeName(name), XMLEndElement);
    EXPECT_EQ(name, UniString(u"a"));
    EXPECT_EQ(PlaceOf(reader), "<a");
}

TEST(DOMReader, TellsThatThereIsNoNextToken)
{
    TextReader reader("<r/>");
    reader.ReadToken(XMLNoToken);
    UniString name(u"name");
    EXPECT_EQ(reader.GetNextTokenType(), XMLNoToken);
    EXPECT_EQ(reader.GetNextTokenTypeName(name), XMLNoToken);
    EXPECT_EQ(name, UniString());
    EXPECT_EQ(PlaceOf(reader), ">#document");
    EXPECT_EQ(reader.GetNumberOfMessage(), 3) << "one for each attempt";
}

TEST(DOMReader, TellsTheNextStartTokenWithoutMoving)
{
    TextReader reader("<r><a/><b/></r>");
    UniString name;
    ASSERT_EQ(reader.ReadStartElement("a"), 0);
    EXPECT_EQ(reader.NextStart(name), XMLStartElement);
    EXPECT_EQ(name, UniString(u"b"));
    EXPECT_EQ(PlaceOf(reader), "<a");
    ASSERT_EQ(reader.ReadStartElement("b"), NotFound);
    ASSERT_EQ(reader.ReadEndElement("a"), 0);
    ASSERT_EQ(reader.ReadStartElement("b"), 0);
    EXPECT_EQ(reader.NextStart(name), XMLNoToken);
    EXPECT_EQ(name, UniString());
    EXPECT_EQ(PlaceOf(reader), "<b");
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{EndOfXML});
}

TEST(DOMReader, LooksForElementsAroundItWithoutMoving)
{
    TextReader reader("<r>t<!--c--><a/>t<b/>t</r>");
    const DOMNode* a = reader.FirstChild();
    EXPECT_EQ(UniString(a->getNodeName()), UniString(u"a"));
    EXPECT_EQ(reader.NextSibling(), nullptr);
    EXPECT_EQ(PlaceOf(reader), "<r");
    ASSERT_EQ(reader.ReadStartElement("a"), 0);
    EXPECT_EQ(reader.FirstChild(), nullptr);
    EXPECT_EQ(UniString(reader.NextSibling()->getNodeName()), UniString(u"b"));
    ASSERT_EQ(reader.ReadEndElement("a"), 0);
    ASSERT_EQ(reader.ReadStartElement("b"), 0);
    EXPECT_EQ(reader.NextSibling(), nullptr);
}

// Named tokens.

TEST(DOMReader, FindsANamedTokenWhereItStands)
{
    TextReader reader("<r><r/></r>");
    const DOMNode* root = reader.GetActualNode();
    EXPECT_EQ(reader.ReadNamed(u"r", XMLStartElement), 0);
    EXPECT_EQ(reader.GetActualNode(), root);
    EXPECT_EQ(reader.GetTokenType(), XMLStartElement);
}

TEST(DOMReader, FindsANamedTokenFurtherOn)
{
    TextReader reader("<r><a><b/></a><b/></r>");
    EXPECT_EQ(reader.ReadNamed(u"b", XMLStartElement), 0);
    EXPECT_EQ(PlaceOf(reader), "<b");
    EXPECT_EQ(reader.ReadNamed(u"a", XMLEndElement), 0);
    EXPECT_EQ(PlaceOf(reader), ">a");
    EXPECT_EQ(reader.ReadNamed(u"r", XMLEndElement), 0);
    EXPECT_EQ(PlaceOf(reader), ">r");
    EXPECT_TRUE(MessagesOf(reader).empty());
}

TEST(DOMReader, StaysWhereItIsWhenANamedTokenIsNotFound)
{
    TextReader reader("<r><a/><b/></r>");
    reader.ReadStartElement("b");
    EXPECT_EQ(reader.ReadNamed(u"a", XMLStartElement), NotFound);
    EXPECT_EQ(PlaceOf(reader), "<b");
    EXPECT_EQ(MessagesOf(reader),
              (Array<UniString>{EndOfXML, u"Token with specified name was not found: a"}));
}

/// Its last sibling is followed by the first one.
class CirclingReader : public TextReader
{
  public:
    using TextReader::TextReader;

  private:
    xercesc_3_0::DOMElement* GetNextElementSibling() override
    {
        DOMNode* next = GetActualNode()->getNextSibling();
        DOMNode* first = GetActualNode()->getParentNode()->getFirstChild();
        return static_cast<xercesc_3_0::DOMElement*>(next ? next : first);
    }
};

TEST(DOMReader, EndsTheSearchForANamedTokenWhereItBegan)
{
    CirclingReader reader("<r><a/><b/></r>");
    reader.ReadStartElement("a");
    EXPECT_EQ(reader.ReadNamed(u"x", XMLStartElement), NotFound);
    EXPECT_EQ(PlaceOf(reader), "<a");
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{u"Token with specified name was not found: x"});
}

// What the reader tells and stores.

TEST(DOMReader, TellsTheLocationOfItsDocument)
{
    const Document document = ParseText("<r><a><b/></a></r>");
    DOMReader reader(document->getDocumentElement());
    reader.ReadStartElement("a");
    IO::Location location;
    EXPECT_TRUE(reader.GetLocation(location));
    EXPECT_EQ(location.ToPath(), UniString(u"/folder/a.xml"));
}

TEST(DOMReader, TellsAnEmptyLocationForADocumentWithoutAURI)
{
    const Document document(
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"r", nullptr));
    DOMReader reader(document->getDocumentElement());
    IO::Location location(u"before");
    EXPECT_TRUE(reader.GetLocation(location));
    EXPECT_TRUE(location.IsEmpty());
}

TEST(DOMReader, StoresMajorAndMinorNumberOfTheSchemaVersion)
{
    TextReader reader("<r/>");
    ClassVersion version{1, 2, 3};
    reader.GetXMLShemaVersion(version);
    EXPECT_EQ(version.majorNumber, 0);
    EXPECT_EQ(version.minorNumber, 0);
    EXPECT_EQ(version.buildNumber, 3);
    reader.SetXMLShemaVersion({200, 255, 9});
    reader.GetXMLShemaVersion(version);
    EXPECT_EQ(version.majorNumber, 200);
    EXPECT_EQ(version.minorNumber, 255);
    EXPECT_EQ(version.buildNumber, 3);
}

TEST(DOMReader, StoresThePlatform)
{
    TextReader reader("<r/>");
    EXPECT_EQ(reader.GetChannelPlatform(), UnknownPlatform);
    reader.SetChannelPlatform(MacintoshPlatform);
    EXPECT_EQ(reader.GetChannelPlatform(), MacintoshPlatform);
}

TEST(DOMReader, KeepsMessagesInTheirOrder)
{
    TextReader reader("<r/>");
    reader.AddMessage(u"first");
    reader.AddMessage(UniString());
    reader.AddMessage(u"third");
    EXPECT_EQ(reader.GetNumberOfMessage(), 3);
    EXPECT_EQ(MessagesOf(reader), (Array<UniString>{u"first", u"", u"third"}));
}

TEST(DOMReader, TellsNothingOfAMessageThatIsNotThere)
{
    TextReader reader("<r/>");
    reader.AddMessage(u"message");
    for (const int index : {-1, 1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    {
        UniString text(u"untouched");
        int code = 4711;
        reader.GetMessage(index, text, code);
        EXPECT_EQ(text, UniString(u"untouched")) << index;
        EXPECT_EQ(code, 4711) << index;
    }
}

} // namespace
