#include "ToolTest.hpp"

#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace ToolTests;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class CompareTest : public ToolTest
{
  protected:
    /// Compares two texts with some options.
    ProcessResult Compare(std::string_view left, std::string_view right,
                          std::vector<std::string> options = {})
    {
        options.insert(options.begin(), {"compare", Write("left.xml", left), Write("right.xml", right)});
        return Run(options);
    }

    int StatusOf(std::string_view left, std::string_view right, const std::vector<std::string>& options = {})
    {
        return Compare(left, right, options).status;
    }
};

constexpr const char* Project = "<Project>\n"
                                "  <Storey/>\n"
                                "  <Storey>\n"
                                "    <Wall height='275'/>\n"
                                "    <Wall height='300'/>\n"
                                "  </Storey>\n"
                                "</Project>\n";
constexpr const char* HigherProject = "<Project>\n"
                                      "  <Storey/>\n"
                                      "  <Storey>\n"
                                      "    <Wall height='275'/>\n"
                                      "    <Wall\n"
                                      "      height='310'/>\n"
                                      "  </Storey>\n"
                                      "</Project>\n";

TEST_F(CompareTest, SaysNothingOfEqualFiles)
{
    const ProcessResult result = Compare(Project, "<project><storey/><Storey><Wall height='275.0'/>"
                                                  "<Wall height='300'/></Storey></project>");
    EXPECT_EQ(result.status, Success);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(CompareTest, ShowsTheReportAndBothPlacesOfADifference)
{
    const ProcessResult result = Compare(Project, HigherProject);
    EXPECT_EQ(result.status, Findings);
    EXPECT_EQ(result.output, "Diff at nodes:\n"
                             "\t- Project/Storey/Wall\n"
                             "\t- Project/Storey/Wall\n"
                             "\tValues of attribute \"height\" don't match: \"300\" and \"310\".\n"
                             "left.xml:5: /Project/Storey[2]/Wall[2]/@height\n"
                             "    <Wall height='300'/>\n"
                             "right.xml:6: /Project/Storey[2]/Wall[2]/@height\n"
                             "    height='310'/>\n");
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(CompareTest, ShowsTheLineOnWhichLongTextBeginsToDiffer)
{
    const ProcessResult result =
        Compare("<Note>\n  first\n  second\n  third\n</Note>", "<Note>first\n  second\n  fourth\n</Note>");
    EXPECT_THAT(result.output, HasSubstr("left.xml:4: /Note/text()\n    third\n"));
    EXPECT_THAT(result.output, HasSubstr("right.xml:3: /Note/text()\n    fourth\n"));
}

TEST_F(CompareTest, ShowsTheFirstDifferenceUnlessAllAreAskedFor)
{
    constexpr const char* Left = "<a x='1' y='2'><b>3</b><c/></a>";
    constexpr const char* Right = "<a x='4' y='5'><b>6</b></a>";
    EXPECT_THAT(Compare(Left, Right).output, testing::Not(HasSubstr("\"y\"")));
    const std::string all = Compare(Left, Right, {"--all"}).output;
    EXPECT_THAT(all, HasSubstr("Values of attribute \"x\" don't match: \"1\" and \"4\"."));
    EXPECT_THAT(all, HasSubstr("Values of attribute \"y\" don't match: \"2\" and \"5\"."));
    EXPECT_THAT(all, HasSubstr("Text node values \"3\" and \"6\" don't match."));
    EXPECT_THAT(all, HasSubstr("The node on the left has more children.\nleft.xml:1: /a/c\n"));
}

TEST_F(CompareTest, IsSilentWhenAskedToBe)
{
    for (const char* option : {"--quiet", "-q"})
    {
        const ProcessResult result = Compare(Project, HigherProject, {option});
        EXPECT_EQ(result.status, Findings);
        EXPECT_THAT(result.output, IsEmpty());
    }
}

TEST_F(CompareTest, AllowsNumbersTheDifferenceThatIsGiven)
{
    EXPECT_EQ(StatusOf("<a>1</a>", "<a>1.000001</a>"), Success);
    EXPECT_EQ(StatusOf("<a>1</a>", "<a>1.001</a>"), Findings);
    EXPECT_EQ(StatusOf("<a>1</a>", "<a>1.001</a>", {"--eps", "0.01"}), Success);
    EXPECT_EQ(StatusOf("<a>1</a>", "<a>1.000001</a>", {"--eps=0"}), Findings);
}

TEST_F(CompareTest, RefusesADifferenceThatIsNoNumber)
{
    for (const char* epsilon : {"-1", "nan", "inf", "1,5", "x"})
    {
        const ProcessResult result = Compare("<a/>", "<a/>", {std::string("--eps=") + epsilon});
        EXPECT_EQ(result.status, Failure) << epsilon;
        EXPECT_THAT(result.errors, StartsWith("--eps: must be a number that is not negative\n")) << epsilon;
    }
}

TEST_F(CompareTest, ObeysTheMarkersOfTheDocumentsWhenAskedTo)
{
    constexpr const char* Left = "<a nuv_eps='0.5'><b>1</b><c nuv_type='string'>1</c></a>";
    EXPECT_EQ(StatusOf(Left, "<a nuv_eps='0.5'><b>1.2</b><c nuv_type='string'>1</c></a>"), Findings);
    EXPECT_EQ(StatusOf(Left, "<a nuv_eps='0.5'><b>1.2</b><c nuv_type='string'>1</c></a>", {"--by-markers"}),
              Success);
    EXPECT_EQ(StatusOf(Left, "<a nuv_eps='0.5'><b>1.2</b><c nuv_type='string'>1.0</c></a>", {"--by-markers"}),
              Findings);
}

TEST_F(CompareTest, IgnoresAttributesOfTheNamesGiven)
{
    constexpr const char* Left = "<a saved='now' id='1' x='1'/>";
    constexpr const char* Right = "<a saved='then' id='2' x='1'/>";
    EXPECT_EQ(StatusOf(Left, Right), Findings);
    EXPECT_EQ(StatusOf(Left, Right, {"--ignore-attribute", "saved"}), Findings);
    EXPECT_EQ(StatusOf(Left, Right, {"--ignore-attribute", "saved", "--ignore-attribute", "id"}), Success);
    EXPECT_EQ(StatusOf(Left, "<a x='1'/>", {"--ignore-attribute", "saved", "--ignore-attribute", "id"}),
              Success);
}

TEST_F(CompareTest, TakesAnIgnoredAttributeBeforeTheFiles)
{
    const ProcessResult result = Run({"compare", "--ignore-attribute", "saved",
                                      Write("1.xml", "<a saved='1'/>"), Write("2.xml", "<a saved='2'/>")});
    EXPECT_EQ(result.status, Success);
}

TEST_F(CompareTest, RegardsCaseWhenAskedTo)
{
    EXPECT_EQ(StatusOf("<a b='X'>y</a>", "<A b='x'>Y</A>"), Success);
    EXPECT_EQ(StatusOf("<a/>", "<A/>", {"--case-sensitive"}), Findings);
    EXPECT_EQ(StatusOf("<a b='X'/>", "<a b='x'/>", {"--case-sensitive"}), Findings);
    EXPECT_EQ(StatusOf("<a>y</a>", "<a>Y</a>", {"--case-sensitive"}), Findings);
    EXPECT_EQ(StatusOf("<a b='2'> y </a>", "<a b='2.0'>y</a>", {"--case-sensitive"}), Success);
    EXPECT_EQ(StatusOf("<a nuv_type='string'>y</a>", "<a nuv_type='string'>Y</a>",
                       {"--case-sensitive", "--by-markers"}),
              Findings);
}

TEST_F(CompareTest, ComparesWhiteSpaceBetweenElementsWhenAskedTo)
{
    EXPECT_EQ(StatusOf("<a> <b/></a>", "<a><b/></a>"), Success);
    EXPECT_EQ(StatusOf("<a> <b/></a>", "<a><b/></a>", {"--keep-whitespace"}), Findings);
    EXPECT_EQ(StatusOf("<a><!--c--> <b/></a>", "<a> <b/></a>", {"--keep-whitespace"}), Success);
}

TEST_F(CompareTest, ComparesCommentsAndInstructionsWhenAskedTo)
{
    const std::vector<std::string> comments{"--comments"};
    EXPECT_EQ(StatusOf("<a><!--b--></a>", "<a><!--c--></a>"), Success);
    EXPECT_EQ(StatusOf("<a>1<!--b-->2<?p?>3</a>", "<a>123</a>"), Success);
    EXPECT_EQ(StatusOf("<a><!--b--></a>", "<a><!--c--></a>", comments), Findings);
    EXPECT_EQ(StatusOf("<a><!-- b --></a>", "<a>\n<!--B--></a>", comments), Success);
    EXPECT_EQ(StatusOf("<a><!--b--></a>", "<a/>", comments), Findings);
    EXPECT_EQ(StatusOf("<a><?p x?></a>", "<a><?p x?></a>", comments), Success);
    EXPECT_EQ(StatusOf("<a><?p x?></a>", "<a><?p y?></a>", comments), Findings);
    EXPECT_EQ(StatusOf("<a><?p x?></a>", "<a><?q x?></a>", comments), Findings);
}

TEST_F(CompareTest, ComparesCommentsOutsideTheDocumentElement)
{
    const std::vector<std::string> comments{"--comments"};
    EXPECT_EQ(StatusOf("<!--b--><?p x?><a/><!--e-->", "<a/>"), Success);
    EXPECT_EQ(StatusOf("<!--b--><?p x?><a/><!--e-->", "<!-- B --><?p x?>\n<a/>\n<!--e-->", comments),
              Success);
    EXPECT_EQ(StatusOf("<!--b--><a/>", "<!--c--><a/>", comments), Findings);
    EXPECT_EQ(StatusOf("<?p x?><a/>", "<?q x?><a/>", comments), Findings);
    EXPECT_EQ(StatusOf("<!--b--><a/>", "<?b?><a/>", comments), Findings);
    EXPECT_EQ(StatusOf("<!--b--><a/>", "<a/><!--b-->", comments), Findings);
    EXPECT_EQ(StatusOf("<a/><!--e-->", "<a/>", comments), Findings);
    EXPECT_EQ(StatusOf("<a/><!--e-->", "<a/><!--f-->", comments), Findings);
}

TEST_F(CompareTest, ReportsDifferencesOutsideInDocumentOrder)
{
    const auto kindsOf = [&](const std::vector<std::string>& more)
    {
        std::vector<std::string> options{"--comments", "--format", "json"};
        options.insert(options.end(), more.begin(), more.end());
        std::string kinds;
        std::istringstream objects(Compare("<!--b--><a x='1'/><!--e-->", "<?b?><a x='2'/>", options).output);
        for (std::string line; std::getline(objects, line);)
            kinds += nlohmann::json::parse(line)["kind"].get<std::string>() + " ";
        return kinds;
    };
    EXPECT_EQ(kindsOf({"--all"}), "node-type attribute-value more-children ");
    EXPECT_EQ(kindsOf({}), "node-type ");
}

TEST_F(CompareTest, ComparesDocumentsOfAnyDepth)
{
    const auto nested = [](const std::string& innermost)
    {
        std::string text;
        for (const char* tag : {"<a>", "</a>"})
        {
            for (int level = 0; level < 100'000; ++level)
                text += tag;
            if (tag[1] != '/')
                text += innermost;
        }
        return text;
    };
    EXPECT_EQ(StatusOf(nested("<b/>"), nested("<b/>"), {"--trusted"}), Success);
    EXPECT_EQ(StatusOf(nested("<b/>"), nested("<c/>"), {"--trusted"}), Findings);
    EXPECT_EQ(StatusOf(nested("<b/>"), nested("<c/>"), {"--trusted", "--all"}), Findings);
}

TEST_F(CompareTest, ComparesWhatCDATASectionsHold)
{
    EXPECT_EQ(StatusOf("<a><![CDATA[<1>]]></a>", "<a> <![CDATA[<1>]]></a>"), Success);
    EXPECT_EQ(StatusOf("<a><![CDATA[<1>]]></a>", "<a><![CDATA[<2>]]></a>"), Findings);
    EXPECT_EQ(StatusOf("<a>1<![CDATA[2]]>3</a>", "<a>123</a>"), Success);
    EXPECT_EQ(StatusOf("<a>1<![CDATA[2]]>3</a>", "<a>124</a>", {"--comments"}), Findings);
}

TEST_F(CompareTest, WritesOneJSONObjectADifference)
{
    const ProcessResult result = Compare("<a x='\"'>\n<b>3</b><c/></a>", "<a y='\xC3\xA9'>\n\n<b>6</b></a>",
                                         {"--all", "--format", "json"});
    EXPECT_EQ(result.status, Findings);
    std::istringstream lines(result.output);
    std::vector<nlohmann::json> objects;
    for (std::string line; std::getline(lines, line);)
        objects.push_back(nlohmann::json::parse(line));
    ASSERT_EQ(objects.size(), 4u);
    EXPECT_EQ(objects[0], nlohmann::json::parse(R"({
        "kind": "missing-attribute",
        "report": "Diff at nodes:\n\t- a\n\t- a\n\tMissing attribute \"x\" on the right.",
        "left": {"file": "left.xml", "line": 1, "path": "/a/@x", "source": "<a x='\"'>", "value": "\""},
        "right": {"file": "right.xml", "line": 1, "path": "/a", "source": "<a y='é'>"}})"));
    EXPECT_EQ(objects[1]["right"]["value"], "\xC3\xA9");
    EXPECT_EQ(objects[2]["kind"], "text");
    EXPECT_EQ(objects[2]["left"]["line"], 2);
    EXPECT_EQ(objects[2]["right"]["line"], 3);
    EXPECT_EQ(objects[3]["kind"], "more-children");
}

TEST_F(CompareTest, WritesNothingInJSONForEqualFiles)
{
    const ProcessResult result = Compare(Project, Project, {"--format=json", "--all"});
    EXPECT_EQ(result.status, Success);
    EXPECT_THAT(result.output, IsEmpty());
}

TEST_F(CompareTest, ReadsOneSideFromStandardInput)
{
    const std::string file = Write("1.xml", Project);
    EXPECT_EQ(Run({"compare", "-", file}, Project).status, Success);
    const ProcessResult result = Run({"compare", file, "-"}, HigherProject);
    EXPECT_EQ(result.status, Findings);
    EXPECT_THAT(result.output, HasSubstr("(standard input):6: /Project/Storey[2]/Wall[2]/@height\n"));
    EXPECT_EQ(Run({"compare", "-", "-"}, Project).errors, "nuvxml: standard input can be read once only\n");
}

TEST_F(CompareTest, TellsWhyAFileCannotBeRead)
{
    const std::string file = Write("1.xml", "<a/>");
    const std::string damaged = Write("2.xml", "<a>\n<b></a>");
    EXPECT_EQ(Run({"compare", file, PathOf("none.xml")}).errors,
              "nuvxml: none.xml: No such file or directory\n");
    EXPECT_EQ(Run({"compare", damaged, file}).errors, "nuvxml: 2.xml:2: expected end of tag 'b'\n");
    const ProcessResult result = Run({"compare", file, folder.Path().string()});
    EXPECT_EQ(result.status, Failure);
    EXPECT_THAT(result.errors, HasSubstr("is a folder, and the other is not\n"));
    EXPECT_THAT(result.output, IsEmpty());
}

TEST_F(CompareTest, ShowsTheSourceOfADocumentInAnotherEncoding)
{
    const std::string left =
        "\xFF\xFE" + std::string("<\0a\0>\0\n\0<\0b\0>\0\xE9\0<\0/\0b\0>\0<\0/\0a\0>\0", 32);
    const ProcessResult result =
        Compare(left, "<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\r\n<b>\xE8</b></a>");
    EXPECT_THAT(result.output, HasSubstr("left.xml:2: /a/b/text()\n    <b>é</b></a>\n"));
    EXPECT_THAT(result.output, HasSubstr("right.xml:3: /a/b/text()\n    <b>è</b></a>\n"));
}

TEST_F(CompareTest, CutsALongSourceLine)
{
    const std::string name(300, 'n');
    const ProcessResult result = Compare("<a " + name + "='1'/>", "<a " + name + "='2'/>");
    EXPECT_THAT(result.output, HasSubstr("\n    <a " + name.substr(0, 197) + " ...\n"));
}

TEST_F(CompareTest, KeepsControlCharactersFromTheTerminal)
{
    const ProcessResult result = Compare("<a>\xC2\x9B"
                                         "31m</a>",
                                         "<a/>");
    EXPECT_THAT(result.output, HasSubstr("    <a>\xEF\xBF\xBD"
                                         "31m</a>\n"));
}

TEST_F(CompareTest, UsesColorsOnATerminal)
{
    const std::vector<std::string> compare{"compare", Write("1.xml", "<a>1</a>"), Write("2.xml", "<a>2</a>")};
    constexpr const char* Colored = "\x1B[1m1.xml:1\x1B[0m: /a/text()\r\n    \x1B[31m<a>1</a>\x1B[0m\r\n"
                                    "\x1B[1m2.xml:1\x1B[0m: /a/text()\r\n    \x1B[32m<a>2</a>\x1B[0m\r\n";
    EXPECT_THAT(RunOnTerminal(compare).output, HasSubstr(Colored));
    constexpr const char* Escape = "\x1B";
    EXPECT_THAT(RunOnTerminal(compare, {{"NO_COLOR", "1"}}).output, testing::Not(HasSubstr(Escape)));
    EXPECT_THAT(RunOnTerminal(compare, {{"TERM", "dumb"}}).output, testing::Not(HasSubstr(Escape)));
    EXPECT_THAT(Run(compare).output, testing::Not(HasSubstr(Escape)));
}

TEST_F(CompareTest, UsesColorsAsItIsTold)
{
    std::vector<std::string> compare{"compare", Write("1.xml", "<a>1</a>"), Write("2.xml", "<a>2</a>"),
                                     "--color"};
    compare.push_back("always");
    EXPECT_THAT(Run(compare).output, HasSubstr("\x1B[31m<a>1</a>\x1B[0m\n"));
    compare.back() = "never";
    EXPECT_THAT(RunOnTerminal(compare).output, testing::Not(HasSubstr("\x1B")));
    compare.back() = "sometimes";
    EXPECT_THAT(Run(compare).errors, StartsWith("--color: must be always|auto|never\n"));
}

} // namespace
