#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMDocumentFragment.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMLSException.hpp>
#include <xercesc/dom/DOMUserDataHandler.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace
{

using namespace NuvXML;
using Nuv::Failure;
using Nuv::UniString;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMException;
using xercesc_3_0::DOMLSException;
using xercesc_3_0::DOMNode;

constexpr char Declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>";

/// A document as Export gives it, without the declaration.
std::string TextOf(DOMBuilder& builder)
{
    const std::string text = builder.Export().ToUTF8();
    const size_t length = sizeof Declaration - 1;
    EXPECT_EQ(text.substr(0, length), Declaration);
    return text.substr(length);
}

XercesPtr<DOMDocument> NewDocument()
{
    return XercesPtr<DOMDocument>(xercesc_3_0::DOMImplementation::getImplementation()->createDocument());
}

DOMNode* CursorOf(DOMBuilder& builder) { return builder.GetActualNode(); }

/// The code of the DOM's exception that `call` throws, 0 when it throws none.
template <class Call>
int CodeOfDOMException(Call call)
{
    try
    {
        call();
    }
    catch (const DOMException& exception)
    {
        return exception.code;
    }
    return 0;
}

/// What a builder without XML text in it writes to the end: `r` with one value.
void WriteRoot(DOMBuilder& builder, int value)
{
    builder.WriteStartElement("r");
    builder.WriteXML("v", value);
    builder.WriteEndElement();
    builder.WriteEndDocument();
}

std::string RootAsBytes(int value)
{
    return std::string(Declaration) + "\n<r>\n\t<v>" + std::to_string(value) + "</v>\n</r>\n";
}

/// Texts that XML cannot hold.
const UniString UnwritableTexts[] = {
    UniString(u"\u0001"),       UniString(u"a\u001Fb"), UniString(u"a\xD800"),
    UniString(u"\xD800z"),      UniString(u"\xDC00z"),  UniString(u"\xDC00\xD800"),
    UniString(u"\xD83D\xD83D"), UniString(u"a\uFFFE"),  UniString(u"\uFFFF")};

// Constructors.

TEST(DOMBuilder, BeginsWithAnEmptyDocumentOfItsOwn)
{
    DOMBuilder builder;
    ASSERT_NE(builder.GetDOMDocument(), nullptr);
    EXPECT_EQ(builder.GetDOMDocument()->getFirstChild(), nullptr);
    EXPECT_EQ(builder.GetActualNode(), nullptr);
    EXPECT_TRUE(builder.GetReplaceCR());
    EXPECT_EQ(builder.GetNumberOfMessage(), 0);
    EXPECT_EQ(TextOf(builder), "");
}

TEST(DOMBuilder, IsNamedAfterAScratchFileByDefaultAndWritesNone)
{
    IO::Location folder;
    ASSERT_EQ(IO::FileSystem::GetSpecialLocation(IO::FileSystem::TemporaryFolder, folder), 0);
    IO::Location location;
    {
        DOMBuilder builder;
        ASSERT_TRUE(builder.GetLocation(location));
        WriteRoot(builder, 1);
    }
    const std::filesystem::path path(location.ToNativePath());
    EXPECT_EQ(path.parent_path(), std::filesystem::path(folder.ToNativePath()));
    EXPECT_EQ(path.filename().string().substr(0, 8), "Scratch_");
    EXPECT_EQ(path.extension(), ".xml");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(DOMBuilder, OfALocationBeginsWithAnEmptyDocumentToo)
{
    const NuvTest::ScratchFolder folder;
    DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
    EXPECT_EQ(builder.GetDOMDocument()->getFirstChild(), nullptr);
    EXPECT_EQ(builder.GetActualNode(), nullptr);
    EXPECT_TRUE(builder.GetReplaceCR());
    IO::Location location;
    EXPECT_TRUE(builder.GetLocation(location));
    EXPECT_EQ(location.ToPath(), folder.PathOf("a.xml"));
    WriteRoot(builder, 1);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, GoesOnWithTheDocumentOfTheCallerAndLeavesIt)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    DOMElement* root = document->createElement(u"r");
    document->appendChild(root);
    {
        DOMBuilder builder(document.get(), root, DOMBuilder::LeaveDocumentToCaller, 3);
        EXPECT_EQ(builder.GetDOMDocument(), document.get());
        EXPECT_EQ(builder.GetActualNode(), root);
        EXPECT_TRUE(builder.GetReplaceCR());
        EXPECT_EQ(builder.WriteXML("v", 1), 0);
        EXPECT_EQ(builder.WriteEndElement(), 0);
        EXPECT_EQ(TextOf(builder), "<r>\n\t\t\t<v>1</v>\n\t\t</r>");
    }
    EXPECT_EQ(UniString(root->getTextContent()), UniString(u"\n\t\t\t1\n\t\t"))
        << "the document is still there";
}

TEST(DOMBuilder, BeginsTheRootElementInTheDocumentOfTheCaller)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    DOMBuilder builder(document.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(builder.GetActualNode(), nullptr);
    WriteRoot(builder, 1);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, HasNoLocationOverTheDocumentOfTheCaller)
{
    const NuvTest::ScratchFolder folder;
    const XercesPtr<DOMDocument> document = NewDocument();
    document->setDocumentURI(IO::Location(folder.PathOf("a.xml")).ToURL().ToUTF16());
    for (const int ownership : {0, 2})
    {
        DOMBuilder builder(document.get(), nullptr, static_cast<DOMBuilder::OwnershipType>(ownership), 0);
        IO::Location location(u"/before");
        EXPECT_FALSE(builder.GetLocation(location));
        EXPECT_TRUE(location.IsEmpty());
    }
    EXPECT_FALSE(folder.Has("a.xml")) << "only a document that is taken over is written";
}

TEST(DOMBuilder, WritesADocumentThatItTakesOverToItsURI)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.PathOf("a b%41é.xml");
    XercesPtr<DOMDocument> document = NewDocument();
    document->setDocumentURI(IO::Location(path).ToURL().ToUTF16());
    {
        DOMBuilder builder(document.release(), nullptr, DOMBuilder::TakeDocumentOver, 0);
        IO::Location location;
        EXPECT_TRUE(builder.GetLocation(location));
        EXPECT_EQ(location.ToPath(), path);
        WriteRoot(builder, 1);
    }
    EXPECT_EQ(folder.Read("a b%41é.xml"), RootAsBytes(1));
}

