/// @file
/// `nuvxml compare` of two equal files beside a program that does the same through the library, one step
/// after the other: reads both, parses them with the lines of their nodes, and compares them.
#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "benchmarks/Inputs.hpp"
#include "benchmarks/Peers.hpp"
#include "benchmarks/Ratios.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

namespace
{

using namespace Benchmarks;

/// A document and the lines of its nodes.
struct LocatedDocument
{
    explicit LocatedDocument(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        loaded =
            NuvXML::LoadDocument(text, {.limits = ParserLimits(), .name = Nuv::UniString::FromUTF8(path)});
        Expect(static_cast<bool>(loaded), "LoadDocument failed");
    }

    NuvXML::Loaded loaded;
};

void CompareThroughTheLibrary(const std::string& leftPath, const std::string& rightPath)
{
    const LocatedDocument left(leftPath);
    const LocatedDocument right(rightPath);
    NuvXML::XMLCompareStrictOrder comparator;
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::DoXMLCompare(left.loaded.document.get(), right.loaded.document.get(), &comparator, &filter,
                         NuvXML::StrictOrderAutoValueCompareOptions());
}

/// As the tool is, so that neither finds memory that it has used before.
void InAProcessOfItsOwn(const std::function<void()>& work)
{
    const pid_t child = fork();
    if (child == 0)
    {
        try
        {
            work();
        }
        catch (...)
        {
            _exit(1);
        }
        _exit(0);
    }
    int status = -1;
    Expect(child > 0 && waitpid(child, &status, 0) == child && status == 0, "the comparison failed");
}

void CompareWithTheTool(const std::string& leftPath, const std::string& rightPath)
{
    Expect(NuvTest::RunProcess({NUVXML_PROGRAM, "compare", leftPath, rightPath}).status == 0,
           "nuvxml found the files different, or was not built");
}

} // namespace

int main(int argc, char** argv)
{
    const std::string text = MakeRecords(15'000'000);
    const NuvTest::ScratchFolder folder;
    const std::string left = folder.Write("left.xml", text).ToUTF8();
    const std::string right = folder.Write("right.xml", text).ToUTF8();
    const std::string input = "two files of 15 MB";
    return RunAndCompare(
        argc, argv,
        {{input, "nuvxml compare", Whose::Ours, [&] { CompareWithTheTool(left, right); },
          DoneBy::ItsChildren},
         {input, "through the library", Whose::Peers,
          [&] { InAProcessOfItsOwn([&] { CompareThroughTheLibrary(left, right); }); }, DoneBy::ItsChildren}},
        {LimitOf(input, "nuvxml compare", "through the library", 1.1)});
}
