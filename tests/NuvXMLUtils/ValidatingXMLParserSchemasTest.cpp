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

// Schemas that are loaded again.

/// Lets elements `name` of a namespace hold a type.
std::string SchemaOf(const std::string& space, const std::string& name, const std::string& type,
                     const std::string& imports = {})
{
    return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:b='urn:b' targetNamespace='" +
           space + "'>" + imports + "<xs:element name='" + name + "' type='" + type + "'/></xs:schema>";
}

const std::string ImportOfB = "<xs:import namespace='urn:b' schemaLocation='b.xsd'/>";

/// A schema for urn:b with a type t.
std::string TypeOfB(const std::string& base)
{
    return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:b'><xs:simpleType "
           "name='t'>"
           "<xs:restriction base='" +
           base + "'/></xs:simpleType></xs:schema>";
}

constexpr char Integer[] = "<e xmlns='urn:a'>12</e>";
constexpr char Date[] = "<e xmlns='urn:a'>2024-02-29</e>";

/// Names of files are relative to its folder, which is the current one.
class SchemasLoadedAgain : public ValidatingXMLParserTest
{
  protected:
    bool Load(const char* name) { return LoadSchema(IO::Location(UniString(name))); }

    void ExpectOnly(const char* valid, const char* invalid)
    {
        ExpectToParse(valid);
        EXPECT_FALSE(Parse(invalid));
    }

    NuvTest::CurrentFolderScope current{scratch.Path()};
};

TEST_F(SchemasLoadedAgain, AreReplacedWhenTheirFileHasChanged)
{
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:int"));
    ASSERT_TRUE(Load("a.xsd"));
    ExpectOnly(Integer, Date);
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:date"));
    ExpectOnly(Integer, Date);
    EXPECT_TRUE(Load("a.xsd")) << report.message;
    ExpectOnly(Date, Integer);
    scratch.Write("a.xsd", SchemaOf("urn:other", "e", "xs:date"));
    EXPECT_TRUE(Load("a.xsd")) << report.message;
    ExpectOnly("<e xmlns='urn:other'>2024-02-29</e>", Date);
}

TEST_F(SchemasLoadedAgain, AreReplacedByAnotherFileForTheirNamespace)
{
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:int"));
    scratch.Write("b.xsd", SchemaOf("urn:b", "e", "xs:int"));
    scratch.Write("new.xsd", SchemaOf("urn:a", "e", "xs:date"));
    for (const char* name : {"a.xsd", "b.xsd", "new.xsd"})
        EXPECT_TRUE(Load(name)) << report.message;
    ExpectOnly(Date, Integer);
    ExpectOnly("<e xmlns='urn:b'>12</e>", "<e xmlns='urn:b'>twelve</e>");
}

TEST_F(SchemasLoadedAgain, ReadTheirImportsAgain)
{
    scratch.Write("b.xsd", TypeOfB("xs:int"));
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "b:t", ImportOfB));
    ASSERT_TRUE(Load("a.xsd")) << report.message;
    ExpectOnly(Integer, Date);
    scratch.Write("b.xsd", TypeOfB("xs:date"));
    EXPECT_TRUE(Load("a.xsd")) << report.message;
    ExpectOnly(Date, Integer);
}

TEST_F(SchemasLoadedAgain, TakeThePlaceOfWhatOthersImport)
{
    scratch.Write("b.xsd", TypeOfB("xs:int"));
    scratch.Write("new.xsd", TypeOfB("xs:date"));
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "b:t", ImportOfB));
    ASSERT_TRUE(Load("a.xsd")) << report.message;
    EXPECT_TRUE(Load("new.xsd")) << report.message;
    ExpectOnly(Date, Integer);
}

