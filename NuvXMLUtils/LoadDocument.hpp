/// @file
/// Loads a document with one call.
///
/// ```cpp
/// const NuvXML::Loaded loaded = NuvXML::LoadDocument("<Wall><Height>275</Height></Wall>");
/// if (!loaded)
///     std::cout << "line " << loaded.place.lineNumber << ": " << loaded.reason << '\n';
/// else
///     Show(loaded.document->getDocumentElement());
/// ```
///
/// The result is false when the document cannot be loaded. Only lack of memory for the reason throws
/// (Nuv::OutOfMemoryException). To load many documents against one schema, keep a ValidatingXMLParser, which
/// reads the schema once.
#pragma once

#include "InputOutput/Location.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/ParserLimits.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include <string_view>

namespace NuvXML
{

/// How LoadDocument loads. The defaults suit a document from anywhere.
struct LoadSettings
{
    /// When to validate by the document's own DTD. `Val_Auto` validates where there is a DTD.
    ValidatingXMLParser::ValSchemes validation = ValidatingXMLParser::LineInfoParser::Val_Never;

    /// An XML Schema to validate against, with namespaces. An empty location is none.
    IO::Location schema{};

    /// How far the document may go. `ParserLimits()` sets no limits, for a document that you trust.
    ParserLimits limits = ParserLimits::ForUntrustedInput();

    /// Whether comments, processing instructions and CDATA sections become nodes. A section that does not is
    /// text.
    ValidatingXMLParser::ParsedNodes nodes{};

    /// Whether entity references become nodes, with their content below.
    bool entityReferences = false;

    /// The name of a text in memory. It becomes the document's URI.
    Nuv::UniString name = u"document";
};

/// A document with its lines, or the reason why there is none.
struct Loaded
{
    /// Null when the document cannot be loaded.
    XercesPtr<xercesc_3_0::DOMDocument> document;

    /// The line of each node, as a parse records it.
    NodeLocations lines;

    /// Where and why loading failed. A line of 0 is not known.
    NodeLocationInfo place;
    Nuv::UniString reason;

    explicit operator bool() const { return document != nullptr; }
};

/// Loads text in the encoding that it declares, UTF-8 when it declares none. The bytes are not needed after
/// the call.
NUVXMLUTILS_API Loaded LoadDocument(std::string_view bytes, const LoadSettings& settings = {});

/// Loads UTF-16 text, whatever encoding it declares.
NUVXMLUTILS_API Loaded LoadDocument(const Nuv::UniString& text, const LoadSettings& settings = {});

/// Loads a file. Its path becomes the document's URI.
NUVXMLUTILS_API Loaded LoadDocument(const IO::Location& file, const LoadSettings& settings = {});

} // namespace NuvXML
