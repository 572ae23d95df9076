#include "CompareSupport.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <xercesc/dom/DOMEntityReference.hpp>

#include <pthread.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using Standard = StrictOrderAutoValueCompareOptions;

template <class Difference>
Nuv::UniString TextOf(std::string_view left, std::string_view right)
{
    return DifferenceOf<Difference>(left, right).GetText();
}

void ExpectEqual(std::string_view left, std::string_view right)
{
    EXPECT_NO_THROW(Compare(left, right)) << left << " and " << right;
}

template <class Difference>
void ExpectDifferent(std::string_view left, std::string_view right)
{
    EXPECT_THROW(Compare(left, right), Difference) << left << " and " << right;
}

DOMTreeWalker* NewWalker(const Document& document, DOMNodeFilter* filter = nullptr)
{
    return document->createTreeWalker(document->getDocumentElement(), DOMNodeFilter::SHOW_ALL, filter, false);
}

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

// Attributes.

TEST(CompareAttributes, IgnoresWhatTheOptionsDoNotAccept)
{
    class WithoutStamp : public Standard
    {
        WithoutStamp* Clone() const override { return new WithoutStamp(*this); }
        bool AcceptAttribute(const DOMAttr* attribute) const override
        {
            return Nuv::UniString(attribute->getName()) != u"stamp";
        }
    };
    EXPECT_NO_THROW(Compare("<a stamp='1'/>", "<a/>", WithoutStamp()));
    EXPECT_NO_THROW(Compare("<a/>", "<a stamp='1'/>", WithoutStamp()));
    EXPECT_NO_THROW(Compare("<a stamp='1'/>", "<a stamp='2'/>", WithoutStamp()));
    EXPECT_THROW(Compare("<a k='1'/>", "<a k='2'/>", WithoutStamp()), AttributesDontMatchException);
}

TEST(CompareAttributes, LooksAtAnAttributeOfTheRightThatWasAcceptedOnNeitherSideByName)
{
    // Accepts an attribute by its value, so that one side may take part and the other not.
    class AcceptingYes : public Standard
    {
        AcceptingYes* Clone() const override { return new AcceptingYes(*this); }
        bool AcceptAttribute(const DOMAttr* attribute) const override
        {
            return Nuv::UniString(attribute->getValue()) == u"yes";
        }
    };
    EXPECT_EQ(
        DifferenceOf<AttributeMissingException>("<a k='no'/>", "<a k='yes'/>", AcceptingYes()).GetText(),
        u"Diff at nodes:\n\t- a\n\t- a\n\tMissing attribute \"k\" on the left.");
    EXPECT_THROW(Compare("<a k='yes'/>", "<a k='no'/>", AcceptingYes()), AttributesDontMatchException);
}

TEST(CompareAttributes, ChoosesTheComparatorByTheLeftAttribute)
{
    // Takes numbers for text when the attribute says so.
    class TextOnRequest : public Standard
    {
        TextOnRequest* Clone() const override { return new TextOnRequest(*this); }
        XMLValueComparator* GetAttributeValueComparator(const DOMAttr* attribute) const override
        {
            if (Nuv::UniString(attribute->getValue()) == u"1.0")
                return new XMLCompareString;
            return new XMLCompareAuto;
        }
    };
    EXPECT_NO_THROW(Compare("<a k='1'/>", "<a k='1.0'/>", TextOnRequest()));
    EXPECT_THROW(Compare("<a k='1.0'/>", "<a k='1'/>", TextOnRequest()), AttributesDontMatchException);
}

TEST(CompareAttributes, TakesAnAttributeWithoutTextForAnEmptyOne)
{
    const Document byHand = Parse("<a/>");
    byHand->getDocumentElement()->setAttributeNode(byHand->createAttribute(u"k"));
    const Document parsed = Parse("<a k=''/>");
    EXPECT_NO_THROW(Compare(byHand, parsed));
    EXPECT_NO_THROW(Compare(parsed, byHand));
    EXPECT_THROW(Compare(byHand, Parse("<a k='x'/>")), AttributesDontMatchException);
}