/// Counts the documents that it is attached to and that are released.
class ReleaseCounter : public xercesc_3_0::DOMUserDataHandler
{
  public:
    void AttachTo(DOMDocument& document) { document.setUserData(u"counter", this, this); }

    void handle(DOMOperationType operation, const XMLCh*, void*, const DOMNode*, DOMNode*) override
    {
        if (operation == NODE_DELETED)
            ++released;
    }

    int released = 0;
};

TEST(DOMBuilder, ReleasesItsOwnDocument)
{
    const NuvTest::ScratchFolder folder;
    ReleaseCounter counter;
    {
        DOMBuilder builder;
        counter.AttachTo(*builder.GetDOMDocument());
        DOMBuilder withFile{IO::Location(folder.PathOf("a.xml"))};
        counter.AttachTo(*withFile.GetDOMDocument());
    }
    EXPECT_EQ(counter.released, 2);
}

TEST(DOMBuilder, ReleasesADocumentThatItTakesOverAndWritesNoneWithoutAURI)
{
    ReleaseCounter counter;
    {
        DOMBuilder builder(NewDocument().release(), nullptr, DOMBuilder::TakeDocumentOver, 0);
        counter.AttachTo(*builder.GetDOMDocument());
        IO::Location location;
        EXPECT_FALSE(builder.GetLocation(location));
        WriteRoot(builder, 1);
    }
    EXPECT_EQ(counter.released, 1);
}

TEST(DOMBuilder, ReleasesNoDocumentThatItDoesNotTakeOver)
{
    for (const int ownership : {0, 2, -1})
    {
        const XercesPtr<DOMDocument> document = NewDocument();
        ReleaseCounter counter;
        counter.AttachTo(*document);
        {
            const DOMBuilder builder(document.get(), nullptr,
                                     static_cast<DOMBuilder::OwnershipType>(ownership), 0);
        }
        EXPECT_EQ(counter.released, 0);
        document->setUserData(u"counter", nullptr, nullptr);
    }
}

