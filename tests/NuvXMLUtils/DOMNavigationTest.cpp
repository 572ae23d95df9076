#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMDocumentFragment.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/dom/DOMUserDataHandler.hpp>

#include <type_traits>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

std::string NameOf(const DOMNode* node) { return node ? Visible(node->getNodeName()) : "null"; }

std::string ShownOrNull(const DOMNode* node) { return node ? ShownNode(node) : "null"; }

// Elements only.

TEST(ElementNavigation, PassesOverEverythingThatIsNoElement)
{
    const Tree tree("<r>t<!--c--><?p d?><a/>t<![CDATA[x]]><!--c--><b/><?p d?>t</r>");
    DOMElement* const a = tree.Find(u"a");
    DOMElement* const b = tree.Find(u"b");
    EXPECT_EQ(GetFirstElementChild(tree.root), a);
    EXPECT_EQ(GetLastElementChild(tree.root), b);
    EXPECT_EQ(GetNextElementSibling(a), b);
    EXPECT_EQ(GetPreviousElementSibling(b), a);
    EXPECT_EQ(GetChildElementCount(tree.root), 2u);
}

TEST(ElementNavigation, GivesNullWhereThereIsNoFurtherElement)
{
    const Tree tree("<r>t<a/><!--c--></r>");
    DOMElement* const a = tree.Find(u"a");
    EXPECT_EQ(GetNextElementSibling(a), nullptr);
    EXPECT_EQ(GetPreviousElementSibling(a), nullptr);
    EXPECT_EQ(GetFirstElementChild(a), nullptr);
    EXPECT_EQ(GetLastElementChild(a), nullptr);
    EXPECT_EQ(GetChildElementCount(a), 0u);
}

TEST(ElementNavigation, DoesNotDescendIntoEntityReferences)
{
    const Tree tree("<!DOCTYPE r [<!ENTITY e '<inner/>'>]><r>&e;<a/>&e;</r>");
    ASSERT_EQ(tree.root->getFirstChild()->getNodeType(), DOMNode::ENTITY_REFERENCE_NODE);
    EXPECT_EQ(NameOf(GetFirstElementChild(tree.root)), "a");
    EXPECT_EQ(NameOf(GetLastElementChild(tree.root)), "a");
    EXPECT_EQ(GetChildElementCount(tree.root), 1u);
}

TEST(ElementNavigation, AgreesWithAPlainWalkInEveryTreeOfSixNodes)
{
    const char* const kinds[] = {"<e/>", "<!--c-->", "<?p d?>", "<![CDATA[x]]>"};
    for (unsigned int number = 0; number < 4 * 4 * 4 * 4 * 4 * 4; ++number)
    {
        std::string xml;
        unsigned int elements = 0;
        for (unsigned int rest = number, i = 0; i < 6; ++i, rest /= 4)
        {
            xml += kinds[rest % 4];
            elements += rest % 4 == 0;
        }
        const Tree tree("<r>" + xml + "</r>");
        ASSERT_EQ(GetChildElementCount(tree.root), elements) << xml;
        unsigned int backwards = 0;
        for (const DOMElement* child = GetLastElementChild(tree.root); child; ++backwards)
            child = GetPreviousElementSibling(child);
        ASSERT_EQ(backwards, elements) << xml;
    }
}

// One step over indentation.

struct Step
{
    DOMNode* node = nullptr;
    DOMElement* element = nullptr;
};

Step FirstChildOf(const DOMNode* node)
{
    Step step;
    GetFirstChild(node, step.node);
    GetFirstChild(node, step.element);
    return step;
}

Step NextSiblingOf(const DOMNode* node)
{
    Step step;
    GetNextSibling(node, step.node);
    GetNextSibling(node, step.element);
    return step;
}

TEST(SingleSkip, PassesOverOneTextNode)
{
    const Tree tree("<r>t<a/>t<b/></r>");
    EXPECT_EQ(FirstChildOf(tree.root).node, tree.Find(u"a"));
    EXPECT_EQ(FirstChildOf(tree.root).element, tree.Find(u"a"));
    EXPECT_EQ(NextSiblingOf(tree.Find(u"a")).node, tree.Find(u"b"));
    EXPECT_EQ(NextSiblingOf(tree.Find(u"a")).element, tree.Find(u"b"));
}

TEST(SingleSkip, NeedsNoTextNode)
{
    const Tree tree("<r><a/><b/></r>");
    EXPECT_EQ(FirstChildOf(tree.root).element, tree.Find(u"a"));
    EXPECT_EQ(NextSiblingOf(tree.Find(u"a")).element, tree.Find(u"b"));
}

