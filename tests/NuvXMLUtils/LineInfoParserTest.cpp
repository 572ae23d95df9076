#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>

#include <string_view>
#include <type_traits>

namespace
{

using xercesc_3_0::DOMNode;

static_assert(std::is_base_of_v<xercesc_3_0::XercesDOMParser, ValidatingXMLParser::LineInfoParser>);

class LineInfoParserTest : public testing::Test
{
  protected:
    const DOMNode* Parse(std::string_view text)
    {
        const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()),
                                                    text.size(), u"text");
        parser.parse(source);
        return parser.getDocument()->getDocumentElement();
    }

    const DOMNode* ParseRecorded(std::string_view text)
    {
        parser.SetNodeLocations(&store);
        return Parse(text);
    }

    /// 0 for a node that was not recorded.
    unsigned int LineOf(const DOMNode* node) const
    {
        const NodeLocationInfo* location = store.Find(node);
        return location ? location->lineNumber : 0;
    }

    NodeLocations store;
    ValidatingXMLParser::LineInfoParser parser;
};

const DOMNode* Child(const DOMNode* node, int index)
{
    const DOMNode* child = node->getFirstChild();
    while (index-- > 0)
        child = child->getNextSibling();
    return child;
}

TEST_F(LineInfoParserTest, RecordsAnElementWithTheLineOnWhichItsStartTagEnds)
{
    const DOMNode* root = ParseRecorded("<r\n  a='1'\n  b='2'>\n<c>\n</c></r>");
    EXPECT_EQ(LineOf(root), 3u);
    EXPECT_EQ(LineOf(Child(root, 1)), 4u);
}

TEST_F(LineInfoParserTest, RecordsAnEmptyElementItself)
{
    const DOMNode* root = ParseRecorded("<r>\n<a\n/><b/>\n</r>");
    EXPECT_EQ(LineOf(Child(root, 1)), 3u);
    EXPECT_EQ(LineOf(Child(root, 2)), 3u);
}

TEST_F(LineInfoParserTest, RecordsARootElementThatIsEmpty)
{
    EXPECT_EQ(LineOf(ParseRecorded("<?xml version='1.0'?>\n\n<r/>")), 3u);
}

TEST_F(LineInfoParserTest, RecordsTextWithTheLineOnWhichItEnds)
{
    const DOMNode* root = ParseRecorded("<r>one\ntwo\nthree</r>");
    EXPECT_EQ(LineOf(Child(root, 0)), 3u);
}

TEST_F(LineInfoParserTest, KeepsTheFirstLineOfTextThatIsExtended)
{
    // The text comes in two chunks, of which the second one is the content of the entity.
    const std::string_view text = "<!DOCTYPE r [<!ENTITY e 'x'>]>\n<r>one\n&e;\nthree\n</r>";
    parser.setCreateEntityReferenceNodes(false);
    const DOMNode* root = ParseRecorded(text);
    ASSERT_EQ(root->getFirstChild(), root->getLastChild());
    EXPECT_EQ(Nuv::UniString(root->getTextContent()), Nuv::UniString(u"one\nx\nthree\n"));
    EXPECT_EQ(LineOf(Child(root, 0)), 3u);
}

TEST_F(LineInfoParserTest, RecordsACDATASectionWithTheLineOnWhichItEnds)
{
    const DOMNode* root = ParseRecorded("<r>\n<![CDATA[one\ntwo]]></r>");
    const DOMNode* section = Child(root, 1);
    ASSERT_EQ(section->getNodeType(), DOMNode::CDATA_SECTION_NODE);
    EXPECT_EQ(LineOf(section), 3u);
}

TEST_F(LineInfoParserTest, RecordsACommentInAndAroundTheRootElement)
{
    const DOMNode* root = ParseRecorded("<!--before-->\n<r>\n<!--in\nside--></r>\n\n<!--after-->");
    EXPECT_EQ(LineOf(root->getPreviousSibling()), 1u);
    EXPECT_EQ(LineOf(Child(root, 1)), 4u);
    EXPECT_EQ(LineOf(root->getNextSibling()), 6u);
}

TEST_F(LineInfoParserTest, RecordsAnEntityReferenceNode)
{
    parser.setCreateEntityReferenceNodes(true);
    const DOMNode* root = ParseRecorded("<!DOCTYPE r [<!ENTITY e 'x'>]>\n<r>\n&e;</r>");
    const DOMNode* reference = Child(root, 1);
    ASSERT_EQ(reference->getNodeType(), DOMNode::ENTITY_REFERENCE_NODE);
    EXPECT_EQ(LineOf(reference), 3u);
}