TEST(CompareAttributes, TakesAnAttributeThatBeginsWithAnEntityReferenceForAnEmptyOne)
{
    const Document byHand = Parse("<a/>");
    DOMAttr* const attribute = byHand->createAttribute(u"k");
    attribute->appendChild(static_cast<DOMNode*>(byHand->createEntityReference(u"x")));
    byHand->getDocumentElement()->setAttributeNode(attribute);
    EXPECT_NO_THROW(Compare(byHand, Parse("<a k=''/>")));
}

TEST(CompareAttributes, ComparesQualifiedNames)
{
    ExpectDifferent<AttributeMissingException>("<a xmlns:p='u' p:k='1'/>", "<a xmlns:p='u' k='1'/>");
}

TEST(CompareAttributes, ComparesManyAttributes)
{
    const auto elementWith = [](int count, const std::string& more)
    {
        std::string text = "<e";
        for (int i = 0; i < count; ++i)
            text += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
        return text + " " + more + "/>";
    };
    for (const int count : {0, 1, 15, 16, 17, 18, 100, 10'000})
    {
        ExpectEqual(elementWith(count, ""), elementWith(count, ""));
        const auto missing =
            DifferenceOf<AttributeMissingException>(elementWith(count, ""), elementWith(count, "last=''"));
        EXPECT_EQ(missing.GetAttributeName(), u"last");
        EXPECT_EQ(missing.GetWhereItIsMissing(), Left);
        ExpectDifferent<AttributesDontMatchException>(elementWith(count, "z='1'"),
                                                      elementWith(count, "z='2'"));
    }
}

TEST(CompareAttributes, CanBeCalledByItself)
{
    const Document left = Parse("<a k='1'>x</a>");
    const Document right = Parse("<b k='1'/>");
    EXPECT_NO_THROW(XMLNodeComparator::CompareAttributes(left->getDocumentElement(),
                                                         right->getDocumentElement(), Standard()));
}

// Where the walkers stand.

TEST(CompareNodes, LeavesTheWalkersOnTheOutermostPairAfterADifferenceOfAnyDepth)
{
    const std::pair<const char*, const char*> documents[] = {
        {"<a/>", "<b/>"},
        {"<a k='1'/>", "<a/>"},
        {"<a><b/></a>", "<a/>"},
        {"<a><b><c>x</c></b></a>", "<a><b><c>y</c></b></a>"},
        {"<a><b/><b><c/></b></a>", "<a><b/><b><d/></b></a>"},
        {"<a>x<!--y--></a>", "<a>x<!--y--></a>"},
        {"<a><b><c/>x</b></a>", "<a><b><c/><c/></b></a>"},
    };
    for (const auto& [leftText, rightText] : documents)
    {
        const Document left = Parse(leftText);
        const Document right = Parse(rightText);
        DOMTreeWalker* const leftWalker = NewWalker(left);
        DOMTreeWalker* const rightWalker = NewWalker(right);
        const Nuv::Ref<Standard> options(new Standard);
        EXPECT_THROW(XMLCompareStrictOrder().CompareNodes(leftWalker, rightWalker, *options),
                     XMLCompareException);
        EXPECT_EQ(leftWalker->getCurrentNode(), left->getDocumentElement()) << leftText;
        EXPECT_EQ(rightWalker->getCurrentNode(), right->getDocumentElement()) << leftText;
    }
}

TEST(CompareNodes, StartsWhereTheWalkersStandAndLeavesThemThere)
{
    const Document left = Parse("<a><b><c>x</c></b></a>");
    const Document right = Parse("<z><b><c>x</c></b></z>");
    DOMTreeWalker* const leftWalker = NewWalker(left);
    DOMTreeWalker* const rightWalker = NewWalker(right);
    const DOMNode* const leftB = leftWalker->firstChild();
    const DOMNode* const rightB = rightWalker->firstChild();
    const Nuv::Ref<Standard> options(new Standard);
    XMLCompareStrictOrder().CompareNodes(leftWalker, rightWalker, *options);
    EXPECT_EQ(leftWalker->getCurrentNode(), leftB);
    EXPECT_EQ(rightWalker->getCurrentNode(), rightB);
    EXPECT_EQ(options->GetReferenceCount(), 1);
}

/// Goes on after a difference in a pair of children, and notes where the walkers stand then.
class GoingOn : public XMLNodeComparator
{
  public:
    explicit GoingOn(std::vector<Nuv::UniString>& notes)
        : stops(notes)
    {
    }

  private:
    void WalkThrough() override
    {
        EXPECT_EQ(LeftWalker()->getCurrentNode(), LeftNode());
        EXPECT_EQ(RightWalker()->getCurrentNode(), RightNode());
        EXPECT_NE(GetOptions(), nullptr);
        const DOMNode* left = LeftWalker()->firstChild();
        const DOMNode* right = RightWalker()->firstChild();
        while (left && right)
        {
            try
            {
                ControlNodeComparison();
            }
            catch (const XMLCompareException&)
            {
                EXPECT_EQ(LeftWalker()->getCurrentNode(), left);
                EXPECT_EQ(RightWalker()->getCurrentNode(), right);
                stops.push_back(left->getNodeName());
            }
            left = LeftWalker()->nextSibling();
            right = RightWalker()->nextSibling();
        }
    }

    std::vector<Nuv::UniString>& stops;
};

TEST(ControlNodeComparison, LeavesTheWalkersOnThePairOfChildrenSoThatAStrategyCanGoOn)
{
    const Document left = Parse("<a><b><x>1</x></b>t<c/><d k='1'/><e/><f/></a>");
    const Document right = Parse("<a><b><x>2</x></b>u<c/><d k='2'/><e><g/></e><f/></a>");
    std::vector<Nuv::UniString> stops;
    GoingOn comparator(stops);
    DoXMLCompare(left.get(), right.get(), &comparator, nullptr, Standard());
    EXPECT_EQ(stops, (std::vector<Nuv::UniString>{u"b", u"#text", u"d", u"e"}));
}

/// Looks ahead with the walkers while it prepares a pair or chooses a comparator, and leaves them there.
class LookingAhead : public Standard
{
  public:
    LookingAhead(DOMTreeWalker& left, DOMTreeWalker& right)
        : leftWalker(left)
        , rightWalker(right)
    {
    }

  protected:
    LookingAhead* Clone() const override { return new LookingAhead(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        leftWalker.lastChild();
        rightWalker.lastChild();
        return new XMLCompareStrictOrder;
    }
    XMLValueComparator* GetValueComparator() const override
    {
        leftWalker.nextSibling();
        rightWalker.nextSibling();
        return new XMLCompareAuto;
    }

  private:
    DOMTreeWalker& leftWalker;
    DOMTreeWalker& rightWalker;
};

TEST(ControlNodeComparison, ComparesThePairWhereverOptionsLeaveTheWalkers)
{
    const Document left = Parse("<a><b><c>x</c><d/></b>t<e>1</e></a>");
    const Document right = Parse("<a><b><c>x</c><d/></b>t<e>2</e></a>");
    const auto compare = [](const Document& one, const Document& other)
    {
        DOMTreeWalker* const oneWalker = NewWalker(one);
        DOMTreeWalker* const otherWalker = NewWalker(other);
        const Nuv::Ref<LookingAhead> options(new LookingAhead(*oneWalker, *otherWalker));
        XMLCompareStrictOrder().CompareNodes(oneWalker, otherWalker, *options);
    };
    EXPECT_THROW(compare(left, right), TextNodeValuesDontMatchException);
    EXPECT_NO_THROW(compare(left, left));
    const Document otherName = Parse("<a><z><c>x</c><d/></z>t<e>1</e></a>");
    EXPECT_THROW(compare(left, otherName), NodeNamesDontMatchException) << "only the last children are equal";
}

/// Looks ahead like LookingAhead, but then fails.
class FailingAhead : public LookingAhead
{
  public:
    using LookingAhead::LookingAhead;

  protected:
    FailingAhead* Clone() const override { return new FailingAhead(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement* left, const DOMElement* right) override
    {
        delete LookingAhead::PrepareNodeComparator(left, right);
        throw NodeNamesDontMatchException(left, right);
    }
    XMLValueComparator* GetValueComparator() const override
    {
        delete LookingAhead::GetValueComparator();
        throw XMLCompareException();
    }
};

TEST(ControlNodeComparison, LeavesTheWalkersOnThePairWhenOptionsMoveThemAndThrow)
{
    const Document left = Parse("<a><b><c/><d/></b>t<e/></a>");
    const Document right = Parse("<a><b><c/><d/></b>t<e/></a>");
    DOMTreeWalker* const leftWalker = NewWalker(left);
    DOMTreeWalker* const rightWalker = NewWalker(right);
    const Nuv::Ref<FailingAhead> options(new FailingAhead(*leftWalker, *rightWalker));
    std::vector<Nuv::UniString> stops;
    GoingOn(stops).CompareNodes(leftWalker, rightWalker, *options);
    EXPECT_EQ(stops, (std::vector<Nuv::UniString>{u"b", u"#text", u"e"}));
}

// Walkers and filters of a caller.

/// Notes the nodes that it is asked about; accepts all of them.
class NotingFilter : public DOMNodeFilter
{
  public:
    FilterAction acceptNode(const DOMNode* node) const override
    {
        asked.push_back(node->getNodeName());
        return FILTER_ACCEPT;
    }

    mutable std::vector<Nuv::UniString> asked;
};

TEST(XMLCompareStrictOrder, AsksACallersFilterAboutTheParentOfEachLastChild)
{
    NotingFilter filter;
    const Document document = Parse("<a><b>x</b></a>");
    Compare(document, document, Standard(), &filter);
    const std::vector<Nuv::UniString> expected{
        u"b",     u"b",     // the first children of a
        u"#text", u"#text", // the first children of b
        u"b",     u"b",     // after the text
        u"a",     u"a",     // after b
    };
    EXPECT_EQ(filter.asked, expected);
}

/// Hides the elements named b, but not what is in them.
class SkippingB : public SkipWhitespaceTextsCompareFilter
{
  public:
    FilterAction acceptNode(const DOMNode* node) const override
    {
        return Nuv::UniString(node->getNodeName()) == u"b" ? FILTER_SKIP : FILTER_ACCEPT;
    }
};

void CompareFirstChildren(const Document& left, const Document& right, DOMNodeFilter* filter,
                          DOMNodeFilter::ShowType show = DOMNodeFilter::SHOW_ALL)
{
    const auto walkerFor = [&](const Document& document)
    {
        DOMElement* const root = document->getDocumentElement();
        DOMTreeWalker* const walker = document->createTreeWalker(root, show, filter, false);
        walker->setCurrentNode(root->getFirstChild());
        return walker;
    };
    const Nuv::Ref<Standard> options(new Standard);
    XMLCompareStrictOrder().CompareNodes(walkerFor(left), walkerFor(right), *options);
}

TEST(XMLCompareStrictOrder, GoesOnBehindAPairThatTheWalkersDoNotShow)
{
    const Document one = Parse("<a><b>x</b>y</a>");
    const Document other = Parse("<a><b>x</b>z</a>");
    SkippingB filter;
    EXPECT_THROW(CompareFirstChildren(one, other, &filter), TextNodeValuesDontMatchException);
    EXPECT_THROW(CompareFirstChildren(one, other, nullptr, DOMNodeFilter::SHOW_TEXT),
                 TextNodeValuesDontMatchException);
    EXPECT_NO_THROW(CompareFirstChildren(one, other, nullptr));
    EXPECT_NO_THROW(CompareFirstChildren(one, one, &filter));
}

/// A walker of a caller, which shows `appendix` behind the last child of every element.
class WalkerWithAppendix : public DOMTreeWalker
{
  public:
    WalkerWithAppendix(DOMTreeWalker& ordinary, DOMNode* behindLastChild)
        : walker(ordinary)
        , appendix(behindLastChild)
    {
    }

    DOMNode* getRoot() override { return walker.getRoot(); }
    DOMNodeFilter::ShowType getWhatToShow() override { return walker.getWhatToShow(); }
    DOMNodeFilter* getFilter() override { return walker.getFilter(); }
    bool getExpandEntityReferences() override { return walker.getExpandEntityReferences(); }
    DOMNode* getCurrentNode() override { return walker.getCurrentNode(); }
    void setCurrentNode(DOMNode* node) override { walker.setCurrentNode(node); }
    DOMNode* parentNode() override { return walker.parentNode(); }
    DOMNode* firstChild() override { return walker.firstChild(); }
    DOMNode* lastChild() override { return walker.lastChild(); }
    DOMNode* previousSibling() override { return walker.previousSibling(); }
    DOMNode* nextSibling() override
    {
        if (walker.getCurrentNode() == appendix)
            return nullptr;
        if (DOMNode* const sibling = walker.nextSibling())
            return sibling;
        walker.setCurrentNode(appendix);
        return appendix;
    }
    DOMNode* previousNode() override { return walker.previousNode(); }
    DOMNode* nextNode() override { return walker.nextNode(); }
    void release() override {}

  private:
    DOMTreeWalker& walker;
    DOMNode* appendix;
};

TEST(XMLCompareStrictOrder, FollowsAWalkerOfTheCaller)
{
    const Document document = Parse("<a>x</a>");
    WalkerWithAppendix left(*NewWalker(document), document->createTextNode(u"1"));
    WalkerWithAppendix same(*NewWalker(document), document->createTextNode(u"1.0"));
    WalkerWithAppendix other(*NewWalker(document), document->createTextNode(u"2"));
    const Nuv::Ref<Standard> options(new Standard);
    EXPECT_NO_THROW(XMLCompareStrictOrder().CompareNodes(&left, &same, *options));
    EXPECT_THROW(XMLCompareStrictOrder().CompareNodes(&left, &other, *options),
                 TextNodeValuesDontMatchException);
}

// Options of a caller.

/// What all clones of one object share: a log of the calls, and which of them throws.
struct Calls
{
    std::vector<std::string> log;
    size_t throwingCall = 0;
    int alive = 0;

    void Note(const char* operation)
    {
        log.push_back(operation);
        if (log.size() == throwingCall)
            throw std::runtime_error(operation);
    }
};

/// An object that counts itself in the Calls it belongs to.
class Counted
{
  public:
    explicit Counted(Calls& sharedCalls)
        : calls(&sharedCalls)
    {
        ++calls->alive;
    }
    Counted(const Counted& other)
        : Counted(*other.calls)
    {
    }
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --calls->alive; }

    Calls* calls;
};

template <class Comparator>
class CountedComparator : public Comparator
{
  public:
    explicit CountedComparator(Calls& calls)
        : counted(calls)
    {
    }

  private:
    Counted counted;
};

/// Replaces every decision; says it in the log.
class WatchedOptions : public Standard
{
  public:
    WatchedOptions(Calls& calls, bool changesForChildren)
        : counted(calls)
        , canChange(changesForChildren)
    {
    }

    double GetDoubleEps() const override
    {
        counted.calls->Note("GetDoubleEps");
        return 0.5;
    }

  protected:
    WatchedOptions* Clone() const override
    {
        counted.calls->Note("Clone");
        return new WatchedOptions(*this);
    }
    bool AcceptAttribute(const DOMAttr*) const override
    {
        counted.calls->Note("AcceptAttribute");
        return true;
    }
    bool AreNodeNamesEqual(const DOMNode*, const DOMNode*) const override
    {
        counted.calls->Note("AreNodeNamesEqual");
        return true;
    }
    void CompareSpecialTypeNodes(const DOMNode*, const DOMNode*) override
    {
        counted.calls->Note("CompareSpecialTypeNodes");
    }
    XMLValueComparator* GetAttributeValueComparator(const DOMAttr*) const override
    {
        counted.calls->Note("GetAttributeValueComparator");
        return new CountedComparator<XMLCompareDouble>(*counted.calls);
    }
    XMLValueComparator* GetValueComparator() const override
    {
        counted.calls->Note("GetValueComparator");
        return new CountedComparator<XMLCompareDouble>(*counted.calls);
    }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        counted.calls->Note("PrepareNodeComparator");
        return new CountedComparator<XMLCompareStrictOrder>(*counted.calls);
    }
    bool CanOptionsChangeAndEffectNotChildNodes() const override
    {
        counted.calls->Note("CanOptionsChangeAndEffectNotChildNodes");
        return canChange;
    }

  private:
    Counted counted;
    bool canChange;
};

void CompareWatched(const Document& left, const Document& right, Calls& calls, bool changesForChildren)
{
    const WatchedOptions options(calls, changesForChildren);
    XMLCompareStrictOrder comparator;
    DoXMLCompare(left.get(), right.get(), &comparator, nullptr, options);
}

TEST(CallersOptions, MakeEveryDecision)
{
    Calls calls;
    CompareWatched(Parse("<a k='1'><b>2</b><!--x--></a>"), Parse("<z k='1.4'><y>2.4</y><!--w--></z>"), calls,
                   true);
    EXPECT_EQ(calls.log, (std::vector<std::string>{
                             "Clone", "PrepareNodeComparator",                                      // a
                             "AreNodeNamesEqual", "AcceptAttribute", "GetAttributeValueComparator", //
                             "GetDoubleEps",                                                        //
                             "CanOptionsChangeAndEffectNotChildNodes", "Clone",                     // b
                             "PrepareNodeComparator", "AreNodeNamesEqual",                          //
                             "GetValueComparator", "GetDoubleEps", "CompareSpecialTypeNodes"}));
    EXPECT_EQ(calls.alive, 0);
}

TEST(CallersOptions, DecideOnAPairOfSpecialNodesAtTheTopToo)
{
    const Document left = Parse("<!--left--><r/>");
    const Document right = Parse("<!--right--><r/>");
    Calls calls;
    const WatchedOptions options(calls, false);
    XMLCompareStrictOrder comparator;
    EXPECT_NO_THROW(
        DoXMLCompare(left->getFirstChild(), right->getFirstChild(), &comparator, nullptr, options));
    EXPECT_EQ(calls.log,
              (std::vector<std::string>{"Clone", "PrepareNodeComparator", "CompareSpecialTypeNodes"}));
}

TEST(CallersOptions, AreGivenEachPairOfElementsLeftFirst)
{
    class Noting : public Standard
    {
      public:
        explicit Noting(std::vector<const DOMNode*>& notes)
            : given(notes)
        {
        }

      protected:
        Noting* Clone() const override { return new Noting(*this); }
        XMLNodeComparator* PrepareNodeComparator(const DOMElement* left, const DOMElement* right) override
        {
            given.insert(given.end(), {left, right});
            return new XMLCompareStrictOrder;
        }

      private:
        std::vector<const DOMNode*>& given;
    };
    const Document left = Parse("<a><b/></a>");
    const Document right = Parse("<a><b/></a>");
    std::vector<const DOMNode*> given;
    Compare(left, right, Noting(given));
    const DOMNode* const leftRoot = left->getDocumentElement();
    const DOMNode* const rightRoot = right->getDocumentElement();
    EXPECT_EQ(given, (std::vector<const DOMNode*>{leftRoot, rightRoot, leftRoot->getFirstChild(),
                                                  rightRoot->getFirstChild()}));
}

TEST(CallersOptions, AreClonedOnceWhenTheyDoNotChange)
{
    Calls calls;
    CompareWatched(Parse("<a><b><c/></b><b/></a>"), Parse("<a><b><c/></b><b/></a>"), calls, false);
    EXPECT_EQ(std::count(calls.log.begin(), calls.log.end(), "Clone"), 1);
    EXPECT_EQ(calls.alive, 0);
}

TEST(CallersOptions, MayThrowInEveryCallWithoutALeak)
{
    const Document left = Parse("<a k='1'><b><c>2</c><d/></b><!--x-->3</a>");
    const Document right = Parse("<a k='1'><b><c>2</c><d/></b><!--x-->3</a>");
    for (const bool changesForChildren : {false, true})
    {
        Calls all;
        CompareWatched(left, right, all, changesForChildren);
        for (size_t i = 1; i <= all.log.size(); ++i)
        {
            Calls calls;
            calls.throwingCall = i;
            EXPECT_THROW(CompareWatched(left, right, calls, changesForChildren), std::runtime_error);
            EXPECT_EQ(calls.alive, 0) << "call " << i << ", " << all.log[i - 1];
        }
    }
}

TEST(CallersOptions, AndAllComparatorsDieWhenADifferenceIsThrown)
{
    for (const bool changesForChildren : {false, true})
    {
        Calls calls;
        EXPECT_THROW(CompareWatched(Parse("<a><b><c>2</c></b></a>"), Parse("<a><b><c>3</c></b></a>"), calls,
                                    changesForChildren),
                     TextNodeValuesDontMatchException);
        EXPECT_EQ(calls.alive, 0);
    }
}

TEST(CallersOptions, DieWithTheFirstPairOfChildrenWhenNobodyHoldsThem)
{
    const Document document = Parse("<a><b/></a>");
    Calls calls;
    auto* const options = new WatchedOptions(calls, false);
    XMLCompareStrictOrder().CompareNodes(NewWalker(document), NewWalker(document), *options);
    EXPECT_EQ(calls.alive, 0);
}

// Slots.

class WithWalkThrough : public XMLCompareStrictOrder
{
  public:
    void WalkThrough() override {}
};

TEST(XMLNodeComparator, HasWalkThroughBeforeItsDestructor)
{
    EXPECT_EQ(NuvTest::SlotOf(&WithWalkThrough::WalkThrough), 0u);
}

// Copies.

TEST(XMLNodeComparator, CanBeCopiedBetweenComparisons)
{
    const Document document = Parse("<a><b/></a>");
    std::vector<Nuv::UniString> stops;
    GoingOn original(stops);
    DoXMLCompare(document.get(), document.get(), &original, nullptr, Standard());
    GoingOn copy(original);
    DoXMLCompare(document.get(), document.get(), &copy, nullptr, Standard());
    XMLCompareStrictOrder assigned;
    assigned = XMLCompareStrictOrder();
    EXPECT_NO_THROW(DoXMLCompare(document.get(), document.get(), &assigned, nullptr, Standard()));
}

// Depth.

constexpr int DeepLevels = 5'000;

std::string DeepText(const std::string& inner)
{
    std::string text;
    for (int i = 0; i < DeepLevels; ++i)
        text += "<a>";
    text += inner;
    for (int i = 0; i < DeepLevels; ++i)
        text += "</a>";
    return text;
}

/// Runs `work` on a thread with a stack of 8 MB, whatever the process has.
void RunOnSmallStack(const std::function<void()>& work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 8 << 20);
    pthread_t thread;
    const auto run = [](void* argument) -> void*
    {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(DoXMLCompare, ComparesDeepTreesOnAnOrdinaryStack)
{
    const Document one = Parse(DeepText("1"));
    const Document other = Parse(DeepText("1.0"));
    RunOnSmallStack([&] { EXPECT_NO_THROW(Compare(one, other)); });
    RunOnSmallStack([&] { EXPECT_NO_THROW(Compare(one, other, AttrRuledCompareOptions())); });
}

TEST(DoXMLCompare, ReportsADifferenceDeepInATree)
{
    const Document one = Parse(DeepText("1"));
    const Document other = Parse(DeepText("2"));
    RunOnSmallStack(
        [&]
        {
            try
            {
                Compare(one, other, AttrRuledCompareOptions());
                ADD_FAILURE() << "no difference";
            }
            catch (const TextNodeValuesDontMatchException& difference)
            {
                EXPECT_EQ(difference.GetNodePath(Left).GetNames().size(), static_cast<size_t>(DeepLevels));
            }
        });
}

/// Notes how far the stack reaches when each pair is prepared.
class StackWatchingOptions : public Standard
{
  public:
    explicit StackWatchingOptions(std::vector<const char*>& positions)
        : stack(positions)
    {
    }

  protected:
    StackWatchingOptions* Clone() const override { return new StackWatchingOptions(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        stack.push_back(static_cast<const char*>(__builtin_frame_address(0)));
        return new XMLCompareStrictOrder;
    }

  private:
    std::vector<const char*>& stack;
};

TEST(DoXMLCompare, UsesLittleStackForALevel)
{
    const Document document = Parse("<a><a><a/></a></a>");
    std::vector<const char*> positions;
    Compare(document, document, StackWatchingOptions(positions));
    ASSERT_EQ(positions.size(), 3u);
    const auto bytes = positions[1] - positions[2];
    RecordProperty("BytesOfStackForALevel", std::to_string(bytes));
    EXPECT_LE(bytes, 1'000);
}

} // namespace
