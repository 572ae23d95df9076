#include "ToolTest.hpp"

#include <string>

namespace
{

using namespace ToolTests;

using LinesTest = ToolTest;

TEST_F(LinesTest, ShowsEachElementWithItsLineAndPath)
{
    const ProcessResult result =
        Run({"lines", Write("1.xml", "<Project>\n"
                                     "  <Storey/>\n"
                                     "  <Storey>\n"
                                     "    <Wall\n"
                                     "      height='1'><!-- c --><p:x xmlns:p='u'/></Wall>\n"
                                     "  </Storey>\n"
                                     "  <Roof/>\n"
                                     "</Project>\n")});
    EXPECT_EQ(result.status, Success);
    EXPECT_EQ(result.output, "1.xml:1: /Project\n"
                             "1.xml:2: /Project/Storey[1]\n"
                             "1.xml:3: /Project/Storey[2]\n"
                             "1.xml:5: /Project/Storey[2]/Wall\n"
                             "1.xml:5: /Project/Storey[2]/Wall/p:x\n"
                             "1.xml:7: /Project/Roof\n");
}

TEST_F(LinesTest, ReadsStandardInput)
{
    EXPECT_EQ(Run({"lines", "-"}, "<a/>").output, "(standard input):1: /a\n");
}

TEST_F(LinesTest, TakesTimeInProportionToTheDocument)
{
    std::string text = "<a>\n";
    std::string expected = "(standard input):1: /a\n";
    for (int i = 1; i <= 50'000; ++i)
    {
        text += "<b/>\n";
        expected += "(standard input):" + std::to_string(i + 1) + ": /a/b[" + std::to_string(i) + "]\n";
    }
    EXPECT_TRUE(Run({"lines", "-"}, text + "</a>").output == expected);
}

TEST_F(LinesTest, TellsWhyItCannotRead)
{
    EXPECT_EQ(Run({"lines", PathOf("none.xml")}).errors, "nuvxml: none.xml: No such file or directory\n");
    EXPECT_EQ(Run({"lines", "-"}, "<a>\n<b></a>").errors,
              "nuvxml: (standard input):2: expected end of tag 'b'\n");
    EXPECT_THAT(Run({"lines", folder.Path().string()}).errors, testing::EndsWith(": Is a directory\n"));
}

} // namespace
