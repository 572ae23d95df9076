#include "ValidatingXMLParserSupport.hpp"

#include "tests/support/CurrentFolderScope.hpp"
#include "tests/support/XercesLeakScope.hpp"

#include <filesystem>
#include <string>

namespace
{

using namespace ParserTests;

constexpr char TwoEntities[] = "<!DOCTYPE r [<!ENTITY e 'one'>]><r>&e;two</r>";

TEST_F(ValidatingXMLParserTest, PutsEntityReferenceNodesIntoTheTree)
{
    createEntityRefNodes = true;
    const Document document = Parse(TwoEntities);
    ASSERT_TRUE(document) << report.message;
    const DOMNode* reference = document->getDocumentElement()->getFirstChild();
    EXPECT_EQ(reference->getNodeType(), DOMNode::ENTITY_REFERENCE_NODE);
    EXPECT_EQ(RootTextOf(document), UniString(u"onetwo"));
}

TEST_F(ValidatingXMLParserTest, PutsTheContentOfEntitiesIntoTheTree)
{
    createEntityRefNodes = true;
    Parse(TwoEntities);
    createEntityRefNodes = false;
    const Document document = Parse(TwoEntities);
    ASSERT_TRUE(document) << report.message;
    const DOMNode* text = document->getDocumentElement()->getFirstChild();
    EXPECT_EQ(UniString(text->getNodeValue()), UniString(u"onetwo"));
}

TEST_F(ValidatingXMLParserTest, ReadsEntitiesRelativeToTheCurrentFolder)
{
    std::filesystem::create_directory(scratch.Path() / "sub");
    scratch.Write("part.ent", "here");
    scratch.Write("sub/part.ent", "beside the document");
    const NuvTest::CurrentFolderScope current(scratch.Path());
    const char text[] = "<!DOCTYPE r [<!ENTITY e SYSTEM 'part.ent'><!ENTITY f SYSTEM './sub/../part.ent'>]>"
                        "<r>&e;&f;</r>";
    EXPECT_EQ(RootTextOf(ParseFile(Write("sub/a.xml", text))), UniString(u"herehere"));
    EXPECT_EQ(RootTextOf(Parse(text)), UniString(u"herehere"));
}

TEST_F(ValidatingXMLParserTest, ReadsEntitiesOfFilesWhateverTheirName)
{
    const NuvTest::CurrentFolderScope current(scratch.Path());
    for (const char* name : {"a b.ent", "%41.ent", "\u00FC\u20AC.ent", "a%20b.ent"})
    {
        scratch.Write(name, "text");
        const Document document =
            Parse("<!DOCTYPE r [<!ENTITY e SYSTEM '" + std::string(name) + "'>]><r>&e;</r>");
        EXPECT_EQ(RootTextOf(document), UniString(u"text")) << name << ": " << report.message;
    }
}

TEST_F(ValidatingXMLParserTest, ReadsEntitiesByAbsolutePathAndURL)
{
    const IO::Location part = Write("part.ent", "text");
    for (const std::string& systemId : {part.ToPath().ToUTF8(), part.ToURL().ToUTF8()})
    {
        const Document document = Parse("<!DOCTYPE r [<!ENTITY e SYSTEM '" + systemId + "'>]><r>&e;</r>");
        EXPECT_EQ(RootTextOf(document), UniString(u"text")) << systemId << ": " << report.message;
    }
}

TEST_F(ValidatingXMLParserTest, IgnoresPublicIds)
{
    scratch.Write("part.ent", "text");
    const NuvTest::CurrentFolderScope current(scratch.Path());
    const Document document = Parse("<!DOCTYPE r [<!ENTITY e PUBLIC '-//N//P//EN' 'part.ent'>]><r>&e;</r>");
    EXPECT_EQ(RootTextOf(document), UniString(u"text"));
}

TEST_F(ValidatingXMLParserTest, ReadsTheExternalDTD)
{
    const NuvTest::XercesLeakScope leaks;
    scratch.Write("r.dtd", "<!ELEMENT r (#PCDATA)>\n<!ENTITY e 'text'>");
    const NuvTest::CurrentFolderScope current(scratch.Path());
    EXPECT_EQ(RootTextOf(Parse("<!DOCTYPE r SYSTEM 'r.dtd'><r>&e;</r>")), UniString(u"text"));
    scheme = LineInfoParser::Val_Always;
    EXPECT_FALSE(Parse("<!DOCTYPE r SYSTEM 'r.dtd'>\n<r><a/></r>"));
    ExpectReport(2, u"no declaration found for element 'a'");
}

TEST_F(ValidatingXMLParserTest, ReportsAMissingEntity)
{
    const NuvTest::CurrentFolderScope current(scratch.Path());
    EXPECT_FALSE(Parse("<!DOCTYPE r [<!ENTITY e SYSTEM 'missing.ent'>]>\n<r>\n&e;</r>"));
    const IO::Location missing(scratch.PathOf("missing.ent"));
    ExpectReport(3, UniString(u"unable to open external entity '") + missing.ToURL() + u"'");
}

TEST_F(ValidatingXMLParserTest, LeavesOtherURLsToXerces)
{
    // Nothing listens on that port; the file library would have looked for a file.
    EXPECT_FALSE(Parse("<!DOCTYPE r [<!ENTITY e SYSTEM 'http://127.0.0.1:1/e'>]>\n<r>&e;</r>"));
    EXPECT_EQ(report.location.lineNumber, 2u);
    EXPECT_EQ(report.message.View().find(u"unable to open external entity"), report.message.View().npos);
}

TEST_F(ValidatingXMLParserTest, ReportsAnEntityWhoseURLXercesDoesNotUnderstand)
{
    EXPECT_FALSE(Parse("<!DOCTYPE r [<!ENTITY e SYSTEM 'gopher://host/e'>]>\n<r>&e;</r>"));
    ExpectReport(2, u"URL protocol 'gopher' is unsupported");
}

} // namespace
