#include "ToolTest.hpp"

#include <string>
#include <vector>

namespace
{

using namespace ToolTests;
using testing::IsEmpty;

using ValidateTest = ToolTest;

constexpr const char* Schema =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n"
    "<xs:element name='wall'><xs:complexType><xs:attribute name='height' type='xs:int'/></xs:complexType>"
    "</xs:element></xs:schema>";

TEST_F(ValidateTest, FindsNoFaultInAValidDocument)
{
    const ProcessResult result =
        Run({"validate", "--schema", Write("wall.xsd", Schema), Write("1.xml", "<wall height='275'/>")});
    EXPECT_EQ(result.status, Success);
    EXPECT_EQ(result.output, "1 file, no faults\n");
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(ValidateTest, TakesTheSchemaFromStandardInput)
{
    const std::string file = Write("1.xml", "<wall height='high'/>");
    EXPECT_EQ(Run({"validate", "--schema", "-", file}, Schema).status, Findings);
    EXPECT_THAT(Run({"validate", "--schema", "-", file}, "<xs:schema>").errors,
                testing::StartsWith("nuvxml: (standard input):1: "));
}

TEST_F(ValidateTest, FollowsHintsOfTrustedDocuments)
{
    const std::string hinted = Write(
        "hinted.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:h'>"
                      "<xs:import namespace='urn:nowhere'/><xs:element name='e' type='xs:int'/></xs:schema>");
    const std::string file =
        Write("1.xml", "<h:e xmlns:h='urn:h' xsi:schemaLocation='urn:h " + hinted +
                           "' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>x</h:e>");
    const ProcessResult result = Run({"validate", "--trusted", "--schema", Write("wall.xsd", Schema), file});
    EXPECT_EQ(result.status, Findings);
    EXPECT_EQ(result.output, "1.xml:1: value 'x' does not match regular expression facet '[+\\-]?[0-9]+'\n"
                             "1 file, 1 fault in 1\n");
}

TEST_F(ValidateTest, ReadsStandardInputOnce)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"validate", "-", "-"}, {"validate", "--schema", "-", "-"}})
    {
        const ProcessResult result = Run(arguments, "<a/>");
        EXPECT_EQ(result.status, Failure);
        EXPECT_EQ(result.errors, "nuvxml: standard input can be read once only\n");
    }
}

TEST_F(ValidateTest, ShowsEveryFaultOfEveryFileAsCompilersDo)
{
    const ProcessResult result = Run({"validate", "--schema", Write("wall.xsd", Schema),
                                      Write("1.xml", "<wall\nheight='high' width='1'/>"),
                                      Write("2.xml", "<wall/>"), Write("3.xml", "<wall><wall>")});
    EXPECT_EQ(result.status, Findings);
    EXPECT_EQ(result.output,
              "1.xml:2: value 'high' does not match regular expression facet '[+\\-]?[0-9]+'\n"
              "1.xml:2: attribute 'width' is not declared for element 'wall'\n"
              "3.xml:1: input ended before all started tags were ended; last tag started is 'wall'\n"
              "3 files, 3 faults in 2\n");
}

TEST_F(ValidateTest, KeepsAFaultOnOneLineWhateverTheDocumentPutsIntoIt)
{
    const std::string schema =
        Write("wall.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                          "<xs:element name='wall'><xs:simpleType>"
                          "<xs:restriction base='xs:string'><xs:enumeration value='a'/>"
                          "</xs:restriction></xs:simpleType></xs:element></xs:schema>");
    EXPECT_EQ(Run({"validate", "--schema", schema, "-"}, "<wall>b\nx.xml:7: forged</wall>").output,
              "(standard input):2: value 'b\xEF\xBF\xBDx.xml:7: forged' not in enumeration\n"
              "1 file, 1 fault in 1\n");
}

TEST_F(ValidateTest, ValidatesAgainstTheDocumentTypeWithoutASchema)
{
    const ProcessResult result =
        Run({"validate", "-"}, "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b EMPTY>]>\n<a><b/>\n<c/></a>");
    EXPECT_EQ(result.status, Findings);
    EXPECT_EQ(result.output, "(standard input):3: no declaration found for element 'c'\n"
                             "(standard input):3: element 'c' is not allowed for content model '(b)*'\n"
                             "1 file, 2 faults in 1\n");
}

TEST_F(ValidateTest, AsksForWellFormedTextOnlyWhereThereIsNoGrammar)
{
    EXPECT_EQ(Run({"validate", "-"}, "<a/>").status, Success);
    EXPECT_EQ(Run({"validate", "-"}, "<a>").status, Findings);
    EXPECT_EQ(Run({"validate", "-"}, "").status, Findings);
}

TEST_F(ValidateTest, GoesOnBehindAFileThatCannotBeRead)
{
    const ProcessResult result =
        Run({"validate", PathOf("none.xml"), Write("1.xml", "<a/>"), folder.Path().string()});
    EXPECT_EQ(result.status, Failure);
    EXPECT_EQ(result.output, "3 files, no faults, 2 could not be read\n");
    EXPECT_THAT(result.errors, testing::StartsWith("nuvxml: none.xml: No such file or directory\n"));
}

TEST_F(ValidateTest, TellsWhyASchemaCannotBeUsed)
{
    const std::string file = Write("1.xml", "<a/>");
    EXPECT_EQ(Run({"validate", "--schema", PathOf("none.xsd"), file}).errors,
              "nuvxml: none.xsd: Could not open the XML Schema file.\n");
    const ProcessResult result = Run({"validate", "--schema", Write("bad.xsd", "<xs:schema>"), file});
    EXPECT_EQ(result.status, Failure);
    EXPECT_THAT(result.errors, testing::StartsWith("nuvxml: bad.xsd:1: "));
}

} // namespace
