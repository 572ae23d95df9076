#include "tests/NuvXMLUtils/BarrenDocument.hpp"
#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <xercesc/dom/DOMText.hpp>

#include <limits>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;
using xercesc_3_0::DOMElement;

// Line ends and indentation.

TEST(WriteNewLine, AppendsCRLF)
{
    const Tree tree;
    EXPECT_TRUE(WriteNewLine(tree.root));
    EXPECT_EQ(Shown(tree.root), "{\\r\\n}");
}

TEST(WriteTabs, AppendsOneTextNodeWithTabs)
{
    const Tree tree;
    EXPECT_TRUE(WriteTabs(tree.root, 3));
    EXPECT_EQ(Shown(tree.root), "{\\t\\t\\t}");
}

TEST(WriteTabs, AppendsAnEmptyTextNodeWithoutAPositiveCount)
{
    const Tree tree;
    EXPECT_TRUE(WriteTabs(tree.root, 0));
    EXPECT_TRUE(WriteTabs(tree.root, -5));
    EXPECT_EQ(Shown(tree.root), "{}{}");
}

TEST(NewLine, AppendsLF)
{
    const Tree tree;
    NewLine(tree.root);
    EXPECT_EQ(Shown(tree.root), "{\\n}");
}

TEST(Tabs, AppendsWhatWriteTabsAppends)
{
    const Tree tree;
    Tabs(tree.root, 2);
    Tabs(tree.root, -1);
    EXPECT_EQ(Shown(tree.root), "{\\t\\t}{}");
}

TEST(WhitespaceWriters, ReportThatThereIsNoTextNode)
{
    BarrenDocument document;
    document.textsToMake = 0;
    EXPECT_FALSE(WriteNewLine(document.root));
    EXPECT_FALSE(WriteTabs(document.root, 1));
    EXPECT_EQ(DOMFailureOf([&] { NewLine(document.root); }), "0: Memory error");
    EXPECT_EQ(DOMFailureOf([&] { Tabs(document.root, 1); }), "0: Memory error");
    EXPECT_EQ(Shown(document.root), "");
}

/// An element that no node can be appended to: it stands in an entity reference.
DOMElement* ReadOnlyElement(const Tree& tree)
{
    return static_cast<DOMElement*>(tree.root->getFirstChild()->getFirstChild());
}

constexpr char WithReadOnlyElement[] = "<!DOCTYPE r [<!ENTITY e '<inner/>'>]><r>&e;</r>";

TEST(WhitespaceWriters, TurnExceptionsOfTheDOMIntoFalseOrLetThemPass)
{
    const Tree tree(WithReadOnlyElement);
    DOMElement* const inner = ReadOnlyElement(tree);
    EXPECT_FALSE(WriteNewLine(inner));
    EXPECT_FALSE(WriteTabs(inner, 1));
    EXPECT_THROW(NewLine(inner), xercesc_3_0::DOMException);
    EXPECT_THROW(Tabs(inner, 1), xercesc_3_0::DOMException);
}

// Values.

TEST(WriteTextElement, WritesAnIndentedElementOnALineOfItsOwn)
{
    const Tree tree;
    EXPECT_TRUE(WriteTextElement(tree.root, u"a", u"x", 2));
    EXPECT_EQ(Shown(tree.root), "{\\t\\t}a({x}){\\r\\n}");
}

TEST(WriteTextElement, WritesAnEmptyTextNodeForAnEmptyValue)
{
    const Tree tree;
    EXPECT_TRUE(WriteTextElement(tree.root, "a", "", 0));
    EXPECT_EQ(Shown(tree.root), "{}a({}){\\r\\n}");
}

TEST(WriteTextElement, TakesEightBitTextInTheLocalCodePageUpToItsFirstZero)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    EXPECT_TRUE(WriteTextElement(tree.root,
                                 Nuv::String("gr\xF6\xDF"
                                             "e\0x",
                                             7),
                                 Nuv::String("\x80\0x", 3), 0));
    EXPECT_EQ(Shown(tree.root), "{}größe({€}){\\r\\n}");
}

TEST(WriteTextElement, AddsNothingForANameThatXMLForbids)
{
    const Tree tree;
    for (const char16_t* name : {u"", u"1", u"a b", u"<"})
        EXPECT_FALSE(WriteTextElement(tree.root, name, u"x", 1));
    EXPECT_FALSE(WriteTextElement(tree.root, "a b", "x", 1));
    EXPECT_EQ(Shown(tree.root), "");
}

