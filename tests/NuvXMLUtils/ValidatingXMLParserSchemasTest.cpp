#include "ValidatingXMLParserSupport.hpp"

#include "tests/support/CurrentFolderScope.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <filesystem>
#include <string>
#include <string_view>

namespace
{

using namespace ParserTests;

// Namespaces.

TEST_F(ValidatingXMLParserTest, LeavesPrefixesAloneWithoutASchema)
{
    const Document document = Parse("<p:r xmlns:q='urn:q'><q:a/></p:r>");
    ASSERT_TRUE(document) << report.message;
    const auto* root = document->getDocumentElement();
    EXPECT_EQ(UniString(root->getNodeName()), UniString(u"p:r"));
    EXPECT_EQ(root->getFirstChild()->getNamespaceURI(), nullptr);
    EXPECT_EQ(root->getFirstChild()->getLocalName(), nullptr);
}

TEST_F(ValidatingXMLParserTest, ProcessesNamespacesOnceASchemaIsLoaded)
{
    ASSERT_TRUE(LoadSchema(Schema));
    const Document document = Parse(ValidBySchema);
    ASSERT_TRUE(document) << report.message;
    EXPECT_EQ(UniString(document->getDocumentElement()->getNamespaceURI()), UniString(u"urn:n"));
    EXPECT_EQ(UniString(document->getDocumentElement()->getLocalName()), UniString(u"r"));
    EXPECT_FALSE(Parse("\n<p:r/>"));
    ExpectReport(2, u"prefix 'p' can not be resolved to namespace URI");
}

// Schemas.

TEST_F(ValidatingXMLParserTest, ValidatesAgainstALoadedSchema)
{
    EXPECT_TRUE(LoadSchema(Schema));
    ExpectUntouchedReport();
    ExpectToParse(ValidBySchema);
    EXPECT_FALSE(Parse(InvalidBySchema));
    EXPECT_EQ(report.location.lineNumber, 2u);
}

TEST_F(ValidatingXMLParserTest, ValidatesAgainstASchemaWhateverTheScheme)
{
    ASSERT_TRUE(LoadSchema(Schema));
    for (const auto each : {LineInfoParser::Val_Never, LineInfoParser::Val_Always, LineInfoParser::Val_Auto})
    {
        scheme = each;
        ExpectToParse(ValidBySchema);
        EXPECT_FALSE(Parse(InvalidBySchema));
        EXPECT_FALSE(Parse("<r/>")) << "which no schema declares";
    }
}

TEST_F(ValidatingXMLParserTest, KeepsTheSchemaWhenItsFileIsGone)
{
    ASSERT_TRUE(LoadSchema(Schema));
    std::filesystem::remove(scratch.Path() / "schema.xsd");
    for (int i = 0; i < 3; ++i)
    {
        ExpectToParse(ValidBySchema);
        EXPECT_FALSE(Parse(InvalidBySchema));
        EXPECT_FALSE(Parse("<"));
    }
}

TEST_F(ValidatingXMLParserTest, ValidatesAgainstEverySchemaThatWasLoaded)
{
    ASSERT_TRUE(LoadSchema(Schema));
    ASSERT_TRUE(LoadSchema(Write("other.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                              "<xs:element name='other' type='xs:date'/></xs:schema>")));
    ExpectToParse(ValidBySchema);
    ExpectToParse("<other>2024-02-29</other>");
    EXPECT_FALSE(Parse(InvalidBySchema));
    EXPECT_FALSE(Parse("<other>2023-02-29</other>"));
}

TEST_F(ValidatingXMLParserTest, LoadsASchemaAfterAParse)
{
    ExpectToParse("<r/>");
    EXPECT_FALSE(Parse("<r>"));
    report = Report();
    ASSERT_TRUE(LoadSchema(Schema));
    ExpectUntouchedReport();
    ExpectToParse(ValidBySchema);
}

TEST_F(ValidatingXMLParserTest, LoadsWhatASchemaIncludesFromBesideIt)
{
    // The resolver of entities, for which the current folder counts, belongs to Parse alone.
    ExpectToParse("<r/>");
    std::filesystem::create_directory(scratch.Path() / "sub");
    scratch.Write("sub/part.xsd", Schema);
    EXPECT_TRUE(LoadSchema(Write("sub/whole.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'"
                                                  " targetNamespace='urn:n'>"
                                                  "<xs:include schemaLocation='part.xsd'/></xs:schema>")))
        << report.message;
    ExpectToParse(ValidBySchema);
}

TEST_F(ValidatingXMLParserTest, FollowsAHintToASchemaThatImportsFromNowhere)
{
    const NuvTest::CurrentFolderScope current(scratch.Path());
    scratch.Write("hinted.xsd",
                  "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:h'>"
                  "<xs:import namespace='urn:nowhere'/><xs:import/>"
                  "<xs:element name='e' type='xs:int'/></xs:schema>");
    ASSERT_TRUE(LoadSchema(Schema));
    const auto hintedWith = [](const std::string& content)
    {
        return "<h:e xmlns:h='urn:h' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
               "xsi:schemaLocation='urn:h hinted.xsd'>" +
               content + "</h:e>";
    };
    ExpectToParse(hintedWith("12"));
    EXPECT_FALSE(Parse(hintedWith("twelve")));
    EXPECT_TRUE(report.message.View().find(u"'twelve'") != std::u16string_view::npos) << report.message;
}

TEST_F(ValidatingXMLParserTest, LoadsSchemasWhateverTheirFileName)
{
    for (const char* name : {"a b.xsd", "\u00FC\u20AC.xsd", "%41.xsd"})
    {
        ValidatingXMLParser fresh;
        EXPECT_TRUE(fresh.LoadSchema(Write(name, Schema), &report.location, &report.message))
            << name << ": " << report.message;
    }
}

TEST_F(ValidatingXMLParserTest, ReportsASchemaThatCannotBeOpened)
{
    for (const IO::Location& location :
         {IO::Location(scratch.PathOf("missing.xsd")), IO::Location(scratch.PathOf("")), IO::Location()})
    {
        report = Report();
        EXPECT_FALSE(LoadSchema(location));
        ExpectReport(0, u"Could not open the XML Schema file.");
    }
}

TEST_F(ValidatingXMLParserTest, TellsThatASchemaCouldNotBeLoadedWhichXercesDoesNotFind)
{
    // The system goes up from where the link leads to, Xerces from where it stands.
    std::filesystem::create_directories(scratch.Path() / "there" / "below");
    std::filesystem::create_directory_symlink("there/below", scratch.Path() / "link");
    Write("there/schema.xsd", Schema);
    const NuvTest::CurrentFolderScope current(scratch.Path());
    EXPECT_FALSE(LoadSchema(IO::Location(UniString(u"link/../schema.xsd"))));
    ExpectReport(0, UniString(u"Could not load the XML Schema."));
}

TEST_F(ValidatingXMLParserTest, ReportsASchemaThatMayNotBeRead)
{
    const IO::Location schema = Write("secret.xsd", Schema);
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0777));
    std::filesystem::permissions(scratch.Path() / "secret.xsd", std::filesystem::perms::none);
    const NuvTest::WithoutPrivileges unprivileged;
    EXPECT_FALSE(LoadSchema(schema));
    ExpectReport(0, u"Could not open the XML Schema file.");
}

TEST_F(ValidatingXMLParserTest, ReportsLineAndMessageOfASchemaThatIsNotWellFormed)
{
    EXPECT_FALSE(
        LoadSchema("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n<xs:element>\n</xs:schema>"));
    ExpectReport(3, u"expected end of tag 'xs:element'");
}

TEST_F(ValidatingXMLParserTest, ReportsLineAndMessageOfAFaultInASchema)
{
    EXPECT_FALSE(LoadSchema("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n"
                            "<xs:element name='r' type='xs:nothing'/></xs:schema>"));
    ExpectReport(2, u"type 'http://www.w3.org/2001/XMLSchema:nothing' not found");
}

TEST_F(ValidatingXMLParserTest, ReportsASchemaThatIsNone)
{
    EXPECT_FALSE(LoadSchema("\n<r/>"));
    ExpectReport(2, u"root element name of XML Schema document must be 'schema'");
}

TEST_F(ValidatingXMLParserTest, ChangesNothingWhenASchemaFailsToLoad)
{
    for (const char* schema : {"<", "<r/>"})
    {
        EXPECT_FALSE(LoadSchema(schema));
        ExpectToParse("<p:r/>");
        ExpectToParse(InvalidDocument);
    }
}

TEST_F(ValidatingXMLParserTest, KeepsItsSchemaWhenAnotherFailsToLoad)
{
    ASSERT_TRUE(LoadSchema(Schema));
    for (const char* schema : {"<", "<r/>"})
    {
        EXPECT_FALSE(LoadSchema(schema));
        ExpectToParse(ValidBySchema);
        EXPECT_FALSE(Parse(InvalidBySchema));
    }
}

} // namespace
