// Loads and streams documents that nobody vouches for, within limits.

#include "NuvXMLUtils/LimitedSAX2Reader.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>

#include <iostream>
#include <string>

namespace
{

std::string Nested(int levels)
{
    std::string text;
    for (int level = 0; level < levels; ++level)
        text += "<a>\n";
    for (int level = 0; level < levels; ++level)
        text += "</a>";
    return text;
}

/// Entities that hold ten of the one before: the last stands for a million characters.
const char Bomb[] = "<!DOCTYPE a [<!ENTITY e0 '!'><!ENTITY e1 '&e0;&e0;&e0;&e0;&e0;&e0;&e0;&e0;&e0;&e0;'>\n"
                    "<!ENTITY e2 '&e1;&e1;&e1;&e1;&e1;&e1;&e1;&e1;&e1;&e1;'>\n"
                    "<!ENTITY e3 '&e2;&e2;&e2;&e2;&e2;&e2;&e2;&e2;&e2;&e2;'>\n"
                    "<!ENTITY e4 '&e3;&e3;&e3;&e3;&e3;&e3;&e3;&e3;&e3;&e3;'>\n"
                    "<!ENTITY e5 '&e4;&e4;&e4;&e4;&e4;&e4;&e4;&e4;&e4;&e4;'>\n"
                    "<!ENTITY e6 '&e5;&e5;&e5;&e5;&e5;&e5;&e5;&e5;&e5;&e5;'>]>\n"
                    "<a>&e6;</a>";

const char Thief[] = "<!DOCTYPE a [<!ENTITY secret SYSTEM '/etc/passwd'>]>\n<a>&secret;</a>";

void Load(const ParserLimits& limits, const char* what, const std::string& text)
{
    const NuvXML::Loaded loaded = NuvXML::LoadDocument(text, {.limits = limits});
    if (loaded)
        std::cout << what << ": loaded\n";
    else
        std::cout << what << ", line " << loaded.place.lineNumber << ": " << loaded.reason << '\n';
}

void Stream(const ParserLimits& limits, const char* what, const std::string& text)
try
{
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    xercesc_3_0::DefaultHandler handler; // your own content handler, and an error handler that throws
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    reader->parse(xercesc_3_0::MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                 u"upload"));
    std::cout << what << ": read to its end\n";
}
catch (const xercesc_3_0::SAXParseException& exception)
{
    std::cout << what << ", line " << exception.getLineNumber() << ": "
              << Nuv::UniString(exception.getMessage()) << '\n';
}

} // namespace

int main()
{
    ParserLimits limits = ParserLimits::ForUntrustedInput(); // the default of LoadDocument
    Load(limits, "900 levels", Nested(900));
    Load(limits, "2000 levels", Nested(2000));
    Load(limits, "A bomb", Bomb);
    Load(limits, "A thief", Thief);
    Stream(limits, "A streamed bomb", Bomb);

    limits.forbidDocumentTypes = true; // who needs none
    Load(limits, "Any document type", "<!DOCTYPE a [<!ELEMENT a ANY>]><a/>");
}