TEST(WriteTextElement, AddsNothingWhenANodeIsNotMade)
{
    BarrenDocument document;
    document.textsToMake = 0;
    EXPECT_FALSE(WriteTextElement(document.root, u"a", u"x", 1));
    document.makesElements = false;
    EXPECT_FALSE(WriteTextElement(document.root, u"a", u"x", 1));
    EXPECT_EQ(Shown(document.root), "");
}

TEST(WriteTextElement, DoesNotReportThatIndentationAndLineEndAreNotMade)
{
    BarrenDocument document;
    document.textsToMake = 1;
    EXPECT_TRUE(WriteTextElement(document.root, u"a", u"x", 1));
    EXPECT_EQ(Shown(document.root), "a({x})");
}

TEST(WriteTextElement, ReportsAParentThatTakesNoChildren)
{
    const Tree tree(WithReadOnlyElement);
    EXPECT_FALSE(WriteTextElement(ReadOnlyElement(tree), u"a", u"x", 1));
}

TEST(NumberWriters, WriteDecimalNumbers)
{
    const Tree tree;
    EXPECT_TRUE(WriteShortElement(tree.root, u"short", std::numeric_limits<short>::min(), 1));
    EXPECT_TRUE(WriteUShortElement(tree.root, u"ushort", std::numeric_limits<unsigned short>::max(), 1));
    EXPECT_TRUE(WriteLongElement(tree.root, u"long", -1, 1));
    EXPECT_TRUE(WriteULongElement(tree.root, u"ulong", 4294967295u, 1));
    EXPECT_TRUE(WriteBooleanElement(tree.root, u"true", true, 1));
    EXPECT_TRUE(WriteBooleanElement(tree.root, u"false", false, 1));
    EXPECT_EQ(Shown(tree.root), "{\\t}short({-32768}){\\r\\n}"
                                "{\\t}ushort({65535}){\\r\\n}"
                                "{\\t}long({-1}){\\r\\n}"
                                "{\\t}ulong({4294967295}){\\r\\n}"
                                "{\\t}true({1}){\\r\\n}"
                                "{\\t}false({0}){\\r\\n}");
}

TEST(NumberWriters, TakeEightBitNames)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    EXPECT_TRUE(WriteShortElement(tree.root, "s\xF6", 32767, 0));
    EXPECT_TRUE(WriteUShortElement(tree.root, "us\xF6", 0, 0));
    EXPECT_TRUE(WriteLongElement(tree.root, "l\xF6", -2147483647 - 1, 0));
    EXPECT_TRUE(WriteULongElement(tree.root, "ul\xF6", 0, 0));
    EXPECT_TRUE(WriteBooleanElement(tree.root, "b\xF6", true, 0));
    EXPECT_EQ(Shown(tree.root), "{}sö({32767}){\\r\\n}"
                                "{}usö({0}){\\r\\n}"
                                "{}lö({-2147483648}){\\r\\n}"
                                "{}ulö({0}){\\r\\n}"
                                "{}bö({1}){\\r\\n}");
}

TEST(NumberWriters, AddNothingForANameThatXMLForbids)
{
    const Tree tree;
    EXPECT_FALSE(WriteShortElement(tree.root, u"-", 1, 0));
    EXPECT_FALSE(WriteUShortElement(tree.root, u"-", 1, 0));
    EXPECT_FALSE(WriteLongElement(tree.root, "-", 1, 0));
    EXPECT_FALSE(WriteULongElement(tree.root, "-", 1, 0));
    EXPECT_FALSE(WriteBooleanElement(tree.root, u"-", true, 0));
    EXPECT_EQ(Shown(tree.root), "");
}

// Structure.

TEST(StructureWriters, IndentTheEndTagOfAnElementWithChildren)
{
    const Tree tree;
    DOMElement* child = nullptr;
    ASSERT_TRUE(BeginWriteElement(tree.root, child, u"list"));
    EXPECT_TRUE(WriteLongElement(child, u"item", 5, 2));
    EXPECT_EQ(Shown(tree.root), "");
    EXPECT_TRUE(EndWriteElement(tree.root, child, 1));
    EXPECT_EQ(Shown(tree.root), "{\\t}list({\\r\\n}{\\t\\t}item({5}){\\r\\n}{\\t}){\\r\\n}");
}

