#include "NuvXMLUtils/LoadDocument.hpp"

#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace
{

using namespace NuvTest;
using NuvXML::LoadDocument;
using NuvXML::Loaded;
using NuvXML::LoadSettings;
using xercesc_3_0::DOMNode;
using Parser = ValidatingXMLParser::LineInfoParser;

static_assert(!std::is_convertible_v<Loaded, bool>, "only where a condition is meant");
static_assert(std::is_nothrow_move_constructible_v<Loaded> && !std::is_copy_constructible_v<Loaded>);

const xercesc_3_0::DOMElement* RootOf(const Loaded& loaded) { return loaded.document->getDocumentElement(); }

Nuv::UniString RootText(const Loaded& loaded) { return RootOf(loaded)->getTextContent(); }

IO::Location At(const ScratchFolder& folder, const char* name) { return IO::Location(folder.PathOf(name)); }

DOMNode::NodeType FirstKind(const Loaded& loaded) { return RootOf(loaded)->getFirstChild()->getNodeType(); }

TEST(LoadDocument, LoadsADocumentWithTheLineOfEachNode)
{
    const Loaded loaded = LoadDocument("<Wall>\n  <Height>275</Height>\n</Wall>");
    ASSERT_TRUE(loaded);
    const auto* height = RootOf(loaded)->getFirstElementChild();
    EXPECT_EQ(Nuv::UniString(height->getTextContent()), u"275");
    EXPECT_EQ(loaded.lines.Find(height)->lineNumber, 2u);
    EXPECT_TRUE(loaded.reason.IsEmpty());
    EXPECT_EQ(loaded.place.lineNumber, 0u);
}

TEST(LoadDocument, SaysWhereAndWhyItFails)
{
    const Loaded loaded = LoadDocument("<Wall>\n  <Height>275</Heigth>\n</Wall>");
    EXPECT_FALSE(loaded);
    EXPECT_EQ(loaded.document, nullptr);
    EXPECT_EQ(loaded.place.lineNumber, 2u);
    EXPECT_FALSE(loaded.reason.IsEmpty());
}

TEST(LoadDocument, RefusesAnEmptyText) { EXPECT_FALSE(LoadDocument("")); }

TEST(LoadDocument, KeepsItsLinesWhenItIsMoved)
{
    Loaded loaded = LoadDocument("<a>\n<b/></a>");
    const auto* b = RootOf(loaded)->getFirstElementChild();
    const NodeLocationInfo* const line = loaded.lines.Find(b);
    const Loaded moved = std::move(loaded);
    EXPECT_EQ(moved.lines.Find(b), line);
    EXPECT_EQ(moved.lines.Find(b)->lineNumber, 2u);
}

TEST(LoadDocument, ReadsTheEncodingThatBytesDeclare)
{
    EXPECT_EQ(RootText(LoadDocument("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>")), u"\u00E9");
    EXPECT_EQ(RootText(LoadDocument("<a>\xC3\xA9</a>")), u"\u00E9");
}

TEST(LoadDocument, ReadsUTF16WhateverItDeclares)
{
    EXPECT_EQ(RootText(LoadDocument(u"<?xml version='1.0' encoding='UTF-8'?><a>\u00E9</a>")), u"\u00E9");
    EXPECT_EQ(RootText(LoadDocument(Nuv::UniString(u"<a>\u20AC</a>"))), u"\u20AC");
}

TEST(LoadDocument, LoadsAFile)
{
    const ScratchFolder folder;
    const IO::Location file(folder.Write("wall.xml", "<Wall/>"));
    const Loaded loaded = LoadDocument(file);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(Nuv::UniString(loaded.document->getDocumentURI()), file.ToURL());
}

TEST(LoadDocument, SaysThatAFileIsMissing)
{
    const ScratchFolder folder;
    const Loaded loaded = LoadDocument(At(folder, "none.xml"));
    EXPECT_FALSE(loaded);
    EXPECT_FALSE(loaded.reason.IsEmpty());
}

TEST(LoadDocument, NamesATextInMemory)
{
    EXPECT_EQ(Nuv::UniString(LoadDocument("<a/>", {.name = u"wall.xml"}).document->getDocumentURI()),
              u"wall.xml");
}

TEST(LoadDocument, ValidatesWhenItIsAskedTo)
{
    constexpr std::string_view invalid = "<!DOCTYPE a [<!ELEMENT a EMPTY>]><a><b/></a>";
    EXPECT_TRUE(LoadDocument(invalid));
    EXPECT_FALSE(LoadDocument(invalid, {.validation = Parser::Val_Auto}));
}

TEST(LoadDocument, ValidatesAgainstASchema)
{
    const ScratchFolder folder;
    const LoadSettings settings{
        .schema = IO::Location(folder.Write("a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                                     "<xs:element name='a' type='xs:int'/></xs:schema>"))};
    EXPECT_TRUE(LoadDocument("<a>1</a>", settings));
    EXPECT_FALSE(LoadDocument("<a>one</a>", settings));
}

TEST(LoadDocument, FailsWithoutItsSchema)
{
    const ScratchFolder folder;
    const Loaded loaded = LoadDocument("<a/>", {.schema = At(folder, "none.xsd")});
    EXPECT_FALSE(loaded);
    EXPECT_EQ(loaded.reason, u"Could not open the XML Schema file.");
}

TEST(LoadDocument, TrustsNoDocumentUnlessItIsTold)
{
    std::string deep;
    for (const char* tag : {"<a>", "</a>"})
        for (size_t level = 0; level <= ParserLimits::SafeNesting; ++level)
            deep += tag;
    EXPECT_FALSE(LoadDocument(deep));
    EXPECT_TRUE(LoadDocument(deep, {.limits = ParserLimits()}));
}

TEST(LoadDocument, KeepsOrLeavesOutCommentsAndSections)
{
    constexpr std::string_view text = "<a><!--c--><![CDATA[t]]></a>";
    EXPECT_EQ(FirstKind(LoadDocument(text)), DOMNode::COMMENT_NODE);
    EXPECT_EQ(FirstKind(LoadDocument(text, {.nodes = {.comments = false}})), DOMNode::CDATA_SECTION_NODE);
    EXPECT_EQ(FirstKind(LoadDocument(text, {.nodes = {.cdataSections = false, .comments = false}})),
              DOMNode::TEXT_NODE);
}

TEST(LoadDocument, KeepsEntityReferencesWhenItIsAskedTo)
{
    constexpr std::string_view text = "<!DOCTYPE a [<!ENTITY e 'text'>]><a>&e;</a>";
    EXPECT_EQ(FirstKind(LoadDocument(text)), DOMNode::TEXT_NODE);
    EXPECT_EQ(FirstKind(LoadDocument(text, {.entityReferences = true})), DOMNode::ENTITY_REFERENCE_NODE);
}

} // namespace