TEST(DOMBuilder, SetsTheFieldsOfTheChannel)
{
    struct Fields : DOMBuilder
    {
        using DOMBuilder::DOMBuilder;
        int Mode() const { return channelMode; }
        int Precision() const { return channelPrecision; }
    };
    const XercesPtr<DOMDocument> document = NewDocument();
    const Fields builder;
    const Fields over(document.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(builder.Mode(), 0);
    EXPECT_EQ(builder.Precision(), 15);
    EXPECT_EQ(over.Mode(), 0);
    EXPECT_EQ(over.Precision(), 15);
}

TEST(DOMBuilder, CreatesAnotherBuilderAndIgnoresTheArguments)
{
    const NuvTest::ScratchFolder folder;
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        const std::unique_ptr<DOMBuilder> created(
            builder.Create(folder.PathOf("b.xml"), UniString(u"UTF-16")));
        EXPECT_NE(created->GetDOMDocument(), builder.GetDOMDocument());
        IO::Location location;
        EXPECT_TRUE(created->GetLocation(location));
        EXPECT_NE(location.ToPath(), folder.PathOf("b.xml"));
        WriteRoot(*created, 2);
        EXPECT_EQ(Declaration + TextOf(*created), RootAsBytes(2));
        WriteRoot(builder, 1);
    }
    EXPECT_FALSE(folder.Has("b.xml"));
}

// Structure and layout.

TEST(DOMBuilder, LaysOutNestedElementsWithTabs)
{
    DOMBuilder builder;
    EXPECT_EQ(builder.WriteStartDocument(), 0);
    EXPECT_EQ(builder.WriteStartElement("r"), 0);
    EXPECT_EQ(builder.WriteStartElement("c"), 0);
    EXPECT_EQ(builder.WriteXML("v", 1), 0);
    EXPECT_EQ(builder.WriteEndElement(), 0);
    EXPECT_EQ(builder.WriteEndElement(), 0);
    EXPECT_EQ(builder.WriteEndDocument(), 0);
    EXPECT_EQ(TextOf(builder), "\n"
                               "<r>\n"
                               "\t<c>\n"
                               "\t\t<v>1</v>\n"
                               "\t</c>\n"
                               "</r>\n");
}

TEST(DOMBuilder, MakesOneNodeForEachPieceOfLayout)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteStartElement("c");
    builder.WriteXML("v", 1);
    builder.WriteEndElement();
    builder.WriteEndElement();
    builder.WriteEndDocument();
    const auto valuesOf = [](const DOMNode& parent)
    {
        std::vector<UniString> values;
        for (DOMNode* node = parent.getFirstChild(); node; node = node->getNextSibling())
            values.emplace_back(node->getNodeType() == DOMNode::TEXT_NODE ? node->getNodeValue()
                                                                          : node->getNodeName());
        return values;
    };
    using Values = std::vector<UniString>;
    DOMElement* r = builder.GetDOMDocument()->getDocumentElement();
    DOMElement* c = r->getFirstElementChild();
    EXPECT_EQ(valuesOf(*builder.GetDOMDocument()), (Values{u"\n", u"r", u"\n"}));
    EXPECT_EQ(valuesOf(*r), (Values{u"\n\t", u"c", u"\n"}));
    EXPECT_EQ(valuesOf(*c), (Values{u"\n\t\t", u"v", u"\n\t"}));
    EXPECT_EQ(valuesOf(*c->getFirstElementChild()), Values{u"1"});
}

TEST(DOMBuilder, LaysOutEveryKindOfChild)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteXMLAttr("a", 1);
    builder.WriteStartElement("empty");
    builder.WriteXMLAttr("b", UniString(u"<\"&'>"));
    builder.WriteEndElement();
    builder.WriteXML("v", UniString());
    EXPECT_EQ(builder.WriteXMLTextNode(UniString(u"<text>")), 0);
    EXPECT_EQ(builder.WriteXMLCDATAString(UniString(u"<cdata>")), 0);
    builder.WriteStartElement("c");
    builder.WriteXMLTextNode(UniString(u"text"));
    builder.WriteEndElement();
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n"
                               "<r a=\"1\">\n"
                               "\t<empty b=\"&lt;&quot;&amp;'>\"/>\n"
                               "\t<v/>\n"
                               "\t&lt;text&gt;\n"
                               "\t<![CDATA[<cdata>]]>\n"
                               "\t<c>\n"
                               "\t\ttext\n"
                               "\t</c>\n"
                               "</r>");
}

