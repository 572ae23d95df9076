#include "Commands.hpp"
#include "Input.hpp"
#include "Trouble.hpp"

#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/LimitedSAX2Reader.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"

#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/TranscodingException.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <memory>

using namespace xercesc_3_0;

namespace Tool
{
namespace
{

std::unique_ptr<XMLFormatter> MakeFormatter(const std::string& encoding, XMLFormatTarget& target)
try
{
    return std::make_unique<XMLFormatter>(Nuv::UniString::FromUTF8(encoding).ToUTF16(), &target,
                                          XMLFormatter::NoEscapes, XMLFormatter::UnRep_CharRef);
}
catch (const TranscodingException&)
{
    throw Trouble("cannot write in the encoding \"" + encoding + "\"");
}

void Echo(const InputSource& source, const std::string& name, bool trusted, ContentHandler& writer)
try
{
    const std::unique_ptr<SAX2XMLReader> reader = NuvXML::CreateSAX2Reader(LimitsFor(trusted));
    // The attributes that declare name spaces belong to the echo. (To switch name spaces off would let
    // Xerces' memory grow with the document.)
    reader->setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, true);
    reader->setContentHandler(&writer);
    reader->parse(source);
}
catch (const SAXParseException& error)
{
    throw Trouble(FaultText(name, static_cast<unsigned int>(error.getLineNumber()), error.getMessage()));
}
catch (const XMLException& error)
{
    throw Trouble(FaultText(name, static_cast<unsigned int>(error.getSrcLine()), error.getMessage()));
}

} // namespace

ExitStatus Echo(const EchoSettings& settings, Output& output)
{
    const FileSource source(settings.file);
    NuvXML::OChannelXMLFormatTarget target(output);
    const std::unique_ptr<XMLFormatter> formatter = MakeFormatter(settings.encoding, target);
    NuvXML::SAX2Writer writer(*formatter, false);
    Echo(source, DisplayName(settings.file), settings.trusted, writer);
    return Success;
}

} // namespace Tool
