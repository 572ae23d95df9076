/// @file
/// Streams documents that are not trusted.
#pragma once

#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/ParserLimits.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/XMLGrammarPool.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>

#include <memory>

namespace NuvXML
{

/// A reader as Xerces' XMLReaderFactory makes it, with all its features and all handlers left to the caller,
/// that keeps to the limits in each parse. Grammars that it is to load belong into the pool beforehand: what
/// it loads itself is subject to the limits too.
///
/// A document that exceeds a limit ends the parse with a xercesc_3_0::SAXParseException, and the error
/// handler is not asked. The one exception is maxEntityExpansions, which Xerces itself reports to the error
/// handler as a fatal error; without a handler, and in a reader that goes on after fatal errors, it is
/// thrown.
///
/// No setting lifts a limit. `setProperty` throws a xercesc_3_0::SAXNotSupportedException for another
/// security manager while maxEntityExpansions is set, and for a scanner that skips document types
/// (WFXMLScanner, SGXMLScanner) while they are forbidden. Where external entities are forbidden, a hint to a
/// schema is ignored, or refused if the feature that loads schemas is switched on.
/// @param grammarPool is not owned; it may be null
/// @throws xercesc_3_0::XMLException when Xerces is not running
NUVXMLUTILS_API std::unique_ptr<xercesc_3_0::SAX2XMLReader>
CreateSAX2Reader(const ParserLimits& limits, xercesc_3_0::XMLGrammarPool* grammarPool = nullptr);

} // namespace NuvXML
