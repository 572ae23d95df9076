/// @file
/// A SAX2 parse that is echoed as text, beside the same parse with an empty handler and libxml2's echo.
#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "benchmarks/Inputs.hpp"
#include "benchmarks/Ratios.hpp"

#include <libxml/SAX2.h>
#include <libxml/xmlwriter.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include <memory>

namespace
{

using namespace xercesc_3_0;
using namespace Benchmarks;

/// By a reader as Xerces makes it, which validates; where there is a DTD, against that.
void Parse(const std::string& text, ContentHandler& handler)
{
    const std::unique_ptr<SAX2XMLReader> reader(XMLReaderFactory::createXMLReader());
    reader->setFeature(XMLUni::fgXercesDynamic, text.find("<!DOCTYPE") != std::string::npos);
    reader->setContentHandler(&handler);
    const MemBufInputSource input(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "benchmark");
    reader->parse(input);
}

/// Memory that is there already, as it would be for a channel with a buffer: what a growing text costs the
/// system is not the writer's.
class MemoryOfOneSize : public Nuv::OChannel
{
  public:
    explicit MemoryOfOneSize(size_t size) { bytes.reserve(size); }

    int Write(const void* written, size_t count) override
    {
        bytes.append(static_cast<const char*>(written), count);
        return 0;
    }

    std::string bytes;
};

void ExpectAll(size_t echoed, const std::string& text)
{
    // Of comments and the document type no content handler knows, and between attributes is one blank.
    Expect(echoed > text.size() / 2, "the echo is too short");
}

void EchoWithOurs(const std::string& text, MemoryOfOneSize& channel)
{
    channel.bytes.clear();
    NuvXML::OChannelXMLFormatTarget target(channel);
    XMLFormatter formatter(XMLUni::fgUTF8EncodingString, &target, XMLFormatter::NoEscapes,
                           XMLFormatter::UnRep_CharRef);
    NuvXML::SAX2Writer writer(formatter, false);
    Parse(text, writer);
    ExpectAll(channel.bytes.size(), text);
}

void ParseWithEmptyHandler(const std::string& text)
{
    DefaultHandler handler;
    Parse(text, handler);
}

xmlTextWriter* WriterOf(void* context) { return static_cast<xmlTextWriter*>(context); }

void StartElement(void* context, const xmlChar* name, const xmlChar** attributes)
{
    xmlTextWriterStartElement(WriterOf(context), name);
    for (; attributes && *attributes; attributes += 2)
        xmlTextWriterWriteAttribute(WriterOf(context), attributes[0], attributes[1]);
}

void EndElement(void* context, const xmlChar*) { xmlTextWriterFullEndElement(WriterOf(context)); }

void Characters(void* context, const xmlChar* text, int length)
{
    const std::string terminated(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
    xmlTextWriterWriteString(WriterOf(context), BAD_CAST terminated.c_str());
}

void EchoWithLibxml2(const std::string& text)
{
    const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(), &xmlBufferFree);
    const std::unique_ptr<xmlTextWriter, decltype(&xmlFreeTextWriter)> writer(
        xmlNewTextWriterMemory(buffer.get(), 0), &xmlFreeTextWriter);
    xmlTextWriterStartDocument(writer.get(), nullptr, "UTF-8", nullptr);
    xmlSAXHandler handler{};
    handler.startElement = StartElement;
    handler.endElement = EndElement;
    handler.characters = Characters;
    Expect(xmlSAXUserParseMemory(&handler, writer.get(), text.data(), static_cast<int>(text.size())) == 0,
           "libxml2 found an error");
    xmlTextWriterEndDocument(writer.get());
    ExpectAll(static_cast<size_t>(xmlBufferLength(buffer.get())), text);
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<Input> inputs = AllInputs();
    MemoryOfOneSize channel(2 * inputs.front().text.size());
    std::vector<Candidate> candidates;
    std::vector<Limit> limits;
    for (const auto& [input, bytes] : inputs)
    {
        const std::string& text = bytes;
        candidates.push_back(
            {input, "SAX2Writer", Whose::Ours, [&text, &channel] { EchoWithOurs(text, channel); }});
        candidates.push_back(
            {input, "Xerces' parser, empty handler", Whose::Peers, [&text] { ParseWithEmptyHandler(text); }});
        candidates.push_back({input, "libxml2", Whose::Peers, [&text] { EchoWithLibxml2(text); }});
        const bool isGenerated = &bytes == &inputs.front().text;
        limits.push_back(
            LimitOf(input, "SAX2Writer", "Xerces' parser, empty handler", isGenerated ? 1.5 : 1.6));
    }
    return RunAndCompare(argc, argv, candidates, limits);
}