TEST_F(LineInfoParserTest, RecordsTheNodeBeforeAnEntityReferenceThatHasNoNode)
{
    // Nothing else records a processing instruction.
    parser.setCreateEntityReferenceNodes(false);
    const DOMNode* root = ParseRecorded("<!DOCTYPE r [<!ENTITY e 'x'>]>\n<r><?p q?>&e;</r>");
    ASSERT_EQ(Child(root, 0)->getNodeType(), DOMNode::PROCESSING_INSTRUCTION_NODE);
    EXPECT_EQ(LineOf(Child(root, 0)), 2u);
}

TEST_F(LineInfoParserTest, RecordsNoProcessingInstructionAttributeDoctypeOrDocument)
{
    const DOMNode* root = ParseRecorded("<!DOCTYPE r [<!ELEMENT r ANY>]>\n<r a='1'><?p q?></r>");
    EXPECT_EQ(LineOf(Child(root, 0)), 0u);
    EXPECT_EQ(LineOf(root->getAttributes()->item(0)), 0u);
    EXPECT_EQ(LineOf(root->getPreviousSibling()), 0u);
    EXPECT_EQ(LineOf(root->getOwnerDocument()), 0u);
}

TEST_F(LineInfoParserTest, RecordsNoIgnorableWhiteSpace)
{
    parser.setValidationScheme(parser.Val_Always);
    const DOMNode* root =
        ParseRecorded("<!DOCTYPE r [<!ELEMENT r (a)><!ELEMENT a (#PCDATA)>]>\n<r>\n <a> </a>\n</r>");
    ASSERT_EQ(Child(root, 0)->getNodeType(), DOMNode::TEXT_NODE);
    EXPECT_EQ(LineOf(Child(root, 0)), 0u);
    EXPECT_EQ(LineOf(Child(Child(root, 1), 0)), 3u);
    EXPECT_EQ(LineOf(Child(root, 2)), 0u);
}

TEST_F(LineInfoParserTest, CountsLinesAsXMLDoes)
{
    const DOMNode* root = ParseRecorded("<r>\r\n\r<a/>\r\n<b/></r>");
    EXPECT_EQ(LineOf(Child(root, 1)), 3u);
    EXPECT_EQ(LineOf(Child(root, 3)), 4u);
}

TEST_F(LineInfoParserTest, RecordsNothingUntilAStoreIsSet)
{
    const DOMNode* root = Parse("<r>text<!--comment--></r>");
    EXPECT_EQ(LineOf(root), 0u);
    EXPECT_EQ(LineOf(Child(root, 0)), 0u);
    EXPECT_EQ(LineOf(Child(root, 1)), 0u);
}

TEST_F(LineInfoParserTest, RecordsIntoTheSameStoreUntilAnotherIsSet)
{
    ParseRecorded("<r/>");
    const DOMNode* second = Parse("<r>\n<a/></r>");
    EXPECT_EQ(LineOf(Child(second, 1)), 2u);
    NodeLocations other;
    parser.SetNodeLocations(&other);
    const DOMNode* third = Parse("<r/>");
    EXPECT_EQ(LineOf(third), 0u);
    ASSERT_NE(other.Find(third), nullptr);
    EXPECT_EQ(other.Find(third)->lineNumber, 1u);
}

TEST_F(LineInfoParserTest, StopsRecordingWhenTheStoreIsSetToNull)
{
    ParseRecorded("<r/>");
    parser.SetNodeLocations(nullptr);
    EXPECT_EQ(LineOf(Parse("<r/>")), 0u);
}

TEST_F(LineInfoParserTest, MakesTheSameTreeWhetherItRecordsOrNot)
{
    const std::string_view text = "<!DOCTYPE r [<!ENTITY e 'x<i/>y'>]>\n"
                                  "<r a='1'>one<b/>&e;<!--c--><![CDATA[d]]><?p q?>two\n</r>";
    parser.setCreateEntityReferenceNodes(true);
    Parse(text);
    const DOMNode* plain = parser.getDocument();
    const DOMNode* recorded = ParseRecorded(text)->getOwnerDocument();
    xercesc_3_0::XercesDOMParser bare;
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                u"text");
    bare.parse(source);
    EXPECT_TRUE(recorded->isEqualNode(plain));
    EXPECT_TRUE(recorded->isEqualNode(bare.getDocument()));
}

} // namespace
