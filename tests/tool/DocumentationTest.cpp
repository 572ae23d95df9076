#include "ToolTest.hpp"

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace ToolTests;
using testing::HasSubstr;

std::string Contents(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What bash offers behind a command line whose last word is unfinished.
std::vector<std::string> CompletionsOf(const std::string& line)
{
    const std::string script = "source " NUVXML_COMPLETION "; COMP_WORDS=(" + line + "); [[ '" + line +
                               "' == *' ' ]] && COMP_WORDS+=(''); "
                               "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _nuvxml; "
                               "echo \"${COMPREPLY[@]}\"";
    std::istringstream words(NuvTest::RunProcess({"bash", "-c", script}).output);
    return {std::istream_iterator<std::string>(words), {}};
}

TEST(ToolManual, TellsOfEveryOptionThatHelpShows)
{
    const std::string manual = Contents(NUVXML_MANUAL);
    for (const char* command : {"compare", "print", "validate", "echo", "lines"})
    {
        EXPECT_THAT(manual, HasSubstr(std::string(".SS nuvxml ") + command + " "));
        std::istringstream help(NuvTest::RunProcess({NUVXML_PROGRAM, command, "--help"}).output);
        for (std::string word; help >> word;)
            if (word.rfind("--", 0) == 0 && word.size() > 2)
            {
                std::string name;
                for (const char character : word)
                    name += character == '-' ? std::string("\\-") : std::string(1, character);
                EXPECT_THAT(manual, HasSubstr(name)) << command;
            }
    }
}

TEST(ToolManual, IsAPageWithoutAFault)
{
    const NuvTest::ProcessResult page =
        NuvTest::RunProcess({"groff", "-man", "-Tutf8", "-ww", "-z", NUVXML_MANUAL});
    EXPECT_EQ(page.status, 0);
    EXPECT_EQ(page.errors, "");
}

TEST(ToolCompletion, OffersTheSubcommandsFirst)
{
    EXPECT_THAT(CompletionsOf("nuvxml "),
                testing::IsSupersetOf({"compare", "print", "validate", "echo", "lines"}));
    EXPECT_THAT(CompletionsOf("nuvxml va"), testing::ElementsAre("validate"));
}

TEST(ToolCompletion, OffersTheOptionsOfASubcommand)
{
    EXPECT_THAT(CompletionsOf("nuvxml compare --ig"), testing::ElementsAre("--ignore-attribute"));
    EXPECT_THAT(CompletionsOf("nuvxml print --"), testing::IsSupersetOf({"--encoding", "--output"}));
}

TEST(ToolCompletion, OffersTheWordsThatAnOptionTakes)
{
    EXPECT_THAT(CompletionsOf("nuvxml compare 1.xml 2.xml --format "),
                testing::UnorderedElementsAre("json", "text"));
    EXPECT_THAT(CompletionsOf("nuvxml compare --color a"), testing::UnorderedElementsAre("always", "auto"));
    // Bash makes three words of it.
    EXPECT_THAT(CompletionsOf("nuvxml compare --color = a"), testing::UnorderedElementsAre("always", "auto"));
    EXPECT_THAT(CompletionsOf("nuvxml compare --format ="), testing::UnorderedElementsAre("json", "text"));
}

TEST(ToolCompletion, LeavesFilesToBash)
{
    EXPECT_THAT(CompletionsOf("nuvxml print some"), testing::IsEmpty());
}

/// A session as the manual shows it, done again: lines that begin with "$ " are commands, run by one shell.
std::string DoneAgain(const std::string& session)
{
    std::istringstream lines(session);
    std::string script = "cd '" EXAMPLES_FOLDER "/tool'; PATH=\"${0%/*}:$PATH\"; exec 2>&1\n";
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("$ ", 0) == 0)
            script += "status=$?; printf '%s\\n' '" + line + "'; (exit $status)\n" + line.substr(2) + "\n";
    return NuvTest::RunProcess({"bash", "-c", script, NUVXML_PROGRAM}).output;
}

class ToolSessions : public testing::TestWithParam<const char*>
{
};

TEST_P(ToolSessions, WriteWhatTheManualShows)
{
    const std::string session = Contents((std::string(EXAMPLES_FOLDER "/tool/") + GetParam()).c_str());
    EXPECT_THAT(session, testing::StartsWith("$ nuvxml "));
    EXPECT_EQ(DoneAgain(session), session);
}

INSTANTIATE_TEST_SUITE_P(Manual, ToolSessions,
                         testing::Values("compare.txt", "folders.txt", "json.txt", "others.txt"));

TEST(Readme, ShowsWhatTheToolWrites)
{
    const std::string command =
        "nuvxml compare examples/comparison/before.xml examples/comparison/after.xml\n";
    const NuvTest::ProcessResult result = NuvTest::RunProcess(
        {"sh", "-c", "cd '" EXAMPLES_FOLDER "/..'; PATH=\"${0%/*}:$PATH\"; " + command, NUVXML_PROGRAM});
    const std::string readme = Contents(EXAMPLES_FOLDER "/../README.md");
    EXPECT_THAT(readme, HasSubstr(command));
    EXPECT_FALSE(result.output.empty());
    EXPECT_THAT(readme, HasSubstr(result.output));
}

} // namespace