TEST(DOMBuilder, MakesNoWhiteSpaceWithoutAutomaticTabs)
{
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    builder.WriteStartElement("c");
    builder.WriteXML("v", 1);
    builder.WriteXMLTextNode(UniString(u"t"));
    builder.WriteXMLCDATAString(UniString(u"d"));
    builder.WriteEndElement();
    builder.WriteEndElement();
    builder.WriteEndDocument();
    EXPECT_EQ(TextOf(builder), "<r><c><v>1</v>t<![CDATA[d]]></c></r>");
}

TEST(DOMBuilder, SwitchesAutomaticTabsForTheNodesToCome)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteXML("a", 1);
    builder.SetAutoTabsHint(false);
    builder.WriteXML("b", 2);
    builder.SetAutoTabsHint(true);
    builder.WriteXML("c", 3);
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<a>1</a><b>2</b>\n\t<c>3</c>\n</r>");
}

TEST(DOMBuilder, PutsNoWhiteSpaceIntoAnEmptyElement)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n<r/>");
    EXPECT_FALSE(builder.GetDOMDocument()->getDocumentElement()->hasChildNodes());
}

TEST(DOMBuilder, EndsAnElementOnALineOfItsOwnAfterAnEmptyChild)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteStartElement("a");
    builder.WriteStartElement("b");
    builder.WriteEndElement();
    builder.WriteEndElement();
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<a>\n\t\t<b/>\n\t</a>\n</r>");
}

TEST(DOMBuilder, EndsAnElementThatTheCallerOpenedWithoutWhiteSpaceWhenNothingWasAdded)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    DOMElement* root = document->createElement(u"r");
    document->appendChild(root);
    DOMBuilder builder(document.get(), root, DOMBuilder::LeaveDocumentToCaller, 1);
    EXPECT_EQ(builder.WriteEndElement(), 0);
    EXPECT_EQ(TextOf(builder), "<r/>");
}

TEST(DOMBuilder, IndentsDeepLevelsByAsManyTabs)
{
    DOMBuilder builder;
    constexpr size_t Levels = 150;
    std::string expected = "\n";
    for (size_t level = 0; level < Levels; ++level)
    {
        builder.WriteStartElement("e");
        expected.append("<e>\n").append(level + 1, '\t');
    }
    builder.WriteXML("v", 1);
    expected += "<v>1</v>";
    for (size_t level = Levels; level > 0; --level)
    {
        builder.WriteEndElement();
        expected.append("\n").append(level - 1, '\t').append("</e>");
    }
    EXPECT_EQ(TextOf(builder), expected);
}

TEST(DOMBuilder, TakesADepthBelowZeroForNone)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    DOMElement* root = document->createElement(u"r");
    document->appendChild(root);
    for (const int tabs : {-1, -5})
    {
        DOMBuilder builder(document.get(), root, DOMBuilder::LeaveDocumentToCaller, tabs);
        builder.WriteXML("v", tabs);
    }
    EXPECT_EQ(UniString(root->getTextContent()), UniString(u"\n-1\n-5"));
}

TEST(DOMBuilder, StaysAtDepthZeroWhenAnElementEndsThere)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    DOMElement* root = document->createElement(u"r");
    DOMElement* child = document->createElement(u"c");
    document->appendChild(root);
    root->appendChild(child);
    DOMBuilder builder(document.get(), child, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(builder.WriteEndElement(), 0);
    EXPECT_EQ(builder.WriteXML("v", 1), 0);
    EXPECT_EQ(builder.WriteStartElement("d"), 0);
    EXPECT_EQ(builder.WriteXML("w", 2), 0);
    EXPECT_EQ(TextOf(builder), "<r><c/>\n<v>1</v>\n<d>\n\t<w>2</w></d></r>");
}

