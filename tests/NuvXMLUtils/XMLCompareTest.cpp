#include "CompareSupport.hpp"

#include "NuvRoot/Exceptions.hpp"

#include <utility>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using Standard = StrictOrderAutoValueCompareOptions;

// Equal documents.

TEST(DoXMLCompare, ReturnsForEqualDocuments)
{
    ExpectEqual("<a/>", "<a/>");
    ExpectEqual("<a k='1'><b>x</b>y<c/></a>", "<a k='1'><b>x</b>y<c/></a>");
}

TEST(DoXMLCompare, ComparesADocumentWithItself)
{
    const Document document = Parse("<a k='1'><b>x</b>y<c/></a>");
    EXPECT_NO_THROW(Compare(document, document));
}

TEST(DoXMLCompare, IgnoresTheCaseOfElementNamesButNotOfAttributeNames)
{
    ExpectEqual("<A><b/></A>", "<a><B/></a>");
    ExpectDifferent<AttributeMissingException>("<a K='1'/>", "<a k='1'/>");
}

TEST(DoXMLCompare, IgnoresTheOrderOfAttributes) { ExpectEqual("<e a='1' b='2'/>", "<e b='2' a='1'/>"); }

TEST(DoXMLCompare, LetsTheFilterDecideWhichNodesTakePart)
{
    SkipWhitespaceTextsCompareFilter filter;
    EXPECT_NO_THROW(Compare("<a>\n  </a>", "<a/>", Standard(), &filter));
    ExpectDifferent<OneNodeHasMoreChildrenThanTheOtherException>("<a>\n  </a>", "<a/>");
}

/// Shows the children of `group` elements as if they stood in the parent.
class GroupSkippingFilter : public DOMNodeFilter
{
  public:
    FilterAction acceptNode(const DOMNode* node) const override
    {
        return Nuv::UniString(node->getNodeName()) == u"group" ? FILTER_SKIP : FILTER_ACCEPT;
    }
};

TEST(DoXMLCompare, FollowsAFilterThatShowsTheChildrenOfSkippedNodes)
{
    GroupSkippingFilter filter;
    const auto compare = [&](std::string_view left, std::string_view right)
    { Compare(left, right, Standard(), &filter); };
    EXPECT_NO_THROW(compare("<a><group><b/></group><c/></a>", "<a><b/><c/></a>"));
    EXPECT_NO_THROW(compare("<a><group><b>x</b></group></a>", "<a><b>x</b></a>"));
    EXPECT_THROW(compare("<a><group><b/></group><d/></a>", "<a><b/><c/></a>"), NodeNamesDontMatchException);
    EXPECT_THROW(compare("<a><group><b/></group><c/></a>", "<a><b/></a>"),
                 OneNodeHasMoreChildrenThanTheOtherException);
}

TEST(DoXMLCompare, ComparesSubtreesGivenAsNodes)
{
    const Document left = Parse("<a><b>x</b><c>1</c></a>");
    const Document right = Parse("<other><b>x</b><c>2</c></other>");
    XMLCompareStrictOrder comparator;
    const auto compare = [&](const DOMNode* leftNode, const DOMNode* rightNode)
    { DoXMLCompare(leftNode, rightNode, &comparator, nullptr, Standard()); };
    const DOMNode* const leftB = left->getDocumentElement()->getFirstChild();
    const DOMNode* const rightB = right->getDocumentElement()->getFirstChild();
    EXPECT_NO_THROW(compare(leftB, rightB)) << "siblings of the roots take no part";
    EXPECT_THROW(compare(leftB->getNextSibling(), rightB->getNextSibling()),
                 TextNodeValuesDontMatchException);
}

