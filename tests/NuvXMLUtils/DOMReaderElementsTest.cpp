#include "DOMReaderSupport.hpp"

#include <xercesc/dom/DOM.hpp>

#include <string>

namespace
{

using namespace ReaderTests;
using xercesc_3_0::DOMNode;

constexpr int NotFound = -7003;

// Starts of elements.

TEST(DOMReader, FindsAnElementAmongTheChildren)
{
    TextReader reader("<r>t<a/><b><c/></b></r>");
    EXPECT_EQ(reader.ReadStartElement("b"), 0);
    EXPECT_EQ(PlaceOf(reader), "<b");
    EXPECT_EQ(reader.ReadStartElement("c"), 0);
    EXPECT_EQ(PlaceOf(reader), "<c");
}

TEST(DOMReader, FindsSiblingsInAnyOrder)
{
    TextReader reader("<r><a/><b/></r>");
    EXPECT_EQ(reader.ReadStartElement("b"), 0);
    EXPECT_EQ(reader.ReadEndElement("b"), 0);
    EXPECT_EQ(reader.ReadStartElement("a"), 0);
    EXPECT_EQ(PlaceOf(reader), "<a");
}

TEST(DOMReader, FindsTheNextSiblingOfAName)
{
    TextReader reader("<r><a i='1'/><b/><a i='2'/><c/><a i='3'/></r>");
    for (const int expected : {1, 2, 3, 1, 2})
    {
        int i = 0;
        ASSERT_EQ(reader.ReadStartElement("a"), 0);
        ASSERT_EQ(reader.ReadXMLAttr("i", i), 0);
        EXPECT_EQ(i, expected);
        ASSERT_EQ(reader.ReadEndElement("a"), 0);
    }
}

TEST(DOMReader, FindsTheOnlySiblingAgain)
{
    TextReader reader("<r><a/></r>");
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(reader.ReadStartElement("a"), 0);
        EXPECT_EQ(reader.ReadEndElement("a"), 0);
    }
    EXPECT_EQ(reader.ReadEndElement("r"), 0);
    EXPECT_EQ(reader.ReadStartElement("r"), 0);
    EXPECT_EQ(PlaceOf(reader), "<r");
}

TEST(DOMReader, LooksOnAStartAmongTheChildrenAndOnAnEndAmongTheSiblings)
{
    TextReader reader("<r><a><b/></a><c/></r>");
    ASSERT_EQ(reader.ReadStartElement("a"), 0);
    EXPECT_EQ(reader.ReadStartElement("c"), NotFound);
    EXPECT_EQ(reader.ReadStartElement("a"), NotFound);
    ASSERT_EQ(reader.ReadEndElement("a"), 0);
    EXPECT_EQ(reader.ReadStartElement("b"), NotFound);
    EXPECT_EQ(reader.ReadStartElement("r"), NotFound);
    EXPECT_EQ(reader.ReadStartElement("c"), 0);
}

TEST(DOMReader, StaysWhereItIsWhenAnElementIsNotFound)
{
    TextReader reader("<r><a/><b/></r>");
    const DOMNode* root = reader.GetActualNode();
    EXPECT_EQ(reader.ReadStartElement("x"), NotFound);
    EXPECT_EQ(reader.GetActualNode(), root);
    EXPECT_EQ(reader.GetTokenType(), XMLStartElement);
    ASSERT_EQ(reader.ReadStartElement("b"), 0);
    ASSERT_EQ(reader.ReadEndElement("b"), 0);
    EXPECT_EQ(reader.ReadStartElement("x"), NotFound);
    EXPECT_EQ(PlaceOf(reader), ">b");
    EXPECT_TRUE(MessagesOf(reader).empty());
    EXPECT_EQ(reader.GetErrorStatus(), XMLIChannel::NoError);
}

TEST(DOMReader, FindsNothingInAnEmptyElement)
{
    TextReader reader("<r>text</r>");
    EXPECT_EQ(reader.ReadStartElement("a"), NotFound);
    EXPECT_EQ(reader.ReadStartElement(nullptr), NotFound);
    EXPECT_EQ(PlaceOf(reader), "<r");
}