TEST(DOMBuilder, StandsOnTheOpenElementAndOnTheDocumentInTheEnd)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    DOMElement* root = builder.GetDOMDocument()->getDocumentElement();
    EXPECT_EQ(builder.GetActualNode(), root);
    builder.WriteStartElement("c");
    EXPECT_EQ(builder.GetActualNode(), root->getFirstElementChild());
    builder.WriteXML("v", 1);
    EXPECT_EQ(builder.GetActualNode(), root->getFirstElementChild());
    builder.WriteEndElement();
    EXPECT_EQ(builder.GetActualNode(), root);
    builder.WriteEndElement();
    EXPECT_EQ(CursorOf(builder), static_cast<DOMNode*>(builder.GetDOMDocument()));
}

TEST(DOMBuilder, RefusesElementsAfterTheRootElement)
{
    DOMBuilder builder;
    WriteRoot(builder, 1);
    EXPECT_EQ(builder.WriteStartElement("s"), Failure);
    EXPECT_EQ(builder.WriteEndElement(), Failure);
    EXPECT_EQ(builder.WriteStartElement("a name that is none"), Failure);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, TakesNothingButWhiteSpaceAfterTheRootElement)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteEndElement();
    EXPECT_EQ(builder.WriteXMLTextNode(UniString(u" \t")), 0);
    EXPECT_EQ(CodeOfDOMException([&] { builder.WriteXMLTextNode(UniString(u"text")); }),
              DOMException::HIERARCHY_REQUEST_ERR);
    EXPECT_EQ(CodeOfDOMException([&] { builder.WriteXMLCDATAString(UniString(u"text")); }),
              DOMException::HIERARCHY_REQUEST_ERR);
    EXPECT_EQ(CodeOfDOMException([&] { builder.WriteXML("v", 1); }), DOMException::HIERARCHY_REQUEST_ERR);
    EXPECT_EQ(builder.GetDOMDocument()->getDocumentElement()->hasChildNodes(), false);
}

TEST(DOMBuilder, RefusesWhatNeedsAnElementBeforeTheRootElement)
{
    DOMBuilder builder;
    EXPECT_EQ(builder.WriteEndElement(), Failure);
    EXPECT_EQ(builder.WriteXMLTextNode(UniString(u"text")), Failure);
    EXPECT_EQ(builder.WriteXMLCDATAString(UniString(u"text")), Failure);
    EXPECT_EQ(TextOf(builder), "");
    WriteRoot(builder, 1);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, LetsTheExceptionOfASecondRootElementThrough)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    document->appendChild(document->createElement(u"r"));
    DOMBuilder builder(document.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(CodeOfDOMException([&] { builder.WriteStartElement("s"); }),
              DOMException::HIERARCHY_REQUEST_ERR);
    EXPECT_EQ(builder.GetActualNode(), nullptr);
    EXPECT_EQ(TextOf(builder), "<r/>");
}

TEST(DOMBuilder, LetsTheExceptionOfANameThroughAndChangesNothing)
{
    DOMBuilder builder;
    EXPECT_EQ(CodeOfDOMException([&] { builder.WriteStartElement("a b"); }),
              DOMException::INVALID_CHARACTER_ERR);
    EXPECT_EQ(CodeOfDOMException([&] { builder.WriteStartElement(nullptr); }),
              DOMException::INVALID_CHARACTER_ERR);
    builder.WriteStartElement("r");
    EXPECT_EQ(CodeOfDOMException([&] { builder.WriteStartElement("1"); }),
              DOMException::INVALID_CHARACTER_ERR);
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n<r/>");
}

TEST(DOMBuilder, BuildsInADocumentFragmentToo)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    xercesc_3_0::DOMDocumentFragment* fragment = document->createDocumentFragment();
    DOMElement* first = document->createElement(u"first");
    fragment->appendChild(first);
    DOMBuilder builder(document.get(), first, DOMBuilder::LeaveDocumentToCaller, 1);
    EXPECT_EQ(builder.WriteEndElement(), 0);
    EXPECT_EQ(CursorOf(builder), fragment);
    EXPECT_EQ(builder.WriteXMLAttr("a", 1), Failure);
    EXPECT_EQ(builder.WriteStartElement("second"), 0);
    EXPECT_EQ(builder.WriteXMLAttr("a", 1), 0);
    EXPECT_EQ(UniString(fragment->getLastChild()->getNodeName()), UniString(u"second"));
}