TEST(DoXMLCompare, ComparesTextNodesAsRoots)
{
    const Document document = EmptyDocument();
    const auto compare = [&](const char16_t* left, const char16_t* right, const IXMLCompareOptions& options)
    {
        XMLCompareStrictOrder comparator;
        DoXMLCompare(document->createTextNode(left), document->createTextNode(right), &comparator, nullptr,
                     options);
    };
    EXPECT_NO_THROW(compare(u"1", u"1.0", Standard()));
    EXPECT_NO_THROW(compare(u"1", u"1.0", AttrRuledCompareOptions()));
    EXPECT_THROW(compare(u"1", u"2", AttrRuledCompareOptions()), TextNodeValuesDontMatchException);
}

/// Looks at the walkers that it is given, and at nothing else.
class WalkerWatcher : public XMLNodeComparator
{
  public:
    DOMTreeWalker* Left() const { return LeftWalker(); }
    DOMTreeWalker* Right() const { return RightWalker(); }

  private:
    void WalkThrough() override {}
};

TEST(DoXMLCompare, MakesWalkersThatShowEverythingBelowTheRootsAndStayWithTheDocuments)
{
    const Document left = Parse("<a/>");
    const Document right = Parse("<a/>");
    SkipWhitespaceTextsCompareFilter filter;
    WalkerWatcher comparator;
    DoXMLCompare(left.get(), right.get(), &comparator, &filter, Standard());
    EXPECT_EQ(comparator.Left()->getRoot(), left->getDocumentElement());
    EXPECT_EQ(comparator.Right()->getRoot(), right->getDocumentElement());
    for (DOMTreeWalker* const walker : {comparator.Left(), comparator.Right()})
    {
        EXPECT_EQ(walker->getWhatToShow(), DOMNodeFilter::SHOW_ALL);
        EXPECT_EQ(walker->getFilter(), &filter);
        EXPECT_FALSE(walker->getExpandEntityReferences());
        EXPECT_EQ(walker->getCurrentNode(), walker->getRoot());
    }
}

// Each difference, with its report, for both sides.

TEST(DoXMLCompare, ReportsADocumentWithoutAnElement)
{
    const Document full = Parse("<a/>");
    const Document empty = EmptyDocument();
    const auto textFor = [](const Document& left, const Document& right)
    {
        try
        {
            Compare(left, right);
        }
        catch (const NoElementsInDocumentException& difference)
        {
            return difference.GetText();
        }
        return Nuv::UniString();
    };
    EXPECT_EQ(textFor(empty, full), u"There is no valid element in the XML-document on the left.");
    EXPECT_EQ(textFor(full, empty), u"There is no valid element in the XML-document on the right.");
    EXPECT_EQ(textFor(empty, empty), u"There is no valid element in the XML-document on the left.");
}

TEST(DoXMLCompare, ReportsElementNamesThatDiffer)
{
    EXPECT_EQ(TextOf<NodeNamesDontMatchException>("<a/>", "<b/>"),
              u"Diff at nodes:\n\t- a\n\t- b\n\tNode names don't match.");
    EXPECT_EQ(TextOf<NodeNamesDontMatchException>("<a><b/><c/></a>", "<a><b/><d/></a>"),
              u"Diff at nodes:\n\t- a/c\n\t- a/d\n\tNode names don't match.");
}

TEST(DoXMLCompare, ReportsAnAttributeThatIsMissing)
{
    EXPECT_EQ(TextOf<AttributeMissingException>("<a><b k='1' m='2'/></a>", "<a><b m='2'/></a>"),
              u"Diff at nodes:\n\t- a/b\n\t- a/b\n\tMissing attribute \"k\" on the right.");
    EXPECT_EQ(TextOf<AttributeMissingException>("<a><b m='2'/></a>", "<a><b k='1' m='2'/></a>"),
              u"Diff at nodes:\n\t- a/b\n\t- a/b\n\tMissing attribute \"k\" on the left.");
}

TEST(DoXMLCompare, ReportsTheSideThatLacksAnAttributeOfTheLeftFirst)
{
    EXPECT_EQ(TextOf<AttributeMissingException>("<a z='1'/>", "<a b='1'/>"),
              u"Diff at nodes:\n\t- a\n\t- a\n\tMissing attribute \"z\" on the right.");
}