TEST(DOMReader, FindsAnyElementWithoutAName)
{
    TextReader reader("<r>t<a/><b/></r>");
    EXPECT_EQ(reader.ReadStartElement(nullptr), 0);
    EXPECT_EQ(PlaceOf(reader), "<a");
    ASSERT_EQ(reader.ReadEndElement("a"), 0);
    EXPECT_EQ(reader.ReadStartElement(nullptr), 0);
    EXPECT_EQ(PlaceOf(reader), "<b");
    ASSERT_EQ(reader.ReadEndElement("b"), 0);
    EXPECT_EQ(reader.ReadStartElement(nullptr), 0);
    EXPECT_EQ(PlaceOf(reader), "<a") << "the first one follows the last";
}

TEST(DOMReader, ComparesNamesExactly)
{
    TextReader reader("<r><Abc/></r>");
    for (const char* name : {"abc", "ABC", "Ab", "Abcd", "", " Abc"})
        EXPECT_EQ(reader.ReadStartElement(name), NotFound) << name;
    EXPECT_EQ(reader.ReadStartElement("Abc"), 0);
}

TEST(DOMReader, FindsNamesOfAnyLength)
{
    for (const size_t length : {1u, 62u, 63u, 64u, 65u, 1000u})
    {
        const std::string name(length, 'n');
        std::string text("<r><");
        text.append(name).append("x/><").append(name).append("/></r>");
        TextReader reader(text);
        ASSERT_EQ(reader.ReadStartElement(name.c_str()), 0) << length;
        EXPECT_EQ(PlaceOf(reader).substr(1), name);
        EXPECT_EQ(reader.ReadEndElement(name.c_str()), 0) << length;
    }
}

// Ends of elements.

TEST(DOMReader, ClosesTheElementOnWhoseStartItStands)
{
    TextReader reader("<r><x><a/></x></r>");
    ASSERT_EQ(reader.ReadStartElement("x"), 0);
    EXPECT_EQ(reader.ReadEndElement("x"), 0);
    EXPECT_EQ(PlaceOf(reader), ">x");
    EXPECT_EQ(reader.ReadEndElement("x"), 0) << "it stands on that end";
    EXPECT_EQ(PlaceOf(reader), ">x");
}

TEST(DOMReader, ClosesAnElementFromInside)
{
    TextReader reader("<r><a><b><c/></b></a></r>");
    reader.ReadStartElement("a");
    reader.ReadStartElement("b");
    reader.ReadStartElement("c");
    EXPECT_EQ(reader.ReadEndElement("a"), 0);
    EXPECT_EQ(PlaceOf(reader), ">a");
    EXPECT_EQ(reader.ReadEndElement("r"), 0);
    EXPECT_EQ(PlaceOf(reader), ">r");
}

TEST(DOMReader, ClosesTheInnermostElementOfAName)
{
    TextReader reader("<r><a i='1'><a i='2'><b/></a></a></r>");
    reader.ReadStartElement("a");
    reader.ReadStartElement("a");
    reader.ReadStartElement("b");
    ASSERT_EQ(reader.ReadEndElement("a"), 0);
    int i = 0;
    EXPECT_EQ(reader.ReadXMLAttr("i", i), 0);
    EXPECT_EQ(i, 2);
}

TEST(DOMReader, StaysWhereItIsWhenNoOpenElementHasTheName)
{
    TextReader reader("<r><a><b/></a><x/></r>");
    reader.ReadStartElement("a");
    for (const char* name : {"x", "b", "A", ""})
        EXPECT_EQ(reader.ReadEndElement(name), NotFound) << name;
    EXPECT_EQ(PlaceOf(reader), "<a");
    ASSERT_EQ(reader.ReadEndElement("a"), 0);
    EXPECT_EQ(reader.ReadEndElement("x"), NotFound);
    EXPECT_EQ(PlaceOf(reader), ">a");
    EXPECT_TRUE(MessagesOf(reader).empty());
    EXPECT_EQ(reader.GetErrorStatus(), XMLIChannel::NoError);
}

TEST(DOMReader, NeverClosesAnElementWithoutAName)
{
    TextReader reader("<r><a/></r>");
    EXPECT_EQ(reader.ReadEndElement(nullptr), NotFound);
    EXPECT_EQ(PlaceOf(reader), "<r");
    reader.ReadStartElement("a");
    EXPECT_EQ(reader.ReadEndElement(nullptr), NotFound);
    EXPECT_EQ(PlaceOf(reader), "<a");
    EXPECT_EQ(reader.GetErrorStatus(), XMLIChannel::NoError);
}

} // namespace