TEST(DOMBuilder, TakesElementNamesInTheLocalCodePage)
{
    const NuvTest::LocalCodePageScope codePage("windows-1252");
    DOMBuilder builder;
    builder.WriteStartElement("Stra\xDF"
                              "e");
    EXPECT_EQ(builder.Export(), UniString(Declaration) + UniString(u"\n<Straße/>"));
}

// Text and CDATA sections.

TEST(DOMBuilder, MakesATextNodeOfAnyText)
{
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    EXPECT_EQ(builder.WriteXMLTextNode(UniString(u"a\r\nb]]>")), 0);
    EXPECT_EQ(builder.WriteXMLTextNode(UniString()), 0);
    DOMNode* text = builder.GetActualNode()->getFirstChild();
    EXPECT_EQ(text->getNodeType(), DOMNode::TEXT_NODE);
    EXPECT_EQ(UniString(text->getNodeValue()), UniString(u"a\r\nb]]>"));
    EXPECT_EQ(TextOf(builder), "<r>a&#xD;\nb]]&gt;</r>");
}

TEST(DOMBuilder, MakesACDATASection)
{
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    EXPECT_EQ(builder.WriteXMLCDATAString(UniString(u"<a>&]]")), 0);
    EXPECT_EQ(builder.WriteXMLCDATAString(UniString()), 0);
    EXPECT_EQ(builder.GetActualNode()->getFirstChild()->getNodeType(), DOMNode::CDATA_SECTION_NODE);
    EXPECT_EQ(TextOf(builder), "<r><![CDATA[<a>&]]]]><![CDATA[]]></r>");
}

TEST(DOMBuilder, DividesTextThatHoldsTheEndOfACDATASection)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    EXPECT_EQ(builder.WriteXMLCDATAString(UniString(u"]]>a]]>]]>")), 0);
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<![CDATA[]]]]><![CDATA[>a]]]]><![CDATA[>]]]]><![CDATA[>]]>\n</r>");
}

TEST(DOMBuilder, EndsTextAtAZeroCharacter)
{
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    builder.WriteXMLTextNode(UniString(u"ab\0c", 4));
    builder.WriteXMLCDATAString(UniString(u"ab\0]]>", 6));
    const char padded[8] = "pad";
    builder.WriteXMLCDATAString(padded, sizeof padded);
    EXPECT_EQ(TextOf(builder), "<r>ab<![CDATA[ab]]><![CDATA[pad]]></r>");
}

// Version, messages and errors.

TEST(DOMBuilder, StoresTheSchemaVersion)
{
    DOMBuilder builder;
    Nuv::ClassVersion version{9, 9, 9};
    builder.GetXMLShemaVersion(version);
    EXPECT_EQ(version.majorNumber, 0);
    EXPECT_EQ(version.minorNumber, 0);
    builder.SetXMLShemaVersion(Nuv::ClassVersion{3, 1});
    builder.GetXMLShemaVersion(version);
    EXPECT_EQ(version.majorNumber, 3);
    EXPECT_EQ(version.minorNumber, 1);
}

TEST(DOMBuilder, CollectsMessagesAtLineOne)
{
    DOMBuilder builder;
    builder.AddMessage(UniString(u"first"));
    builder.WriteStartElement("r");
    builder.AddMessage(UniString(u"second"));
    EXPECT_EQ(builder.GetNumberOfMessage(), 2);
    UniString text;
    int line = 0;
    builder.GetMessage(0, text, line);
    EXPECT_EQ(text, UniString(u"first"));
    EXPECT_EQ(line, 1);
    line = 0;
    builder.GetMessage(1, text, line);
    EXPECT_EQ(text, UniString(u"second"));
    EXPECT_EQ(line, 1);
}

TEST(DOMBuilder, LeavesTheOutputsAloneForAMessageThatIsNotThere)
{
    DOMBuilder builder;
    builder.AddMessage(UniString(u"first"));
    UniString text(u"before");
    int line = 42;
    for (const int index : {1, 2, 1000, -1})
        builder.GetMessage(index, text, line);
    EXPECT_EQ(text, UniString(u"before"));
    EXPECT_EQ(line, 42);
}

