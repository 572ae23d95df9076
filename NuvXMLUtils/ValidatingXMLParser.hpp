/// @file
/// Turns XML text into DOM documents.
///
/// Nothing here throws, but for lack of memory for an error message. A failure gives null or false and, where
/// the caller passed them, a line in `errorLocation` (0 when it is not known) and a text in `errorMessage`; a
/// success leaves both untouched. Every pointer argument but a buffer may be null.
///
/// A document that is returned belongs to the caller, who frees it with `release()`. Its URI is that of the
/// source. There is no limit on the depth of nesting, nor on anything else, but memory, unless one is set.
#pragma once

#include "InputOutput/Location.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/ParserLimits.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/sax/Locator.hpp>

#include <functional>
#include <memory>
#include <utility>

namespace NuvXML
{
class ParseGuard;
class SchemaSet;
struct DocumentLoader;
} // namespace NuvXML

/// A parser that can be used again and again, by one thread at a time. Between two calls it keeps its schemas
/// and at most 2 MB more, whatever the documents were.
///
/// Files are read through the application's file library. Relative system ids (external entities, DTDs) name
/// files relative to the current folder of the process; absolute URLs are fetched by Xerces.
class NUVXMLUTILS_API ValidatingXMLParser
{
  public:
    using ValSchemes = xercesc_3_0::AbstractDOMParser::ValSchemes;

    class LineInfoParser;

    ValidatingXMLParser();
    ValidatingXMLParser(const ValidatingXMLParser&) = delete;
    ValidatingXMLParser& operator=(const ValidatingXMLParser&) = delete;
    ~ValidatingXMLParser();

    /// Loads an XML Schema. From then on every Parse validates against it, whatever scheme it is given, and
    /// processes namespaces. The messages are Xerces', or "Could not open the XML Schema file." and
    /// "Could not load the XML Schema.". A schema that it includes or imports and that cannot be opened is no
    /// failure as long as nothing of it is needed.
    ///
    /// A parser has one schema for each namespace. A schema from the same file, or for the same target
    /// namespace, is replaced; then all other schemas are read from their files again, with what they include
    /// and import. A failure, of this schema or of another that is read again, changes nothing.
    bool LoadSchema(const IO::Location& schema, NodeLocationInfo* errorLocation,
                    Nuv::UniString* errorMessage);

    /// Sets the limits for every later Parse, whatever happens in between; `ParserLimits()` lifts them.
    /// Schemas are trusted: LoadSchema reads what they import and include without limits.
    void SetLimits(const ParserLimits& newLimits) { limits = newLimits; }

    /// What a document holds besides elements, attributes, text and entity references.
    struct ParsedNodes
    {
        bool cdataSections = true; ///< otherwise they become text
        bool comments = true;      ///< and processing instructions
    };

    /// Sets what the documents of every later Parse hold; everything, unless it is set. Text on both sides of
    /// what is left out is one text node.
    void SetParsedNodes(const ParsedNodes& kinds) { parsedNodes = kinds; }

    /// Takes an error that lets a parse go on, such as a breach of the schema.
    using ErrorHandler = std::function<void(const NodeLocationInfo& location, const Nuv::UniString& message)>;

    /// Has every such error of each later Parse given to `handler`, instead of ending the parse with the
    /// first one: Parse then gives the document for all that. An empty handler, the default, restores that.
    /// What the handler throws ends the parse like an error of another kind.
    void SetErrorHandler(ErrorHandler handler) { errorHandler = std::move(handler); }

    /// Parses a file. The first error ends the parse, unless there is an error handler; a warning does not.
    /// The messages are Xerces', or "Failed to parse XML document".
    /// @param scheme when to validate, while no schema is loaded
    /// @param createEntityRefNodes whether entity references become nodes, with the content below
    /// @param nodeLocations is filled with the line of each element, text, comment and entity reference
    xercesc_3_0::DOMDocument* Parse(const IO::Location& file, ValSchemes scheme, bool createEntityRefNodes,
                                    NodeLocations* nodeLocations, NodeLocationInfo* errorLocation,
                                    Nuv::UniString* errorMessage);

    /// The same with `size` bytes at `buffer`, which are not needed any longer when the call returns.
    /// @param systemId names the text in messages and becomes the document's URI
    xercesc_3_0::DOMDocument* Parse(const unsigned char* buffer, unsigned int size, ValSchemes scheme,
                                    bool createEntityRefNodes, const Nuv::UniString& systemId,
                                    NodeLocations* nodeLocations, NodeLocationInfo* errorLocation,
                                    Nuv::UniString* errorMessage);

    /// The same; the system id is the path of a location.
    xercesc_3_0::DOMDocument* Parse(const unsigned char* buffer, unsigned int size, ValSchemes scheme,
                                    bool createEntityRefNodes, const IO::Location& systemId,
                                    NodeLocations* nodeLocations, NodeLocationInfo* errorLocation,
                                    Nuv::UniString* errorMessage);

    /// Whether the last operation failed for lack of memory, which its message does not tell. The parser can
    /// be used again. If it had schemas it may have lost them: then every Parse fails, and this is false
    /// while there is memory, until LoadSchema has succeeded once more.
    bool RanOutOfMemory() const { return ranOutOfMemory; }

  private:
    friend struct NuvXML::DocumentLoader;