TEST(SingleSkip, DoesNotPassOverASecondTextNode)
{
    const Tree tree("<r/>");
    for (const XMLCh* text : {u"1", u"2"})
        tree.root->appendChild(tree.document->createTextNode(text));
    tree.root->appendChild(tree.document->createElement(u"a"));
    EXPECT_EQ(ShownOrNull(FirstChildOf(tree.root).node), "{2}");
    EXPECT_EQ(FirstChildOf(tree.root).element, nullptr);
}

TEST(SingleSkip, DoesNotPassOverAComment)
{
    const Tree tree("<r>t<!--c--><a/>t<!--d--></r>");
    EXPECT_EQ(ShownOrNull(FirstChildOf(tree.root).node), "!c!");
    EXPECT_EQ(FirstChildOf(tree.root).element, nullptr);
    EXPECT_EQ(ShownOrNull(NextSiblingOf(tree.Find(u"a")).node), "!d!");
    EXPECT_EQ(NextSiblingOf(tree.Find(u"a")).element, nullptr);
}

TEST(SingleSkip, DoesNotPassOverACDATASection)
{
    const Tree tree("<r><![CDATA[x]]><a/></r>");
    EXPECT_EQ(ShownOrNull(FirstChildOf(tree.root).node), "[x]");
}

TEST(SingleSkip, SetsNullWhereTheChildrenEnd)
{
    const Tree tree("<r><a>t</a><b/>t</r>");
    Step step{tree.root, tree.root};
    GetFirstChild(tree.Find(u"a"), step.node);
    GetFirstChild(tree.Find(u"a"), step.element);
    EXPECT_EQ(step.node, nullptr);
    EXPECT_EQ(step.element, nullptr);
    step = {tree.root, tree.root};
    GetNextSibling(tree.Find(u"b"), step.node);
    GetNextSibling(tree.Find(u"b"), step.element);
    EXPECT_EQ(step.node, nullptr);
    EXPECT_EQ(step.element, nullptr);
}

TEST(SkipTextNodes, OfANodeStopsAtAComment)
{
    const Tree tree("<r>t<!--c--><a/></r>");
    tree.root->insertBefore(tree.document->createTextNode(u"s"), tree.root->getFirstChild());
    DOMNode* node = tree.root->getFirstChild();
    SkipTextNodes(node);
    EXPECT_EQ(ShownOrNull(node), "!c!");
}

TEST(SkipTextNodes, OfANodeStopsAtACDATASection)
{
    const Tree tree("<r>t<![CDATA[x]]></r>");
    DOMNode* node = tree.root->getFirstChild();
    SkipTextNodes(node);
    EXPECT_EQ(ShownOrNull(node), "[x]");
}

TEST(SkipTextNodes, OfANodeGivesNullWhenOnlyTextIsLeft)
{
    const Tree tree("<r>t</r>");
    DOMNode* node = tree.root->getFirstChild();
    SkipTextNodes(node);
    EXPECT_EQ(node, nullptr);
    SkipTextNodes(node);
    EXPECT_EQ(node, nullptr);
}

/// A variable for elements that holds some other node, as callers of the element form have them.
DOMElement* Disguised(DOMNode* node)
{
    static_assert(std::is_base_of_v<DOMNode, DOMElement>);
    return reinterpret_cast<DOMElement*>(node);
}

TEST(SkipTextNodes, OfAnElementPassesOverEverythingThatIsNoElement)
{
    const Tree tree("<r>t<!--c--><?p d?><![CDATA[x]]><a/></r>");
    for (DOMNode* start = tree.root->getFirstChild(); start; start = start->getNextSibling())
    {
        DOMElement* node = Disguised(start);
        SkipTextNodes(node);
        EXPECT_EQ(node, tree.Find(u"a"));
    }
}

TEST(SkipTextNodes, OfAnElementGivesNullWhenNoElementIsLeft)
{
    const Tree tree("<r>t<!--c--></r>");
    DOMElement* node = Disguised(tree.root->getFirstChild());
    SkipTextNodes(node);
    EXPECT_EQ(node, nullptr);
    SkipTextNodes(node);
    EXPECT_EQ(node, nullptr);
}

TEST(GetNextTag, GivesElementsAndFailsAtAnythingButTextAndComments)
{
    const Tree tree("<r>t<!--c--><a/>\nt<b/>\n<?p d?></r>");
    DOMNode* cursor = tree.root->getFirstChild();
    EXPECT_EQ(GetNextTag(cursor), tree.Find(u"a"));
    EXPECT_EQ(GetNextTag(cursor), tree.Find(u"b"));
    EXPECT_EQ(ConvMessageOf([&] { GetNextTag(cursor); }), "Unexpected XML node");
    EXPECT_EQ(ShownOrNull(cursor), "?p d?");
}

