// A document that parses: the echo of a SAX or SAX2 parse has the same content.

#include "fuzz/Support.hpp"

#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

namespace
{

using namespace Fuzz;
using namespace xercesc_3_0;

void ParseBySAX(const InputSource& source, XMLFormatter& formatter)
{
    NuvXML::SAXWriter writer(formatter);
    SAXParser parser;
    parser.setValidationScheme(SAXParser::Val_Never);
    parser.setDocumentHandler(&writer);
    parser.parse(source);
}

void ParseBySAX2(const InputSource& source, XMLFormatter& formatter)
{
    NuvXML::SAX2Writer writer(formatter, false);
    const std::unique_ptr<SAX2XMLReader> reader(XMLReaderFactory::createXMLReader());
    reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
    reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
    reader->setContentHandler(&writer);
    reader->parse(source);
}

std::string Echo(std::string_view text, void (*parse)(const InputSource&, XMLFormatter&),
                 const char16_t* encoding)
{
    Nuv::MemoryOChannel channel;
    NuvXML::OChannelXMLFormatTarget target(channel);
    XMLFormatter formatter(encoding, u"1.0", &target, XMLFormatter::NoEscapes, XMLFormatter::UnRep_CharRef);
    parse(MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "input"), formatter);
    return channel.GetBytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    constexpr bool CreateEntityRefNodes = false;
    const std::string_view text = TextOf(bytes, size);
    const Document document = Parse(text, CreateEntityRefNodes);
    if (!document || !IsXML10(*document))
        return 0;
    const Nuv::UniString content = TreeText(*document, Equality::Content);
    for (const auto parse : {ParseBySAX, ParseBySAX2})
        for (const char16_t* const encoding : {u"UTF-8", u"UTF-16LE", u"GB18030", u"US-ASCII"})
        {
            const Document echo = Parse(Echo(text, parse, encoding), CreateEntityRefNodes);
            if (encoding != std::u16string_view(u"US-ASCII") || CanBeASCII(*document))
                Check(echo && TreeText(*echo, Equality::Content) == content);
        }
    return 0;
}