TEST(DoXMLCompare, ReportsAttributeValuesThatDiffer)
{
    EXPECT_EQ(TextOf<AttributesDontMatchException>("<a k='1'/>", "<a k='2'/>"),
              u"Diff at nodes:\n\t- a\n\t- a\n\tValues of attribute \"k\" don't match: \"1\" and \"2\".");
}

TEST(DoXMLCompare, ReportsTheElementWithMoreChildren)
{
    EXPECT_EQ(TextOf<OneNodeHasMoreChildrenThanTheOtherException>("<a><b/></a>", "<a/>"),
              u"Diff at nodes:\n\t- a\n\t- a\n\tThe node on the left has more children.");
    EXPECT_EQ(TextOf<OneNodeHasMoreChildrenThanTheOtherException>("<a/>", "<a><b/></a>"),
              u"Diff at nodes:\n\t- a\n\t- a\n\tThe node on the right has more children.");
    EXPECT_EQ(
        TextOf<OneNodeHasMoreChildrenThanTheOtherException>("<a><b/><b>x</b></a>", "<a><b/><b>x<c/></b></a>"),
        u"Diff at nodes:\n\t- a/b\n\t- a/b\n\tThe node on the right has more children.");
    EXPECT_EQ(TextOf<OneNodeHasMoreChildrenThanTheOtherException>("<a><b/><b/></a>", "<a><b/></a>"),
              u"Diff at nodes:\n\t- a\n\t- a\n\tThe node on the left has more children.");
}

TEST(DoXMLCompare, ReportsTextAgainstAnElement)
{
    EXPECT_EQ(TextOf<OneNodeIsElementOneIsTextException>("<a>x</a>", "<a><b/></a>"),
              u"Node type mismatch at nodes:\n\t- a/#text\n\t- a/b\n\tOne node is Element, the other is "
              u"Text.\n\tThe value of the text is \"x\".");
    EXPECT_EQ(TextOf<OneNodeIsElementOneIsTextException>("<a><b/></a>", "<a>x</a>"),
              u"Node type mismatch at nodes:\n\t- a/b\n\t- a/#text\n\tOne node is Element, the other is "
              u"Text.\n\tThe value of the text is \"x\".");
}

TEST(DoXMLCompare, ReportsOtherNodesOfDifferentTypes)
{
    EXPECT_EQ(
        TextOf<NodeTypesDontMatchException>("<a>x</a>", "<a><!--x--></a>"),
        u"Node type mismatch at nodes:\n\t- a/#text\n\t- a/#comment\n\tThe nodes are not the same "
        u"type.\n\tLeft node is type 3 and the right node is type 8 (see enum \"NodeType\" for their "
        u"meaning).\n\tYou can skip these node types by rejecting themin the NodeFilter object given to "
        u"the TreeWalker.");
    EXPECT_EQ(
        TextOf<NodeTypesDontMatchException>("<a><![CDATA[x]]></a>", "<a><b/></a>"),
        u"Node type mismatch at nodes:\n\t- a/#cdata-section\n\t- a/b\n\tThe nodes are not the same "
        u"type.\n\tLeft node is type 4 and the right node is type 1 (see enum \"NodeType\" for their "
        u"meaning).\n\tYou can skip these node types by rejecting themin the NodeFilter object given to "
        u"the TreeWalker.");
    ExpectDifferent<NodeTypesDontMatchException>("<a><![CDATA[x]]></a>", "<a>x</a>");
}

TEST(DoXMLCompare, ReportsTextThatDiffersAtTheParents)
{
    EXPECT_EQ(TextOf<TextNodeValuesDontMatchException>("<a><b>x</b></a>", "<a><b>y</b></a>"),
              u"Diff at nodes:\n\t- a/b\n\t- a/b\n\tText node values \"x\" and \"y\" don't match.");
}