TEST(DOMBuilder, NeverHasAnErrorStatus)
{
    DOMBuilder builder;
    EXPECT_EQ(builder.WriteEndElement(), Failure);
    EXPECT_EQ(builder.GetErrorStatus(), Nuv::XMLOChannel::NoError);
    builder.ClearErrorStatus();
    EXPECT_EQ(builder.GetErrorStatus(), 0);
}

// Export.

TEST(DOMBuilder, ExportsAtAnyTimeAndAsOftenAsWanted)
{
    DOMBuilder builder;
    EXPECT_EQ(TextOf(builder), "");
    builder.WriteStartElement("r");
    EXPECT_EQ(TextOf(builder), "\n<r/>");
    builder.WriteXML("v", 1);
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<v>1</v></r>");
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<v>1</v></r>");
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<v>1</v>\n</r>");
}

TEST(DOMBuilder, ExportsNonASCIITextAsTheSameCharacters)
{
    const NuvTest::LocalCodePageScope codePage("windows-1252");
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    builder.WriteXMLAttr("a", UniString(u"é\u200B\u4E2D\U0001F600"));
    builder.WriteXMLTextNode(UniString(u"é\u0085\u2028\u4E2D\uFFFD\U0010FFFF"));
    EXPECT_EQ(builder.Export(),
              UniString(Declaration) +
                  UniString(u"<r a=\"é\u200B\u4E2D\U0001F600\">é\u0085\u2028\u4E2D\uFFFD\U0010FFFF</r>"));
}

TEST(DOMBuilder, ExportsUTF8ToAChannelInOneCall)
{
    struct Counting : Nuv::MemoryOChannel
    {
        int Write(const void* bytes, size_t count) override
        {
            ++calls;
            return Nuv::MemoryOChannel::Write(bytes, count);
        }
        int calls = 0;
    };
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    builder.WriteXMLTextNode(UniString(std::u16string(5000, u'é')));
    Counting channel;
    builder.Export(channel);
    std::string expected = std::string(Declaration) + "<r>";
    for (int i = 0; i < 5000; ++i)
        expected += "\xC3\xA9";
    EXPECT_EQ(channel.GetBytes(), expected + "</r>");
    EXPECT_EQ(channel.calls, 1);
}

