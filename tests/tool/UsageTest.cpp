#include "ToolTest.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace ToolTests;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using UsageTest = ToolTest;

constexpr const char* Subcommands[] = {"compare", "print", "validate", "echo", "lines"};

TEST_F(UsageTest, ShowsHelpWhenAsked)
{
    const ProcessResult result = Run({"--help"});
    EXPECT_EQ(result.status, Success);
    for (const char* name : Subcommands)
        EXPECT_THAT(result.output, HasSubstr(std::string("\n  ") + name + " "));
    EXPECT_THAT(Run({"compare", "--help"}).output, HasSubstr("--ignore-attribute NAME"));
    EXPECT_THAT(Run({"--version"}).output, testing::MatchesRegex("nuvxml [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(UsageTest, ShowsHelpThatFitsIntoATerminal)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--help"},
                                                      {"compare", "--help"},
                                                      {"print", "--help"},
                                                      {"validate", "--help"},
                                                      {"echo", "--help"},
                                                      {"lines", "--help"}})
    {
        std::istringstream help(Run(arguments).output);
        for (std::string line; std::getline(help, line);)
            EXPECT_LE(line.size(), 80) << line;
    }
    EXPECT_THAT(
        Run({"validate", "--help"}).output,
        HasSubstr("\n  --trusted                   Follow references to other files and the network,\n"
                  "                              and set no limits\n"));
}

TEST_F(UsageTest, RefusesAnEmptyName)
{
    const std::string file = Write("1.xml", "<a/>");
    EXPECT_THAT(Run({"validate", file, "--schema", ""}).errors, StartsWith("--schema: must not be empty\n"));
    EXPECT_THAT(Run({"print", file, "--encoding", ""}).errors, StartsWith("--encoding: must not be empty\n"));
    EXPECT_THAT(Run({"print", file, "--output", ""}).errors, StartsWith("--output: must not be empty\n"));
    EXPECT_EQ(Run({"lines", ""}).errors, "nuvxml: : No such file or directory\n");
}

TEST_F(UsageTest, ShowsTheNameOfAFileOnOneLine)
{
    const std::string file = Write("1\n\x1B[31m.xml", "<a></b>");
    EXPECT_EQ(Run({"validate", file}).output,
              "1��[31m.xml:1: expected end of tag 'a'\n1 file, 1 fault in 1\n");
    EXPECT_EQ(Run({"echo", file + "\n"}).errors, "nuvxml: 1��[31m.xml�: No such file or directory\n");
}

TEST_F(UsageTest, RefusesAFileThatIsTooLargeToBeParsedAtOnceBeforeItReadsIt)
{
    const std::string file = Write("1.xml", "");
    std::filesystem::resize_file(file, 1'000'000'000'000);
    for (const char* name : {"print", "lines"})
        EXPECT_EQ(Run({name, file}).errors,
                  "nuvxml: 1.xml: a document of 4 GiB or more can only be echoed\n");
}

TEST_F(UsageTest, NamesWhatIsWrongWithTheArguments)
{
    constexpr const char* Hint = "\nRun with --help for more information.\n";
    EXPECT_THAT(Run({}).errors, EndsWith(Hint));
    EXPECT_EQ(Run({"compare", "1.xml"}).errors, std::string("RIGHT is required") + Hint);
    EXPECT_EQ(Run({"compare", "1.xml", "2.xml", "--frobnicate"}).errors,
              std::string("The following argument was not expected: --frobnicate") + Hint);
    EXPECT_EQ(Run({"compare", "1.xml", "2.xml", "--format", "yaml"}).errors,
              std::string("--format: must be json|text") + Hint);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"frobnicate"}, {"print"}, {"lines", "1.xml", "--frobnicate"}})
    {
        const ProcessResult result = Run(arguments);
        EXPECT_EQ(result.status, Failure);
        EXPECT_THAT(result.output, IsEmpty());
    }
}

/// Runs with an output that nobody reads.
ProcessResult RunWithClosedPipe(const std::vector<std::string>& command, const std::string& input)
{
    int pipe[2];
    if (pipe2(pipe, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    close(pipe[0]);
    const NuvTest::NamelessFile in(input);
    const NuvTest::NamelessFile errors;
    ProcessResult result =
        NuvTest::WaitFor(NuvTest::Start(command, {in.Descriptor(), pipe[1], errors.Descriptor()}));
    close(pipe[1]);
    result.errors = errors.Contents();
    return result;
}

TEST_F(UsageTest, EndsQuietlyWhenNobodyReads)
{
    const std::string file = Write("1.xml", "<a>1</a>");
    for (const char* name : Subcommands)
    {
        std::vector<std::string> arguments{name, "-"};
        if (std::string(name) == "compare")
            arguments.push_back(file);
        const ProcessResult result = RunWithClosedPipe(Command(arguments), "<a>2</a>");
        EXPECT_EQ(result.status, -SIGPIPE) << name;
        EXPECT_THAT(result.errors, IsEmpty()) << name;
    }
}

TEST_F(UsageTest, EndsQuietlyForACallerThatIgnoresTheSignalOfAClosedPipe)
{
    const std::string file = Write("1.xml", "<a/>");
    const ProcessResult result =
        RunWithClosedPipe({"sh", "-c", "trap '' PIPE; exec \"$0\" print \"$1\"", NUVXML_PROGRAM, file}, "");
    EXPECT_EQ(result.status, -SIGPIPE);
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(UsageTest, TrustsNoDocumentUnlessItIsTold)
{
    const std::string secret = Write("secret.txt", "secret");
    const std::string file = Write("1.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM '" + secret + "'>]>\n<a>&e;</a>");
    for (const char* name : {"print", "echo", "lines", "validate"})
    {
        const ProcessResult result = Run({name, file});
        EXPECT_NE(result.status, Success) << name;
        EXPECT_THAT(result.output, testing::Not(HasSubstr(">secret"))) << name;
        EXPECT_THAT(
            result.errors + result.output,
            HasSubstr("1.xml:2: external entities are forbidden; the document refers to 'secret.txt'"))
            << name;
    }
    EXPECT_THAT(Run({"echo", "--trusted", file}).output, EndsWith("<a>secret</a>"));
}

TEST_F(UsageTest, RefusesEntitiesThatExplode)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
    for (int i = 1; i <= 9; ++i)
    {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        text += "<!ENTITY e" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j)
            text += inner;
        text += "'>";
    }
    text += "]><a>&e9;</a>";
    for (const char* name : {"print", "echo", "lines", "validate"})
        EXPECT_NE(Run({name, "-"}, text).status, Success) << name;
}

TEST_F(UsageTest, RefusesElementsThatAreNestedTooDeep)
{
    std::string text;
    for (int i = 0; i < 1'000'000; ++i)
        text += "<a>";
    for (const char* name : {"print", "echo", "lines", "validate"})
    {
        const ProcessResult result = Run({name, "-"}, text);
        EXPECT_GT(result.status, Success) << name;
        EXPECT_THAT(result.errors + result.output, HasSubstr("elements are nested deeper than")) << name;
    }
}

} // namespace