TEST(GetNextTag, FailsAtAnEntityReference)
{
    const Tree tree("<!DOCTYPE r [<!ENTITY e '<inner/>'>]><r>&e;<a/></r>");
    DOMNode* cursor = tree.root->getFirstChild();
    EXPECT_EQ(ConvMessageOf([&] { GetNextTag(cursor); }), "Unexpected XML node");
    EXPECT_EQ(cursor, tree.root->getFirstChild());
}

TEST(GetNextTag, TellsTheLineOfTheUnexpectedNode)
{
    const Tree tree("<r>\n\n<![CDATA[x]]></r>");
    DOMNode* cursor = tree.root->getFirstChild();
    EXPECT_EQ(ConvExceptionOf([&] { GetNextTag(cursor); }).line, 3u);
}

TEST(GetNextTag, GivesNullAtTheEnd)
{
    const Tree tree("<r><a/>t<!--c--></r>");
    DOMNode* cursor = tree.root->getFirstChild();
    EXPECT_EQ(GetNextTag(cursor), tree.Find(u"a"));
    EXPECT_EQ(GetNextTag(cursor), nullptr);
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(GetNextTag(cursor), nullptr);
}

TEST(IsNodeOk, IsAboutElementsOfExactlyTheName)
{
    const Tree tree("<r>t<size/></r>");
    const DOMNode* const size = tree.Find(u"size");
    EXPECT_TRUE(IsNodeOk(size, u"size"));
    EXPECT_TRUE(IsNodeOk(size, "size"));
    EXPECT_FALSE(IsNodeOk(size, u"Size"));
    EXPECT_FALSE(IsNodeOk(size, "siz"));
    EXPECT_FALSE(IsNodeOk(size, u""));
    EXPECT_FALSE(IsNodeOk(tree.root->getFirstChild(), u"#text"));
    EXPECT_FALSE(IsNodeOk(nullptr, u"size"));
    EXPECT_FALSE(IsNodeOk(nullptr, "size"));
}

TEST(IsNodeOk, TakesAnEightBitNameInTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<\xC3\xB6/>");
    EXPECT_TRUE(IsNodeOk(tree.root, Nuv::String("\xF6")));
    EXPECT_FALSE(IsNodeOk(tree.root, Nuv::String("\xC3\xB6")));
}

TEST(IsNodeOk, TakesAnEightBitNameUpToItsFirstZero)
{
    const Tree tree("<size/>");
    EXPECT_TRUE(IsNodeOk(tree.root, Nuv::String("size\0s", 6)));
}

// The sentry.

/// Counts the documents that are released.
class ReleaseCounter : public xercesc_3_0::DOMUserDataHandler
{
  public:
    void handle(DOMOperationType operation, const XMLCh*, void*, const DOMNode*, DOMNode*) override
    {
        count += operation == NODE_DELETED;
    }
    int count = 0;
};

TEST(DOMDocumentSentry, ReleasesItsDocument)
{
    ReleaseCounter counter;
    {
        Tree tree;
        tree.document->setUserData(u"watch", &counter, &counter);
        const DOMDocumentSentry sentry(tree.document.release());
        EXPECT_EQ(counter.count, 0);
    }
    EXPECT_EQ(counter.count, 1);
}

TEST(DOMDocumentSentry, GivesAccessToItsDocument)
{
    Tree tree;
    DOMDocument* const document = tree.document.get();
    DOMDocumentSentry sentry(tree.document.release());
    const DOMDocumentSentry& unchanging = sentry;
    EXPECT_EQ(sentry.operator->(), document);
    EXPECT_EQ(unchanging.operator->(), document);
    EXPECT_EQ(NameOf(sentry->getDocumentElement()), "r");
    static_assert(std::is_same_v<decltype(unchanging.operator->()), const DOMDocument*>);
}

TEST(DOMDocumentSentry, ComparesWithNull)
{
    Tree tree;
    const DOMDocumentSentry empty(nullptr);
    const DOMDocumentSentry full(tree.document.release());
    EXPECT_TRUE(empty == nullptr);
    EXPECT_FALSE(empty != nullptr);
    EXPECT_FALSE(full == nullptr);
    EXPECT_TRUE(full != nullptr);
    EXPECT_TRUE(full != 0);
}

TEST(DOMDocumentSentry, CannotBeCopiedAndHasNoVirtualOperations)
{
    static_assert(!std::is_copy_constructible_v<DOMDocumentSentry>);
    static_assert(!std::is_copy_assignable_v<DOMDocumentSentry>);
    static_assert(!std::is_polymorphic_v<DOMDocumentSentry>);
    static_assert(sizeof(DOMDocumentSentry) == sizeof(DOMDocument*));
}

} // namespace