TEST(DOMBuilder, ExportsNothingForANullDocumentInOneCallToo)
{
    struct Counting : Nuv::OChannel
    {
        int Write(const void*, size_t count) override
        {
            counts.push_back(count);
            return 0;
        }
        std::vector<size_t> counts;
    };
    DOMBuilder builder(nullptr, nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(builder.Export(), UniString());
    Counting channel;
    builder.Export(channel);
    EXPECT_EQ(channel.counts, std::vector<size_t>{0});
}

TEST(DOMBuilder, LeavesAFailingChannelToItsOwner)
{
    struct Failing : Nuv::OChannel
    {
        int Write(const void*, size_t) override { return -1; }
    };
    DOMBuilder builder;
    WriteRoot(builder, 1);
    Failing channel;
    builder.Export(channel);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, LetsTheExceptionOfAChannelThrough)
{
    struct Throwing : Nuv::OChannel
    {
        int Write(const void*, size_t) override { throw std::runtime_error("full"); }
    };
    DOMBuilder builder;
    Throwing channel;
    EXPECT_THROW(builder.Export(channel), std::runtime_error);
}

TEST(DOMBuilder, LeavesAFullDeviceToItsOwner)
{
    DOMBuilder builder;
    WriteRoot(builder, 1);
    IO::File full(IO::Location(UniString(u"/dev/full")), IO::FailWhenNotFound);
    ASSERT_EQ(full.Open(IO::WriteMode, IO::ReportAccessDenied), 0);
    builder.Export(full);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

// Text that XML cannot hold.

TEST(DOMBuilder, RefusesToExportAnUnwritableValue)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXML("v", text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableAttribute)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXMLAttr("a", text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
        builder.WriteXMLAttr("a", UniString(u"x"));
        EXPECT_EQ(TextOf(builder), "\n<r a=\"x\"/>");
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableTextNode)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXMLTextNode(text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableCDATASection)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.SetAutoTabsHint(false);
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXMLCDATAString(text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
        DOMElement* root = builder.GetActualNode();
        root->removeChild(root->getFirstChild())->release();
        EXPECT_EQ(TextOf(builder), "<r/>") << "the text is gone";
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableCDATASectionOfTheCaller)
{
    for (const UniString& text : UnwritableTexts)
    {
        const XercesPtr<DOMDocument> document = NewDocument();
        DOMElement* root = document->createElement(u"r");
        document->appendChild(root);
        root->appendChild(document->createCDATASection(text.ToUTF16()));
        DOMBuilder builder(document.get(), root, DOMBuilder::LeaveDocumentToCaller, 1);
        EXPECT_THROW(builder.Export(), DOMLSException);
    }
}

TEST(DOMBuilder, WritesNothingToAChannelWhenTheTextIsUnwritable)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteXML("v", UniString(u"\u0001"));
    Nuv::MemoryOChannel channel;
    EXPECT_THROW(builder.Export(channel), DOMLSException);
    EXPECT_EQ(channel.GetBytes(), "");
}

// The file.

TEST(DOMBuilder, WritesItsFileWhenItIsDestroyed)
{
    const NuvTest::ScratchFolder folder;
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        WriteRoot(builder, 1);
        builder.Export();
        EXPECT_FALSE(folder.Has("a.xml"));
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
}

TEST(DOMBuilder, ReplacesTheFileThatIsThere)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.Write("a.xml", std::string(1000, 'x'));
    {
        DOMBuilder builder{IO::Location(path)};
        WriteRoot(builder, 1);
        EXPECT_EQ(folder.Read("a.xml"), std::string(1000, 'x'));
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
}

TEST(DOMBuilder, DeletesTheOldFileInsteadOfWritingIntoIt)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    std::filesystem::create_hard_link(folder.Path() / "a.xml", folder.Path() / "kept.xml");
    {
        DOMBuilder builder{IO::Location(path)};
        WriteRoot(builder, 1);
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
    EXPECT_EQ(folder.Read("kept.xml"), "old");
}

TEST(DOMBuilder, WritesAFileWithoutElementsToo)
{
    const NuvTest::ScratchFolder folder;
    {
        const DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
    }
    EXPECT_EQ(folder.Read("a.xml"), Declaration);
}

TEST(DOMBuilder, KeepsTheOldFileWhenTheTextIsUnwritable)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    using Write = void (*)(DOMBuilder&);
    for (const Write write :
         {Write([](DOMBuilder& builder) { builder.WriteXML("v", UniString(u"\u0001")); }),
          Write([](DOMBuilder& builder) { builder.WriteXMLAttr("a", UniString(u"\xD800")); }),
          Write([](DOMBuilder& builder) { builder.WriteXMLTextNode(UniString(u"\uFFFE")); }),
          Write([](DOMBuilder& builder) { builder.WriteXMLCDATAString(UniString(u"\u0001")); })})
    {
        {
            DOMBuilder builder{IO::Location(path)};
            builder.WriteStartElement("r");
            write(builder);
        }
        EXPECT_EQ(folder.Read("a.xml"), "old");
    }
}

TEST(DOMBuilder, IsSilentAboutAFolderThatStandsInItsWay)
{
    const NuvTest::ScratchFolder folder;
    std::filesystem::create_directory(folder.Path() / "a.xml");
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        WriteRoot(builder, 1);
    }
    EXPECT_TRUE(std::filesystem::is_directory(folder.Path() / "a.xml"));
}

TEST(DOMBuilder, IsSilentAboutAFolderThatIsMissing)
{
    const NuvTest::ScratchFolder folder;
    {
        DOMBuilder builder{IO::Location(folder.PathOf("missing/a.xml"))};
        WriteRoot(builder, 1);
    }
    EXPECT_FALSE(folder.Has("missing"));
}

TEST(DOMBuilder, WritesItsFileAfterAnExceptionToo)
{
    const NuvTest::ScratchFolder folder;
    try
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        WriteRoot(builder, 1);
        throw std::runtime_error("elsewhere");
    }
    catch (const std::runtime_error&)
    {
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
}

} // namespace