TEST_F(SchemasLoadedAgain, TakeThePlaceOfWhatOthersImportNow)
{
    scratch.Write("b.xsd", TypeOfB("xs:int"));
    scratch.Write("new.xsd", TypeOfB("xs:date"));
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:int"));
    ASSERT_TRUE(Load("a.xsd")) << report.message;
    ASSERT_TRUE(Load("new.xsd")) << report.message;
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "b:t", ImportOfB));
    EXPECT_TRUE(Load("new.xsd")) << report.message;
    ExpectOnly(Date, Integer);
}

TEST_F(SchemasLoadedAgain, UseThoseBeforeThemForImportsFromNowhere)
{
    scratch.Write("b.xsd", TypeOfB("xs:int"));
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "b:t", "<xs:import namespace='urn:b'/>"));
    for (const char* name : {"b.xsd", "a.xsd", "a.xsd", "b.xsd"})
        EXPECT_TRUE(Load(name)) << report.message;
    ExpectOnly(Integer, Date);
}

TEST_F(SchemasLoadedAgain, AreReadFromTheSameFileInAnotherCurrentFolder)
{
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:int"));
    scratch.Write("b.xsd", SchemaOf("urn:b", "e", "xs:int"));
    ASSERT_TRUE(Load("b.xsd") && Load("a.xsd"));
    const IO::Location changed(scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:date")));
    const NuvTest::CurrentFolderScope elsewhere("/");
    EXPECT_TRUE(LoadSchema(changed)) << report.message;
    ExpectOnly(Date, Integer);
    ExpectToParse("<e xmlns='urn:b'>12</e>");
}

TEST_F(SchemasLoadedAgain, MayHaveFailedBefore)
{
    for (const char* damaged :
         {"<", "<r/>", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:nothing/>"})
    {
        scratch.Write("b.xsd", damaged);
        scratch.Write("a.xsd", SchemaOf("urn:a", "e", "b:t", ImportOfB));
        EXPECT_FALSE(Load("a.xsd"));
        scratch.Write("b.xsd", TypeOfB("xs:int"));
        EXPECT_TRUE(Load("a.xsd")) << report.message;
        ExpectOnly(Integer, Date);
    }
}

TEST_F(SchemasLoadedAgain, StayAsTheyWereWhenOneIsDamaged)
{
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:int"));
    ASSERT_TRUE(Load("a.xsd"));
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "\n b:nothing"));
    EXPECT_FALSE(Load("a.xsd"));
    EXPECT_EQ(report.location.lineNumber, 2U);
    ExpectOnly(Integer, Date);
}

TEST_F(SchemasLoadedAgain, StayAsTheyWereWhenOneCannotBeReadAgain)
{
    scratch.Write("c.xsd", SchemaOf("urn:c", "e", "xs:int"));
    scratch.Write("b.xsd", SchemaOf("urn:b", "e", "xs:int"));
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:int"));
    ASSERT_TRUE(Load("b.xsd") && Load("a.xsd"));
    std::filesystem::remove(scratch.Path() / "b.xsd");
    scratch.Write("new.xsd",
                  SchemaOf("urn:a", "e", "xs:date", "<xs:import namespace='urn:c' schemaLocation='c.xsd'/>"));
    EXPECT_FALSE(Load("new.xsd"));
    ExpectReport(0, UniString(u"Could not load the XML Schema."));
    ExpectOnly(Integer, Date);
    ExpectOnly("<e xmlns='urn:b'>12</e>", "<e xmlns='urn:c'>12</e>");
}

TEST_F(SchemasLoadedAgain, AreNotReadForAnotherNamespace)
{
    scratch.Write("a.xsd", SchemaOf("urn:a", "e", "xs:int"));
    scratch.Write("b.xsd", SchemaOf("urn:b", "e", "xs:int"));
    ASSERT_TRUE(Load("a.xsd"));
    std::filesystem::remove(scratch.Path() / "a.xsd");
    EXPECT_TRUE(Load("b.xsd")) << report.message;
    ExpectOnly(Integer, Date);
    ExpectToParse("<e xmlns='urn:b'>12</e>");
}

} // namespace
