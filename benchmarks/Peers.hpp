/// @file
/// The peers' plain ways to make a document of a text. They are told to keep what Xerces keeps: white space,
/// comments, the document type.
#pragma once

#include "NuvXMLUtils/Xerces.hpp"
#include "benchmarks/Ratios.hpp"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <pugixml.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <memory>
#include <string>

namespace Benchmarks
{

using XercesDocument = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;

/// Validates against the DTD if there is one.
inline XercesDocument ParseWithXerces(const std::string& text)
{
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                "benchmark");
    xercesc_3_0::XercesDOMParser parser;
    parser.setValidationScheme(xercesc_3_0::XercesDOMParser::Val_Auto);
    parser.parse(source);
    Expect(parser.getErrorCount() == 0, "Xerces found an error");
    return XercesDocument(parser.adoptDocument());
}

struct FreeLibxml2Document
{
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using Libxml2Document = std::unique_ptr<xmlDoc, FreeLibxml2Document>;

/// Validates against the DTD if there is one.
inline Libxml2Document ParseWithLibxml2(const std::string& text)
{
    const bool hasDocumentType = text.find("<!DOCTYPE") != std::string::npos;
    Libxml2Document document(xmlReadMemory(text.data(), static_cast<int>(text.size()), "benchmark", nullptr,
                                           hasDocumentType ? XML_PARSE_DTDVALID : 0));
    Expect(document != nullptr, "libxml2 found an error");
    return document;
}

/// Does not look at what the document type says.
inline pugi::xml_document ParseWithPugixml(const std::string& text, unsigned int options)
{
    pugi::xml_document document;
    Expect(document.load_buffer(text.data(), text.size(), options, pugi::encoding_utf8),
           "pugixml found an error");
    return document;
}

constexpr unsigned int KeepAll = pugi::parse_full | pugi::parse_ws_pcdata;

} // namespace Benchmarks
