#include "DOMBuilderSupport.hpp"

#include "tests/support/LocalCodePageScope.hpp"

#include <xercesc/dom/DOMDocumentFragment.hpp>

#include <string>
#include <vector>

namespace
{

using namespace BuilderTests;
using namespace NuvXML;

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

TEST(DOMBuilder, MakesOneCDATASectionOfTextThatHoldsItsEndAndExportsItDivided)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    EXPECT_EQ(builder.WriteXMLCDATAString(UniString(u"]]>a]]>]]>")), 0);
    const DOMNode* section = builder.GetActualNode()->getLastChild();
    EXPECT_EQ(section->getNodeType(), DOMNode::CDATA_SECTION_NODE);
    EXPECT_EQ(UniString(section->getNodeValue()), UniString(u"]]>a]]>]]>"));
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

} // namespace
