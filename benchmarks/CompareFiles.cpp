/// @file
/// `nuvxml compare` on two equal files beside the same work in one process.
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "benchmarks/Inputs.hpp"
#include "benchmarks/Ratios.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/ScratchFolder.hpp"

namespace
{

using namespace Benchmarks;

NuvXML::XercesPtr<xercesc_3_0::DOMDocument> Load(const Nuv::UniString& path, NodeLocations& lines)
{
    return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(ParseXMLDoc(
        IO::Location(path), ValidatingXMLParser::LineInfoParser::Val_Never, false, &lines, nullptr, nullptr));
}

void CompareInOneProcess(const Nuv::UniString& leftPath, const Nuv::UniString& rightPath)
{
    NodeLocations leftLines;
    NodeLocations rightLines;
    const auto left = Load(leftPath, leftLines);
    const auto right = Load(rightPath, rightLines);
    Expect(left && right, "ParseXMLDoc failed");
    const NuvXML::StrictOrderAutoValueCompareOptions options;
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::XMLCompareStrictOrder comparator;
    NuvXML::DoXMLCompare(left.get(), right.get(), &comparator, &filter, options);
}

void CompareByTool(const std::string& left, const std::string& right)
{
    Expect(NuvTest::RunProcess({NUVXML_PROGRAM, "compare", left, right}).status == 0, "nuvxml failed");
}

} // namespace

int main(int argc, char** argv)
{
    const NuvTest::ScratchFolder folder;
    const std::string text = MakeRecords(15'000'000);
    const Nuv::UniString left = folder.Write("left.xml", text);
    const Nuv::UniString right = folder.Write("right.xml", text);
    const std::string input = "two files of 15 MB";
    return RunAndCompare(
        argc, argv,
        {{input, "nuvxml compare", Whose::Ours, [&] { CompareByTool(left.ToUTF8(), right.ToUTF8()); }},
         {input, "ParseXMLDoc twice, DoXMLCompare", Whose::Peers, [&] { CompareInOneProcess(left, right); }}},
        {LimitOf(input, "nuvxml compare", "ParseXMLDoc twice, DoXMLCompare", 1.10)}, Clock::Wall);
}
