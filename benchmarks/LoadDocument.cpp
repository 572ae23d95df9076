/// @file
/// ParseXMLDoc beside a bare parser of Xerces, libxml2 and pugixml: from memory to a tree.
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "benchmarks/Inputs.hpp"
#include "benchmarks/Peers.hpp"
#include "benchmarks/Ratios.hpp"

namespace
{

using namespace Benchmarks;

void Load(const std::string& text, NodeLocations* lines)
{
    const XercesDocument document(ParseXMLDoc(reinterpret_cast<const unsigned char*>(text.data()),
                                              static_cast<unsigned int>(text.size()),
                                              ValidatingXMLParser::LineInfoParser::Val_Auto, true,
                                              Nuv::UniString(u"benchmark"), lines, nullptr, nullptr));
    Expect(document != nullptr, "ParseXMLDoc failed");
}

void LoadWithLines(const std::string& text)
{
    NodeLocations lines;
    Load(text, &lines);
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<Input> inputs = AllInputs();
    std::vector<Candidate> candidates;
    std::vector<Limit> limits;
    for (const auto& [input, text] : inputs)
    {
        const std::string& bytes = text;
        const Candidate ofInput[] = {
            {input, "ParseXMLDoc", Whose::Ours, [&bytes] { Load(bytes, nullptr); }},
            {input, "ParseXMLDoc with lines", Whose::Ours, [&bytes] { LoadWithLines(bytes); }},
            {input, "Xerces' parser", Whose::Peers, [&bytes] { ParseWithXerces(bytes); }},
            {input, "libxml2", Whose::Peers, [&bytes] { ParseWithLibxml2(bytes); }},
            {input, "pugixml", Whose::Peers, [&bytes] { ParseWithPugixml(bytes, KeepAll); }},
        };
        candidates.insert(candidates.end(), std::begin(ofInput), std::end(ofInput));
        limits.push_back(LimitOf(input, "ParseXMLDoc with lines", "ParseXMLDoc", 1.20));
        limits.push_back(LimitOf(input, "ParseXMLDoc", "Xerces' parser", 1.05));
    }
    return RunAndCompare(argc, argv, candidates, limits);
}
