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
/// A document that goes beyond a limit ends the parse with a xercesc_3_0::SAXParseException, for which the
/// error handler is not asked. The one exception is maxEntityExpansions, which Xerces itself tells the error
/// handler as a fatal error; without a handler that is thrown, like every fatal error.
/// @param grammarPool is not owned; it may be null
/// @throws xercesc_3_0::XMLException when Xerces is not running
NUVXMLUTILS_API std::unique_ptr<xercesc_3_0::SAX2XMLReader>
CreateSAX2Reader(const ParserLimits& limits, xercesc_3_0::XMLGrammarPool* grammarPool = nullptr);

} // namespace NuvXML
