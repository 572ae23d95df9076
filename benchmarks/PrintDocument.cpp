/// @file
/// The DOM printer beside the serializers of Xerces, libxml2 and pugixml: from a tree to memory.
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "benchmarks/Inputs.hpp"
#include "benchmarks/Peers.hpp"
#include "benchmarks/Ratios.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include <memory>
#include <optional>

namespace
{

using namespace xercesc_3_0;
using namespace Benchmarks;

/// One text as the trees of all libraries.
struct Trees
{
    explicit Trees(const Input& input)
        : name(input.name)
        , size(input.text.size())
        , ofXerces(ParseWithXerces(input.text))
        , ofLibxml2(ParseWithLibxml2(input.text))
        , ofPugixml(ParseWithPugixml(input.text, KeepAll))
    {
    }

    std::string name;
    size_t size;
    XercesDocument ofXerces;
    Libxml2Document ofLibxml2;
    pugi::xml_document ofPugixml;
};

struct Encoding
{
    std::string name;
    const char16_t* xercesName;

    /// Null where pugixml does not know the encoding.
    std::optional<pugi::xml_encoding> pugixmlName;

    /// How much longer FormatXMLDoc may take than Xerces' serializer.
    double atMost;
};

const Encoding UTF8 = {"UTF-8", u"UTF-8", pugi::encoding_utf8, 0.30};
const Encoding OtherEncodings[] = {
    {"UTF-16LE", u"UTF-16LE", pugi::encoding_utf16_le, 0.40},
    {"ISO-8859-1", u"ISO-8859-1", pugi::encoding_latin1, 0.40},
    {"KOI8-R", u"KOI8-R", std::nullopt, 0.60},
};

/// Small documents take relatively longer, and those of attributes alone are all markup.
const Encoding UTF8OfReal = {"UTF-8", u"UTF-8", pugi::encoding_utf8, 0.60};

/// Between attributes the text may have more white space than what is printed.
void ExpectAll(size_t printed, const Trees& trees)
{
    Expect(printed > trees.size / 2, "the output is too short");
}

void FormatWithOurs(const Trees& trees, const Encoding& encoding)
{
    Nuv::MemoryOChannel channel;
    Expect(FormatXMLDoc(trees.ofXerces.get(), &channel, encoding.xercesName, true), "FormatXMLDoc failed");
    ExpectAll(channel.GetBytes().size(), trees);
}

void SerializeWithXerces(const Trees& trees, const Encoding& encoding)
{
    DOMImplementation* const implementation = DOMImplementation::getImplementation();
    const NuvXML::XercesPtr<DOMLSSerializer> serializer(implementation->createLSSerializer());
    const NuvXML::XercesPtr<DOMLSOutput> output(implementation->createLSOutput());
    MemBufFormatTarget target;
    output->setByteStream(&target);
    output->setEncoding(encoding.xercesName);
    Expect(serializer->write(trees.ofXerces.get(), output.get()), "Xerces' serializer failed");
    ExpectAll(target.getLen(), trees);
}

void DumpWithLibxml2(const Trees& trees, const Encoding& encoding)
{
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(trees.ofLibxml2.get(), &text, &size, encoding.name.c_str());
    const std::unique_ptr<xmlChar, decltype(xmlFree)> owner(text, xmlFree);
    ExpectAll(static_cast<size_t>(size), trees);
}

struct MemoryWriter : pugi::xml_writer
{
    void write(const void* data, size_t size) override { bytes.append(static_cast<const char*>(data), size); }

    std::string bytes;
};

void SaveWithPugixml(const Trees& trees, pugi::xml_encoding encoding)
{
    MemoryWriter writer;
    trees.ofPugixml.save(writer, "", pugi::format_raw, encoding);
    ExpectAll(writer.bytes.size(), trees);
}

/// All libraries that know the encoding, and the limits of ours.
void AddEncoding(std::vector<Candidate>& candidates, std::vector<Limit>& limits, const Trees& trees,
                 const Encoding& encoding)
{
    const std::string input = trees.name + " in " + encoding.name;
    const auto add = [&candidates, &input](const char* name, Whose whose, std::function<void()> run) {
        candidates.push_back({input, name, whose, std::move(run)});
    };
    add("FormatXMLDoc", Whose::Ours, [&trees, &encoding] { FormatWithOurs(trees, encoding); });
    add("Xerces' serializer", Whose::Peers, [&trees, &encoding] { SerializeWithXerces(trees, encoding); });
    add("libxml2", Whose::Peers, [&trees, &encoding] { DumpWithLibxml2(trees, encoding); });
    if (encoding.pugixmlName)
        add("pugixml", Whose::Peers, [&trees, &encoding] { SaveWithPugixml(trees, *encoding.pugixmlName); });
    limits.push_back(LimitOf(input, "FormatXMLDoc", "Xerces' serializer", encoding.atMost));
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<Candidate> candidates;
    std::vector<Limit> limits;
    std::vector<Trees> allTrees;
    for (const Input& input : AllInputs())
        allTrees.emplace_back(input);
    const Trees& records = allTrees.front();
    AddEncoding(candidates, limits, records, UTF8);
    limits.push_back(LimitOf(records.name + " in UTF-8", "FormatXMLDoc", "libxml2", 1.00));
    for (const Encoding& encoding : OtherEncodings)
        AddEncoding(candidates, limits, records, encoding);
    for (size_t i = 1; i < allTrees.size(); ++i)
        AddEncoding(candidates, limits, allTrees[i], UTF8OfReal);
    return RunAndCompare(argc, argv, candidates, limits);
}