TEST(StructureWriters, WriteAnElementWithoutChildrenOnTwoLines)
{
    const Tree tree;
    DOMElement* child = nullptr;
    ASSERT_TRUE(BeginWriteElement(tree.root, child, "list"));
    EXPECT_TRUE(EndWriteElement(tree.root, child, 1));
    EXPECT_EQ(Shown(tree.root), "{\\t}list({\\r\\n}{\\t}){\\r\\n}");
}

TEST(BeginWriteElement, TakesAnEightBitNameInTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    DOMElement* child = nullptr;
    ASSERT_TRUE(BeginWriteElement(tree.root, child, "\xF6"));
    EXPECT_EQ(ShownNode(child), "ö({\\r\\n})");
}

TEST(BeginWriteElement, LetsTheExceptionForAForbiddenNamePass)
{
    const Tree tree;
    DOMElement* child = tree.root;
    EXPECT_THROW(BeginWriteElement(tree.root, child, u"a b"), xercesc_3_0::DOMException);
    EXPECT_THROW(BeginWriteElement(tree.root, child, "a b"), xercesc_3_0::DOMException);
    EXPECT_EQ(child, tree.root);
}

TEST(BeginWriteElement, ReportsThatANodeIsNotMade)
{
    BarrenDocument document;
    DOMElement* child = nullptr;
    document.textsToMake = 0;
    EXPECT_FALSE(BeginWriteElement(document.root, child, u"a"));
    EXPECT_NE(child, nullptr);
    document.makesElements = false;
    EXPECT_FALSE(BeginWriteElement(document.root, child, u"a"));
    EXPECT_EQ(child, nullptr);
}

TEST(EndWriteElement, ReportsAChildThatCannotBeAppended)
{
    const Tree tree("<r><a/></r>");
    EXPECT_FALSE(EndWriteElement(tree.Find(u"a"), tree.root, 0));
}

TEST(EndWriteElement, ReportsThatTheLineEndIsNotMade)
{
    BarrenDocument document;
    DOMElement* child = nullptr;
    ASSERT_TRUE(BeginWriteElement(document.root, child, u"a"));
    document.textsToMake = 0;
    EXPECT_FALSE(EndWriteElement(document.root, child, 1));
    EXPECT_EQ(Shown(document.root), "a({\\r\\n})");
}

// Style sheet.

TEST(WriteStyleSheet, StandsBeforeTheDocumentElement)
{
    const Tree tree("<!--c--><r/>");
    EXPECT_TRUE(WriteStyleSheet(tree.document.get(), "style.xsl"));
    EXPECT_EQ(Shown(tree.document.get()), "!c!?xml-stylesheet type=\"text/xsl\" href=\"style.xsl\" ?r()");
}

TEST(WriteStyleSheet, StandsAtTheEndWhereThereIsNoDocumentElement)
{
    const Tree tree("<!--c--><r/>");
    tree.document->removeChild(tree.root)->release();
    EXPECT_TRUE(WriteStyleSheet(tree.document.get(), "s"));
    EXPECT_EQ(Shown(tree.document.get()), "!c!?xml-stylesheet type=\"text/xsl\" href=\"s\" ?");
}

TEST(WriteStyleSheet, InsertsTheReferenceAsItStands)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    EXPECT_TRUE(WriteStyleSheet(tree.document.get(), "\x80&\"%s"));
    EXPECT_EQ(Shown(tree.document.get()), "?xml-stylesheet type=\"text/xsl\" href=\"€&\"%s\" ?r()");
}

TEST(WriteStyleSheet, RejectsMoreThan487BytesOfReference)
{
    const Tree tree;
    EXPECT_FALSE(WriteStyleSheet(tree.document.get(), std::string(488, 'x').c_str()));
    EXPECT_FALSE(WriteStyleSheet(tree.document.get(), nullptr));
    EXPECT_EQ(Shown(tree.document.get()), "r()");
    const std::string longest(487, 'x');
    EXPECT_TRUE(WriteStyleSheet(tree.document.get(), longest.c_str()));
    EXPECT_EQ(Shown(tree.document.get()), "?xml-stylesheet type=\"text/xsl\" href=\"" + longest + "\" ?r()");
}

TEST(WriteStyleSheet, ReportsThatTheInstructionIsNotMade)
{
    BarrenDocument document;
    EXPECT_FALSE(WriteStyleSheet(&document, "s"));
    document.refusesInstructions = true;
    EXPECT_FALSE(WriteStyleSheet(&document, "s"));
    EXPECT_EQ(Shown(&document), "r()");
}

} // namespace
