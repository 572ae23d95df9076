#include "CompareSupport.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <type_traits>

namespace
{

using namespace CompareTests;
using namespace NuvXML;

constexpr auto OtherThanLeft = static_cast<Side>(7);

struct TwoDocuments
{
    Document left = Parse("<a><b k='1'>x</b><!--note--></a>");
    Document right = Parse("<c><d k='2'>y</d><!--note--></c>");

    const DOMElement* LeftB() const { return left->getDocumentElement()->getFirstElementChild(); }
    const DOMElement* RightD() const { return right->getDocumentElement()->getFirstElementChild(); }
    const DOMNode* LeftText() const { return LeftB()->getFirstChild(); }
    const DOMNode* RightText() const { return RightD()->getFirstChild(); }
    const DOMAttr* LeftK() const { return LeftB()->getAttributeNode(u"k"); }
    const DOMAttr* RightK() const { return RightD()->getAttributeNode(u"k"); }
};

TEST(XMLCompareException, TellsAnUndefinedProblemAtBothNodes)
{
    const TwoDocuments documents;
    EXPECT_EQ(XMLCompareException(documents.LeftB(), documents.RightD()).GetText(),
              u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tUndefined problem.");
}

TEST(XMLCompareException, HasGetTextBehindItsDestructor)
{
    EXPECT_EQ(NuvTest::SlotOf(&XMLCompareException::GetText), 2u);
    EXPECT_EQ(NuvTest::SlotOf(&OneNodeIsElementOneIsTextException::GetText), 2u);
}

TEST(XMLCompareException, HasEmptyPathsByDefaultAndForNullNodes)
{
    for (const XMLCompareException& difference :
         {XMLCompareException(), XMLCompareException(nullptr, nullptr)})
    {
        EXPECT_TRUE(difference.GetNodePath(Left).IsEmpty());
        EXPECT_TRUE(difference.GetNodePath(Right).IsEmpty());
        EXPECT_EQ(difference.GetText(), u"Diff at nodes:\n\t- \n\t- \n\tUndefined problem.");
    }
}

TEST(XMLCompareException, GivesTheNamesFromTheDocumentElementDownAsNodePath)
{
    const TwoDocuments documents;
    const XMLCompareException difference(documents.LeftText(), documents.RightD());
    IO::RelativeLocation expected{IO::Name(u"a")};
    expected.AppendToLocal(IO::Name(u"b"));
    expected.AppendToLocal(IO::Name(u"#text"));
    EXPECT_EQ(difference.GetNodePath(Left), expected);
    EXPECT_EQ(difference.GetNodePathUniString(Left), u"a/b/#text");
    EXPECT_EQ(difference.GetNodePathUniString(Right), u"c/d");
}

TEST(XMLCompareException, TakesEverySideOtherThanZeroForTheRight)
{
    const TwoDocuments documents;
    const XMLCompareException difference(documents.LeftB(), documents.RightD());
    EXPECT_EQ(difference.GetNodePath(OtherThanLeft), difference.GetNodePath(Right));
    EXPECT_EQ(difference.GetNodePathUniString(OtherThanLeft), u"c/d");
}

TEST(XMLCompareException, IsNoExceptionOfTheHostOrOfTheStandardLibrary)
{
    EXPECT_FALSE((std::is_base_of_v<Nuv::NuvException, XMLCompareException>));
    EXPECT_FALSE((std::is_base_of_v<std::exception, XMLCompareException>));
    EXPECT_THROW(
        {
            try
            {
                throw NoElementsInDocumentException(Left);
            }
            catch (const Nuv::NuvException&)
            {
            }
        },
        XMLCompareException);
}

TEST(XMLCompareException, StaysValidWhenTheDocumentsAreGone)
{
    const auto difference = []
    {
        const TwoDocuments documents;
        return AttributesDontMatchException(documents.LeftB(), documents.RightD(), documents.LeftK(),
                                            documents.RightK());
    }();
    EXPECT_EQ(difference.GetText(),
              u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tValues of attribute \"k\" don't match: \"1\" and \"2\".");
}

TEST(XMLCompareException, CopiesEveryFieldWhenAssigned)
{
    const TwoDocuments documents;
    const TextNodeValuesDontMatchException original(documents.LeftText(), documents.RightText());
    TextNodeValuesDontMatchException assigned(documents.RightText(), documents.LeftText());
    assigned = original;
    EXPECT_EQ(assigned.GetText(), original.GetText());
    EXPECT_EQ(TextNodeValuesDontMatchException(original).GetText(), original.GetText());
}

TEST(XMLCompareException, ShowsCharactersThatTheLocalCodePageLacksAsQuestionMarksInItsTextOnly)
{
    const NuvTest::LocalCodePageScope codePage("windows-1252");
    const auto left = Parse("<a>\xCE\xB1\xC3\xA9</a>"); // alpha, e acute
    const auto right = Parse("<a/>");
    const OneNodeIsElementOneIsTextException difference(left->getDocumentElement()->getFirstChild(),
                                                        right->getDocumentElement());
    EXPECT_EQ(difference.GetText(),
              u"Node type mismatch at nodes:\n\t- a/#text\n\t- a\n\tOne node is Element, the other is "
              u"Text.\n\tThe value of the text is \"?\u00E9\".");
    EXPECT_EQ(difference.GetTextValue(), u"\u03B1\u00E9");
}

TEST(AttributeMissingException, TellsTheAttributeAndTheSideThatLacksIt)
{
    const TwoDocuments documents;
    const AttributeMissingException onRight(documents.LeftB(), documents.RightD(), documents.LeftK(), Right);
    EXPECT_EQ(onRight.GetText(),
              u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tMissing attribute \"k\" on the right.");
    EXPECT_EQ(onRight.GetAttributeName(), u"k");
    EXPECT_EQ(onRight.GetWhereItIsMissing(), Right);
    const AttributeMissingException onLeft(documents.LeftB(), documents.RightD(), documents.RightK(), Left);
    EXPECT_EQ(onLeft.GetText(), u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tMissing attribute \"k\" on the left.");
    EXPECT_EQ(onLeft.GetWhereItIsMissing(), Left);
    const AttributeMissingException onOther(documents.LeftB(), documents.RightD(), documents.LeftK(),
                                            OtherThanLeft);
    EXPECT_EQ(onOther.GetText(), onRight.GetText());
    EXPECT_EQ(onOther.GetWhereItIsMissing(), OtherThanLeft);
}

TEST(AttributesDontMatchException, TellsTheAttributeAndBothValues)
{
    const TwoDocuments documents;
    const AttributesDontMatchException difference(documents.LeftB(), documents.RightD(), documents.LeftK(),
                                                  documents.RightK());
    EXPECT_EQ(difference.GetText(),
              u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tValues of attribute \"k\" don't match: \"1\" and \"2\".");
    EXPECT_EQ(difference.GetAttributeName(), u"k");
    EXPECT_EQ(difference.GetAttributeValue(Left), u"1");
    EXPECT_EQ(difference.GetAttributeValue(Right), u"2");
    EXPECT_EQ(difference.GetAttributeValue(OtherThanLeft), u"2");
}

TEST(AttributesDontMatchException, TakesTheNameOfTheLeftAttribute)
{
    const TwoDocuments documents;
    DOMAttr* const other = documents.right->createAttribute(u"other");
    other->setValue(u"3");
    const AttributesDontMatchException difference(documents.LeftB(), documents.RightD(), documents.LeftK(),
                                                  other);
    EXPECT_EQ(difference.GetAttributeName(), u"k");
    EXPECT_EQ(difference.GetAttributeValue(Right), u"3");
}

TEST(NodeNamesDontMatchException, TellsBothNodes)
{
    const TwoDocuments documents;
    EXPECT_EQ(NodeNamesDontMatchException(documents.LeftB(), documents.RightD()).GetText(),
              u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tNode names don't match.");
}

TEST(NodeTypesDontMatchException, TellsBothTypes)
{
    const TwoDocuments documents;
    const NodeTypesDontMatchException difference(documents.LeftText(),
                                                 documents.right->getDocumentElement()->getLastChild());
    EXPECT_EQ(
        difference.GetText(),
        u"Node type mismatch at nodes:\n\t- a/b/#text\n\t- c/#comment\n\tThe nodes are not the same "
        u"type.\n\tLeft node is type 3 and the right node is type 8 (see enum \"NodeType\" for their "
        u"meaning).\n\tYou can skip these node types by rejecting themin the NodeFilter object given to "
        u"the TreeWalker.");
    EXPECT_EQ(difference.GetNodeType(Left), DOMNode::TEXT_NODE);
    EXPECT_EQ(difference.GetNodeType(Right), DOMNode::COMMENT_NODE);
    EXPECT_EQ(difference.GetNodeType(OtherThanLeft), DOMNode::COMMENT_NODE);
}

TEST(NotSupportedNodeTypesException, TellsBothTypes)
{
    const TwoDocuments documents;
    const NotSupportedNodeTypesException difference(documents.left->getDocumentElement()->getLastChild(),
                                                    documents.RightText());
    EXPECT_EQ(difference.GetText(),
              u"Node type error at nodes:\n\t- a/#comment\n\t- c/d/#text\n\tNot both nodes are supported for "
              u"comparison:\n\tLeft node is type 8 and the right node is type 3 (see enum \"NodeType\" for "
              u"their meaning).\n\tYou can skip these node types by rejecting themin the NodeFilter object "
              u"given to the TreeWalker.");
    EXPECT_EQ(difference.GetNodeType(Left), DOMNode::COMMENT_NODE);
    EXPECT_EQ(difference.GetNodeType(OtherThanLeft), DOMNode::TEXT_NODE);
}

TEST(OneNodeHasMoreChildrenThanTheOtherException, TellsTheSideWithMoreChildren)
{
    const TwoDocuments documents;
    const auto textFor = [&](Side side)
    {
        return OneNodeHasMoreChildrenThanTheOtherException(documents.LeftB(), documents.RightD(), side)
            .GetText();
    };
    EXPECT_EQ(textFor(Left), u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tThe node on the left has more children.");
    EXPECT_EQ(textFor(Right),
              u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tThe node on the right has more children.");
    EXPECT_EQ(textFor(OtherThanLeft), textFor(Right));
    for (const Side side : {Left, Right, OtherThanLeft})
        EXPECT_EQ(OneNodeHasMoreChildrenThanTheOtherException(documents.LeftB(), documents.RightD(), side)
                      .GetWhichHasMoreChildren(),
                  side);
}

TEST(OneNodeIsElementOneIsTextException, TellsTheTextWhicheverSideItIsOn)
{
    const TwoDocuments documents;
    const OneNodeIsElementOneIsTextException textLeft(documents.LeftText(), documents.RightD());
    EXPECT_EQ(textLeft.GetText(), u"Node type mismatch at nodes:\n\t- a/b/#text\n\t- c/d\n\tOne node is "
                                  u"Element, the other is Text.\n\tThe value of the text is \"x\".");
    EXPECT_EQ(textLeft.GetTextValue(), u"x");
    const OneNodeIsElementOneIsTextException textRight(documents.LeftB(), documents.RightText());
    EXPECT_EQ(textRight.GetText(), u"Node type mismatch at nodes:\n\t- a/b\n\t- c/d/#text\n\tOne node is "
                                   u"Element, the other is Text.\n\tThe value of the text is \"y\".");
    EXPECT_EQ(textRight.GetTextValue(), u"y");
}

TEST(OneNodeIsElementOneIsTextException, IsCaughtAsAMismatchOfNodeTypes)
{
    const TwoDocuments documents;
    try
    {
        throw OneNodeIsElementOneIsTextException(documents.LeftB(), documents.RightText());
    }
    catch (const NodeTypesDontMatchException& difference)
    {
        EXPECT_EQ(difference.GetNodeType(Left), DOMNode::ELEMENT_NODE);
        EXPECT_EQ(difference.GetNodeType(Right), DOMNode::TEXT_NODE);
    }
}

TEST(TextNodeValuesDontMatchException, TellsBothValuesAtTheParents)
{
    const TwoDocuments documents;
    const TextNodeValuesDontMatchException difference(documents.LeftText(), documents.RightText());
    EXPECT_EQ(difference.GetText(),
              u"Diff at nodes:\n\t- a/b\n\t- c/d\n\tText node values \"x\" and \"y\" don't match.");
    EXPECT_EQ(difference.GetTextNodeValue(Left), u"x");
    EXPECT_EQ(difference.GetTextNodeValue(Right), u"y");
    EXPECT_EQ(difference.GetTextNodeValue(OtherThanLeft), u"y");
}

TEST(TextNodeValuesDontMatchException, HasEmptyPathsForTextsWithoutParents)
{
    const Document document = EmptyDocument();
    const TextNodeValuesDontMatchException difference(document->createTextNode(u"x"),
                                                      document->createTextNode(u"y"));
    EXPECT_EQ(difference.GetText(),
              u"Diff at nodes:\n\t- \n\t- \n\tText node values \"x\" and \"y\" don't match.");
}

TEST(NoElementsInDocumentException, TellsTheSideAndHasEmptyPaths)
{
    EXPECT_EQ(NoElementsInDocumentException(Left).GetText(),
              u"There is no valid element in the XML-document on the left.");
    EXPECT_EQ(NoElementsInDocumentException(Right).GetText(),
              u"There is no valid element in the XML-document on the right.");
    EXPECT_EQ(NoElementsInDocumentException(OtherThanLeft).GetText(),
              u"There is no valid element in the XML-document on the right.");
    EXPECT_TRUE(NoElementsInDocumentException(Right).GetNodePath(Right).IsEmpty());
}

} // namespace