    /// @param encoding null for the encoding that the text declares
    xercesc_3_0::DOMDocument* ParseMemory(const unsigned char* buffer, size_t size, const XMLCh* encoding,
                                          ValSchemes scheme, bool createEntityRefNodes,
                                          const Nuv::UniString& systemId, NodeLocations* nodeLocations,
                                          NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage);

    xercesc_3_0::DOMDocument* Parse(xercesc_3_0::InputSource& source, ValSchemes scheme,
                                    bool createEntityRefNodes, NodeLocations* nodeLocations,
                                    NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage);

    bool EnsureParser();
    void EnsureIdle() const;
    bool MayKeepParser() const;
    void HandleUnknownFailure();

    std::unique_ptr<NuvXML::SchemaSet> schemas; ///< null when Xerces is not running, and after lack of memory

    /// Null until it is needed: lack of memory leaves a parser unfit for use, and large documents too large.
    std::unique_ptr<LineInfoParser> parser;

    ParserLimits limits;
    ParsedNodes parsedNodes;
    ErrorHandler errorHandler;
    bool ranOutOfMemory = false;
    bool hasLostSchema = false;
    bool isBusy = false;
};

/// A DOM parser that records in a NodeLocations store on which line the scanner stood when each node was made
/// or extended: for an element that is the line on which its start tag ends, for text the line on which it
/// ends.
class NUVXMLUTILS_API ValidatingXMLParser::LineInfoParser : public xercesc_3_0::XercesDOMParser
{
  public:
    /// Records nothing until a store is set.
    LineInfoParser();

    /// A parser with memory of its own, which its documents do not use, and with schemas; neither is owned.
    LineInfoParser(xercesc_3_0::MemoryManager& memory, xercesc_3_0::XMLGrammarPool& schemas);

    ~LineInfoParser() override;

    /// Sets the store to fill, for all parses to come; null switches recording off. The store is not owned.
    void SetNodeLocations(NodeLocations* store);

    /// As ValidatingXMLParser::SetParsedNodes.
    void SetParsedNodes(const ParsedNodes& kinds) { parsedNodes = kinds; }

    /// Sets what keeps each parse to come within its limits; null, the default, lifts them. Not owned.
    void SetGuard(NuvXML::ParseGuard* newGuard);

    /// Frees a document that nobody has adopted, unless a parse is in progress, as Xerces takes one to be
    /// that lack of memory has ended.
    void FreeDocument();

    /// Has the next document be XML 1.0 unless it says otherwise. A document without XML declaration would
    /// else have the version of the one before it.
    void ForgetXMLVersion();

    void startDocument() override;
    void docCharacters(const XMLCh* chars, XMLSize_t length, bool cdataSection) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void startElement(const xercesc_3_0::XMLElementDecl& declaration, unsigned int urlId,
                      const XMLCh* elemPrefix, const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attrList,
                      XMLSize_t attrCount, bool isEmpty, bool isRoot) override;
    void startEntityReference(const xercesc_3_0::XMLEntityDecl& declaration) override;

    /// @name What a guard is told of
    /// @{
    void endElement(const xercesc_3_0::XMLElementDecl& declaration, unsigned int urlId, bool isRoot,
                    const XMLCh* elemPrefix) override;
    void doctypeDecl(const xercesc_3_0::DTDElementDecl& declaration, const XMLCh* publicId,
                     const XMLCh* systemId, bool hasIntSubset, bool hasExtSubset) override;
    void startAttList(const xercesc_3_0::DTDElementDecl& declaration) override;
    void attDef(const xercesc_3_0::DTDElementDecl& element, const xercesc_3_0::DTDAttDef& declaration,
                bool ignoring) override;
    void elementDecl(const xercesc_3_0::DTDElementDecl& declaration, bool isIgnored) override;
    void entityDecl(const xercesc_3_0::DTDEntityDecl& declaration, bool isPEDecl, bool isIgnored) override;
    void notationDecl(const xercesc_3_0::XMLNotationDecl& declaration, bool isIgnored) override;
    xercesc_3_0::InputSource* resolveEntity(xercesc_3_0::XMLResourceIdentifier* identifier) override;
    /// @}

  private:
    void InsertNodeLocInfo();

    NodeLocations* nodeLocations = nullptr;
    const xercesc_3_0::Locator* locator;
    NuvXML::ParseGuard* guard = nullptr;
    ParsedNodes parsedNodes;
};

/// @name One document
/// Each parses with a parser of its own, which validates against no schema and leaves prefixes in names
/// alone.
/// @{

NUVXMLUTILS_API xercesc_3_0::DOMDocument*
ParseXMLDoc(const IO::Location& file, ValidatingXMLParser::ValSchemes scheme, bool createEntityRefNodes,
            NodeLocations* nodeLocations, NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage);

NUVXMLUTILS_API xercesc_3_0::DOMDocument*
ParseXMLDoc(const unsigned char* buffer, unsigned int size, ValidatingXMLParser::ValSchemes scheme,
            bool createEntityRefNodes, const Nuv::UniString& systemId, NodeLocations* nodeLocations,
            NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage);

NUVXMLUTILS_API xercesc_3_0::DOMDocument*
ParseXMLDoc(const unsigned char* buffer, unsigned int size, ValidatingXMLParser::ValSchemes scheme,
            bool createEntityRefNodes, const IO::Location& systemId, NodeLocations* nodeLocations,
            NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage);

/// @}
