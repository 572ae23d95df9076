#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>

#include <string>
#include <string_view>

namespace
{

using xercesc_3_0::DOMNode;

/// The kinds of the children of the document element, and the values of texts.
std::string ChildrenOf(std::string_view text, const ValidatingXMLParser::ParsedNodes& kinds)
{
    ValidatingXMLParser parser;
    parser.SetParsedNodes(kinds);
    NodeLocations lines;
    const NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(parser.Parse(
        reinterpret_cast<const unsigned char*>(text.data()), static_cast<unsigned int>(text.size()),
        xercesc_3_0::AbstractDOMParser::Val_Never, false, Nuv::UniString(u"test"), &lines, nullptr, nullptr));
    std::string result;
    for (const DOMNode* child = document->getDocumentElement()->getFirstChild(); child;
         child = child->getNextSibling())
        result +=
            (child->getNodeType() == DOMNode::TEXT_NODE ? ""
                                                        : Nuv::UniString(child->getNodeName()).ToUTF8()) +
            "(" + Nuv::UniString(child->getNodeValue()).ToUTF8() + ")";
    return result;
}

constexpr const char* Mixed = "<a>1<![CDATA[<2>]]>3<!--c-->4<?p i?>5<b/>6</a>";

TEST(ParsedNodes, AreOfAllKindsUnlessTheyAreSet)
{
    EXPECT_EQ(ChildrenOf(Mixed, {}), "(1)#cdata-section(<2>)(3)#comment(c)(4)p(i)(5)b()(6)");
}

TEST(ParsedNodes, CanHaveTextForCDATASections)
{
    EXPECT_EQ(ChildrenOf(Mixed, {.cdataSections = false, .comments = true}),
              "(1<2>3)#comment(c)(4)p(i)(5)b()(6)");
}

TEST(ParsedNodes, CanLackCommentsAndInstructions)
{
    EXPECT_EQ(ChildrenOf(Mixed, {.cdataSections = true, .comments = false}),
              "(1)#cdata-section(<2>)(345)b()(6)");
    EXPECT_EQ(ChildrenOf(Mixed, {.cdataSections = false, .comments = false}), "(1<2>345)b()(6)");
}

TEST(ParsedNodes, CanBeAskedForAgain)
{
    ValidatingXMLParser parser;
    const std::string_view text = "<a><!--c--></a>";
    for (const bool comments : {false, true, false})
    {
        parser.SetParsedNodes({.cdataSections = true, .comments = comments});
        const NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
            parser.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                         static_cast<unsigned int>(text.size()), xercesc_3_0::AbstractDOMParser::Val_Never,
                         false, Nuv::UniString(u"test"), nullptr, nullptr, nullptr));
        EXPECT_EQ(document->getDocumentElement()->hasChildNodes(), comments);
    }
}

} // namespace