TEST(DoXMLCompare, ReportsOtherNodesOfOneTypeEvenWhenTheyAreEqual)
{
    EXPECT_EQ(
        TextOf<NotSupportedNodeTypesException>("<a><!--x--></a>", "<a><!--x--></a>"),
        u"Node type error at nodes:\n\t- a/#comment\n\t- a/#comment\n\tNot both nodes are supported for "
        u"comparison:\n\tLeft node is type 8 and the right node is type 8 (see enum \"NodeType\" for "
        u"their meaning).\n\tYou can skip these node types by rejecting themin the NodeFilter object "
        u"given to the TreeWalker.");
    ExpectDifferent<NotSupportedNodeTypesException>("<a><![CDATA[x]]></a>", "<a><![CDATA[x]]></a>");
    ExpectDifferent<NotSupportedNodeTypesException>("<a><?x y?></a>", "<a><?x y?></a>");
}

TEST(DoXMLCompare, ReportsDifferentRootsInTheSameWay)
{
    const Document document = Parse("<a><b/>x<!--y--><?p?></a>");
    const DOMNode* const element = document->getDocumentElement()->getFirstChild();
    const DOMNode* const text = element->getNextSibling();
    const DOMNode* const comment = text->getNextSibling();
    const DOMNode* const instruction = comment->getNextSibling();
    XMLCompareStrictOrder comparator;
    const auto compare = [&](const DOMNode* left, const DOMNode* right)
    { DoXMLCompare(left, right, &comparator, nullptr, Standard()); };
    EXPECT_THROW(compare(element, text), OneNodeIsElementOneIsTextException);
    EXPECT_THROW(compare(text, element), OneNodeIsElementOneIsTextException);
    EXPECT_THROW(compare(comment, instruction), NodeTypesDontMatchException);
    EXPECT_THROW(compare(comment, comment), NotSupportedNodeTypesException);
}

TEST(DoXMLCompare, ReportsTheFirstDifferenceInDocumentOrder)
{
    ExpectDifferent<TextNodeValuesDontMatchException>("<a><b>x</b><c/></a>", "<a><b>y</b><d/></a>");
    ExpectDifferent<NodeNamesDontMatchException>("<a k='1'/>", "<b k='2'/>");
    ExpectDifferent<AttributesDontMatchException>("<a k='1'>x</a>", "<a k='2'>y</a>");
}

// Strategies that are not supported.

template <class Strategy>
Nuv::NuvException FailureOf()
{
    const Document document = Parse("<a/>");
    Strategy comparator;
    try
    {
        DoXMLCompare(document.get(), document.get(), &comparator, nullptr, Standard());
    }
    catch (const Nuv::NuvException& failure)
    {
        EXPECT_EQ(typeid(failure), typeid(Nuv::NuvException));
        return failure;
    }
    return Nuv::NuvException(u"nothing was thrown");
}

TEST(UnsupportedStrategies, ThrowWhenChildrenAreToBeWalked)
{
    for (const auto& [failure, message] :
         {std::pair(FailureOf<XMLCompareRotatedOrder>(), u"Rotated order walkthrough not yet supported."),
          std::pair(FailureOf<XMLCompareNoOrder>(), u"No-order walkthrough not yet supported.")})
    {
        EXPECT_EQ(failure.GetMessage(), message);
        EXPECT_EQ(failure.GetFileName(), nullptr);
        EXPECT_EQ(failure.GetLineNumber(), 0u);
        EXPECT_EQ(failure.GetCause(), nullptr);
    }
}

TEST(UnsupportedStrategies, CompareTextRoots)
{
    const Document document = Parse("<a>x</a>");
    const DOMNode* const text = document->getDocumentElement()->getFirstChild();
    XMLCompareRotatedOrder rotated;
    XMLCompareNoOrder unordered;
    EXPECT_NO_THROW(DoXMLCompare(text, text, &rotated, nullptr, Standard()));
    EXPECT_NO_THROW(DoXMLCompare(text, text, &unordered, nullptr, Standard()));
}

} // namespace
