/// @file
/// The DOM printer beside Xerces' serializer and libxml2: the same document of 15 MB, to memory.
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "benchmarks/Ratios.hpp"
#include "benchmarks/Records.hpp"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <cstdlib>
#include <memory>

namespace
{

using namespace xercesc_3_0;
using Benchmarks::Comparison;

constexpr size_t DocumentSize = 15'000'000;

const std::string& Source()
{
    static const std::string source = Benchmarks::MakeRecords(DocumentSize);
    return source;
}

const DOMDocument& Document()
{
    static const NuvXML::XercesPtr<DOMDocument> document = []
    {
        XercesDOMParser parser;
        const MemBufInputSource input(reinterpret_cast<const XMLByte*>(Source().data()), Source().size(),
                                      "source");
        parser.parse(input);
        return NuvXML::XercesPtr<DOMDocument>(parser.adoptDocument());
    }();
    return *document;
}

/// A result that no document has would make the figures worthless.
void ExpectAbout(benchmark::State& state, size_t size, size_t expected)
{
    if (size < expected / 10 * 9 || size > expected / 10 * 12)
        state.SkipWithError("the output has not the expected size");
}

void FormatDocument(benchmark::State& state, const char16_t* encoding, size_t bytesPerCharacter)
{
    const DOMDocument& document = Document();
    for (auto _ : state)
    {
        Nuv::MemoryOChannel channel;
        if (!FormatXMLDoc(&document, &channel, encoding, true))
            state.SkipWithError("FormatXMLDoc failed");
        ExpectAbout(state, channel.GetBytes().size(), DocumentSize * bytesPerCharacter);
    }
}

void SerializeDocument(benchmark::State& state, const char16_t* encoding, size_t bytesPerCharacter)
{
    const DOMDocument& document = Document();
    DOMImplementation* const implementation = DOMImplementation::getImplementation();
    for (auto _ : state)
    {
        const NuvXML::XercesPtr<DOMLSSerializer> serializer(implementation->createLSSerializer());
        const NuvXML::XercesPtr<DOMLSOutput> output(implementation->createLSOutput());
        MemBufFormatTarget target;
        output->setByteStream(&target);
        output->setEncoding(encoding);
        if (!serializer->write(&document, output.get()))
            state.SkipWithError("the serializer failed");
        ExpectAbout(state, target.getLen(), DocumentSize * bytesPerCharacter);
    }
}

void FormatUTF8(benchmark::State& state) { FormatDocument(state, u"UTF-8", 1); }
void FormatUTF16(benchmark::State& state) { FormatDocument(state, u"UTF-16LE", 2); }
void FormatLatin1(benchmark::State& state) { FormatDocument(state, u"ISO-8859-1", 1); }
void FormatKOI8(benchmark::State& state) { FormatDocument(state, u"KOI8-R", 1); }
void SerializeUTF8(benchmark::State& state) { SerializeDocument(state, u"UTF-8", 1); }
void SerializeUTF16(benchmark::State& state) { SerializeDocument(state, u"UTF-16LE", 2); }
void SerializeLatin1(benchmark::State& state) { SerializeDocument(state, u"ISO-8859-1", 1); }
void SerializeKOI8(benchmark::State& state) { SerializeDocument(state, u"KOI8-R", 1); }

void DumpWithLibxml2(benchmark::State& state)
{
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(Source().data(), static_cast<int>(Source().size()), "source", nullptr, 0), &xmlFreeDoc);
    for (auto _ : state)
    {
        xmlChar* text = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(document.get(), &text, &size, "UTF-8");
        ExpectAbout(state, static_cast<size_t>(size), DocumentSize);
        xmlFree(text);
    }
}

BENCHMARK(FormatUTF8)->Unit(benchmark::kMillisecond);
BENCHMARK(SerializeUTF8)->Unit(benchmark::kMillisecond);
BENCHMARK(DumpWithLibxml2)->Unit(benchmark::kMillisecond);
BENCHMARK(FormatUTF16)->Unit(benchmark::kMillisecond);
BENCHMARK(SerializeUTF16)->Unit(benchmark::kMillisecond);
BENCHMARK(FormatLatin1)->Unit(benchmark::kMillisecond);
BENCHMARK(SerializeLatin1)->Unit(benchmark::kMillisecond);
BENCHMARK(FormatKOI8)->Unit(benchmark::kMillisecond);
BENCHMARK(SerializeKOI8)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const int result = Benchmarks::RunAndCompare(
        argc, argv,
        {
            {"FormatXMLDoc in UTF-8 / Xerces' serializer", "FormatUTF8", "SerializeUTF8", 0.30},
            {"FormatXMLDoc in UTF-8 / xmlDocDumpMemoryEnc", "FormatUTF8", "DumpWithLibxml2", 1.00},
            {"FormatXMLDoc in UTF-16 / Xerces' serializer", "FormatUTF16", "SerializeUTF16", 0.40},
            {"FormatXMLDoc in ISO-8859-1 / Xerces' serializer", "FormatLatin1", "SerializeLatin1", 0.40},
            {"FormatXMLDoc in KOI8-R / Xerces' serializer", "FormatKOI8", "SerializeKOI8", 0.60},
        });
    // Documents of Xerces must not outlive the library, which stops it before static objects go.
    std::fflush(stdout);
    std::_Exit(result);
}
