#include "NuvXMLUtils/NodePlaces.hpp"

#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>

#include <string>
#include <string_view>

namespace
{

using NuvXML::NodePlaces;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMText;

/// A document with the places of its nodes.
class NodePlacesTest : public testing::Test
{
  protected:
    void Load(std::string_view text)
    {
        document.reset(ParseXMLDoc(reinterpret_cast<const unsigned char*>(text.data()),
                                   static_cast<unsigned int>(text.size()),
                                   xercesc_3_0::XercesDOMParser::Val_Never, false, Nuv::UniString(u"test"),
                                   &lines, nullptr, nullptr));
        ASSERT_TRUE(document);
    }

    DOMElement* Root() const { return document->getDocumentElement(); }

    static DOMNode* ChildAt(const DOMNode* parent, unsigned int index)
    {
        return parent->getChildNodes()->item(index);
    }

    std::string PathOf(const DOMNode* node) { return places.PathOf(node).ToUTF8(); }

    NodeLocations lines;
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document;
    NodePlaces places{&lines};
};

TEST_F(NodePlacesTest, NamesTheElementsFromTheDocumentElementDown)
{
    Load("<Project><Storey><Wall/></Storey></Project>");
    EXPECT_EQ(PathOf(Root()), "/Project");
    EXPECT_EQ(PathOf(Root()->getFirstChild()->getFirstChild()), "/Project/Storey/Wall");
}

TEST_F(NodePlacesTest, CountsSiblingsThatShareAName)
{
    Load("<p><a/><b/><a/><c/><a/></p>");
    EXPECT_EQ(PathOf(ChildAt(Root(), 0)), "/p/a[1]");
    EXPECT_EQ(PathOf(ChildAt(Root(), 1)), "/p/b");
    EXPECT_EQ(PathOf(ChildAt(Root(), 2)), "/p/a[2]");
    EXPECT_EQ(PathOf(ChildAt(Root(), 3)), "/p/c");
    EXPECT_EQ(PathOf(ChildAt(Root(), 4)), "/p/a[3]");
}

TEST_F(NodePlacesTest, LeavesOutTheFirstStepsOfALongPath)
{
    const std::string longName(NodePlaces::MaxPathLength - 3, 'n');
    Load("<p><" + longName + "><a/><a/><bc/></" + longName + "></p>");
    const DOMNode* const longNode = Root()->getFirstChild();
    EXPECT_EQ(PathOf(ChildAt(longNode, 0)), ".../" + longName + "/a[1]");
    EXPECT_EQ(PathOf(ChildAt(longNode, 2)), ".../bc");
    EXPECT_EQ(PathOf(longNode), "/p/" + longName);
}

TEST_F(NodePlacesTest, KeepsTheLastStepHoweverLong)
{
    const std::string longName(NodePlaces::MaxPathLength + 1, 'n');
    Load("<" + longName + "><" + longName + "/></" + longName + ">");
    EXPECT_EQ(PathOf(Root()), "/" + longName);
    EXPECT_EQ(PathOf(Root()->getFirstChild()), ".../" + longName);
}

TEST_F(NodePlacesTest, DoesNotCountTheDocumentType)
{
    Load("<!DOCTYPE p [<!ENTITY e 'x'>]><p/>");
    EXPECT_EQ(PathOf(Root()), "/p");
}

TEST_F(NodePlacesTest, NamesAnAttributeBehindItsElement)
{
    Load("<p><x:a xmlns:x='u' x:height='1'/></p>");
    const auto* const element = static_cast<const DOMElement*>(Root()->getFirstChild());
    EXPECT_EQ(PathOf(element->getAttributeNode(u"x:height")), "/p/x:a/@x:height");
}

TEST_F(NodePlacesTest, NamesOtherNodesAsXPathDoes)
{
    Load("<p>one<!--c--><?pi x?><b/>two<![CDATA[three]]></p>");
    EXPECT_EQ(PathOf(ChildAt(Root(), 0)), "/p/text()[1]");
    EXPECT_EQ(PathOf(ChildAt(Root(), 1)), "/p/comment()");
    EXPECT_EQ(PathOf(ChildAt(Root(), 2)), "/p/processing-instruction()");
    EXPECT_EQ(PathOf(ChildAt(Root(), 4)), "/p/text()[2]");
    EXPECT_EQ(PathOf(ChildAt(Root(), 5)), "/p/text()[3]");
}

TEST_F(NodePlacesTest, KnowsTheDocumentAndNull)
{
    Load("<p/>");
    EXPECT_EQ(PathOf(document.get()), "/");
    EXPECT_EQ(PathOf(nullptr), "");
    EXPECT_EQ(places.LineOf(document.get()), 0u);
    EXPECT_EQ(places.LineOf(nullptr), 0u);
}

TEST_F(NodePlacesTest, NamesANodeWithoutDocumentFromItsRoot)
{
    Load("<p/>");
    DOMElement* const loose = document->createElement(u"loose");
    loose->appendChild(document->createElement(u"child"));
    EXPECT_EQ(PathOf(loose->getFirstChild()), "/loose/child");
    EXPECT_EQ(places.LineOf(loose->getFirstChild()), 0u);
}

TEST_F(NodePlacesTest, TellsTheLineOnWhichAStartTagEnds)
{
    Load("<p>\n<a\n x='1'\n/>\n</p>");
    const auto* const element = static_cast<const DOMElement*>(ChildAt(Root(), 1));
    EXPECT_EQ(places.LineOf(Root()), 1u);
    EXPECT_EQ(places.LineOf(element), 4u);
    EXPECT_EQ(places.LineOf(element->getAttributeNode(u"x")), 4u);
}

TEST_F(NodePlacesTest, TellsTheLineOnWhichTextEndsButForWhiteSpace)
{
    Load("<p>\n  first\n  second\n\n</p>");
    EXPECT_EQ(places.LineOf(Root()->getFirstChild()), 3u);
}

TEST_F(NodePlacesTest, TellsTheLineOnWhichBlankTextEnds)
{
    Load("<p>\n\n</p>");
    EXPECT_EQ(places.LineOf(Root()->getFirstChild()), 3u);
}

TEST_F(NodePlacesTest, TellsTheLineOfACharacterInText)
{
    Load("<p>\r\n  first\r\n  second\r\n</p>");
    const auto* const text = static_cast<const DOMText*>(Root()->getFirstChild());
    const std::u16string_view value(text->getNodeValue());
    EXPECT_EQ(places.LineOf(text, value.find(u"first")), 2u);
    EXPECT_EQ(places.LineOf(text, value.find(u"second")), 3u);
    EXPECT_EQ(places.LineOf(text, value.size()), 4u);
}

TEST_F(NodePlacesTest, TellsTheLineOfACharacterInTextThatIsParsedInPieces)
{
    std::string content;
    for (int line = 1; line <= 10000; ++line)
        content += "line " + std::to_string(line) + "\n";
    Load("<!DOCTYPE p [<!ENTITY e 'entity'>]><p>" + content + "&e;\n&amp;\n</p>");
    const auto* const text = static_cast<const DOMText*>(Root()->getFirstChild());
    const std::u16string_view value(text->getNodeValue());
    EXPECT_EQ(places.LineOf(text, 0), 1u);
    EXPECT_EQ(places.LineOf(text, value.find(u"line 9999\n")), 9999u);
    EXPECT_EQ(places.LineOf(text, value.find(u"entity")), 10001u);
    EXPECT_EQ(places.LineOf(text), 10002u);
}

TEST_F(NodePlacesTest, TellsTheLineOnWhichTextsBeginToDiffer)
{
    Load("<p>\n  <a>\n  first\n  second\n</a>\n  <a>first\n  third\n</a><a>first</a><b/></p>");
    const DOMNode* const longText = ChildAt(Root(), 1)->getFirstChild();
    const DOMNode* const otherText = ChildAt(Root(), 3)->getFirstChild();
    const DOMNode* const shortText = ChildAt(Root(), 4)->getFirstChild();
    EXPECT_EQ(places.LineOfDifference(longText, otherText), 4u);
    EXPECT_EQ(places.LineOfDifference(otherText, longText), 7u);
    EXPECT_EQ(places.LineOfDifference(longText, shortText), 3u);
    EXPECT_EQ(places.LineOfDifference(shortText, longText), 8u);
    EXPECT_EQ(places.LineOfDifference(longText, ChildAt(Root(), 5)), places.LineOf(longText));
    EXPECT_EQ(places.LineOfDifference(longText, nullptr), places.LineOf(longText));
    EXPECT_EQ(places.LineOfDifference(nullptr, longText), 0u);
}

TEST_F(NodePlacesTest, GivesANodeThatWasNotRecordedTheLineOfItsParent)
{
    Load("<p>\n<a>\n<?pi?></a></p>");
    EXPECT_EQ(places.LineOf(ChildAt(ChildAt(Root(), 1), 1)), 2u);
}

TEST_F(NodePlacesTest, KnowsNoLinesWithoutAStore)
{
    Load("<p>text</p>");
    NodePlaces withoutLines;
    EXPECT_EQ(withoutLines.LineOf(Root()), 0u);
    EXPECT_EQ(withoutLines.LineOf(Root()->getFirstChild()), 0u);
    EXPECT_EQ(withoutLines.PathOf(Root()->getFirstChild()).ToUTF8(), "/p/text()");
}

TEST_F(NodePlacesTest, AgreesWithTheStoreForEveryElement)
{
    std::string text = "<p>\n";
    for (int i = 0; i < 2000; ++i)
        text += "<a><b/>\n</a>";
    Load(text + "</p>");
    unsigned int number = 0;
    for (const DOMElement* child = Root()->getFirstElementChild(); child;
         child = child->getNextElementSibling())
    {
        EXPECT_EQ(places.LineOf(child), lines.Find(child)->lineNumber);
        EXPECT_EQ(PathOf(child), "/p/a[" + std::to_string(++number) + "]");
    }
    EXPECT_EQ(number, 2000u);
}

} // namespace
