/// @file
/// Content handlers that write XML text: echoes of a SAX or SAX2 parse, and a writer of small documents as a
/// stream.
///
/// None of them reports errors of its own: exceptions of the formatter, its target and the channel pass
/// through; lack of memory is the application's exception or that of Xerces. An exception leaves the
/// beginning of the event written, perhaps nothing. A writer serves one document and one thread.
///
/// Half a surrogate pair, of which Xerces' formatters make something else or never come to an end, is written
/// as it is in UTF-16 and as a reference to its own number elsewhere. A pair that arrives in two calls of
/// `characters` is put together; its first half waits for the next event.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvRoot/Containers.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/sax/DocumentHandler.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/ContentHandler.hpp>

#include <memory>

namespace NuvXML
{

class FormatterText;

/// Writes the events of a SAX parse through a formatter, and with that decides neither the encoding nor what
/// becomes of characters that it lacks. There are no empty-element tags.
class NUVXMLUTILS_API SAXWriter : public xercesc_3_0::DocumentHandler
{
  public:
    /// Writes the XML declaration with the formatter's current escape flags.
    /// @param target must outlive the writer; its escape flags change with every element and instruction
    explicit SAXWriter(xercesc_3_0::XMLFormatter& target);
    SAXWriter(const SAXWriter&) = delete;
    SAXWriter& operator=(const SAXWriter&) = delete;
    ~SAXWriter() override;

    void characters(const XMLCh* chars, XMLSize_t length) override;
    void endDocument() override;
    void endElement(const XMLCh* name) override;
    void ignorableWhitespace(const XMLCh* chars, XMLSize_t length) override;
    void processingInstruction(const XMLCh* target, const XMLCh* data) override;
    void resetDocument() override;
    void setDocumentLocator(const xercesc_3_0::Locator* newLocator) override;
    void startDocument() override;
    void startElement(const XMLCh* name, xercesc_3_0::AttributeList& attributes) override;

  private:
    const xercesc_3_0::Locator* locator = nullptr;
    xercesc_3_0::XMLFormatter* formatter;
    std::unique_ptr<FormatterText> text;
};

/// SAXWriter for a SAX2 parse.
class NUVXMLUTILS_API SAX2Writer : public xercesc_3_0::ContentHandler
{
  public:
    /// Writes the XML declaration with the formatter's current escape flags.
    /// @param target must outlive the writer; its escape flags change with every element and instruction
    /// @param expand names are written as URI, colon and local name, or as the local name where there is no
    /// URI, instead of as the qualified names of the source
    SAX2Writer(xercesc_3_0::XMLFormatter& target, bool expand);
    SAX2Writer(const SAX2Writer&) = delete;
    SAX2Writer& operator=(const SAX2Writer&) = delete;
    ~SAX2Writer() override;

    void characters(const XMLCh* chars, XMLSize_t length) override;
    void endDocument() override;
    void endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) override;
    void ignorableWhitespace(const XMLCh* chars, XMLSize_t length) override;
    void processingInstruction(const XMLCh* target, const XMLCh* data) override;
    void setDocumentLocator(const xercesc_3_0::Locator* newLocator) override;
    void startDocument() override;
    void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                      const xercesc_3_0::Attributes& attributes) override;
    void startPrefixMapping(const XMLCh* prefix, const XMLCh* uri) override;
    void endPrefixMapping(const XMLCh* prefix) override;
    void skippedEntity(const XMLCh* name) override;

  private:
    void WriteName(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname);

    const xercesc_3_0::Locator* locator = nullptr;
    bool expandNamespaces;
    xercesc_3_0::XMLFormatter* formatter;
    std::unique_ptr<FormatterText> text;
};

/// Writes a document to a channel in UTF-8, indented by two blanks a level. Each call writes at once, so that
/// the memory needed does not depend on the size of the document.
///
/// An element with text only stays on one line; an element with child elements ends on a line of its own.
/// Errors of the channel are not told; after one, later output is dropped.
class NUVXMLUTILS_API NuvSAX2Writer : public xercesc_3_0::ContentHandler
{
  public:
    /// A list of attributes, filled in order. It is read by position only: lookup by name or URI finds
    /// nothing. Positions are not checked.
    class NUVXMLUTILS_API Attrs : public xercesc_3_0::Attributes
    {
      public:
        Attrs();
        Attrs(const Attrs&) = delete;
        Attrs& operator=(const Attrs&) = delete;
        ~Attrs() override;

        /// Appends an attribute of type CDATA without namespace.
        void Add(const Nuv::UniString& name, const Nuv::UniString& value);

        XMLSize_t getLength() const override;
        const XMLCh* getURI(XMLSize_t index) const override;
        const XMLCh* getLocalName(XMLSize_t index) const override;
        const XMLCh* getQName(XMLSize_t index) const override;
        const XMLCh* getType(XMLSize_t index) const override;
        const XMLCh* getValue(XMLSize_t index) const override;
        bool getIndex(const XMLCh* uri, const XMLCh* localPart, XMLSize_t& index) const override;
        int getIndex(const XMLCh* uri, const XMLCh* localPart) const override;
        bool getIndex(const XMLCh* qName, XMLSize_t& index) const override;
        int getIndex(const XMLCh* qName) const override;
        const XMLCh* getType(const XMLCh* uri, const XMLCh* localPart) const override;
        const XMLCh* getType(const XMLCh* qName) const override;
        const XMLCh* getValue(const XMLCh* uri, const XMLCh* localPart) const override;
        const XMLCh* getValue(const XMLCh* qName) const override;

      private:
        Nuv::Array<std::unique_ptr<xercesc_3_0::XMLAttr>> attributes;
    };

    /// Writes the XML declaration. The channel must outlive the writer.
    explicit NuvSAX2Writer(Nuv::OChannel& channel);
    explicit NuvSAX2Writer(Nuv::OBinaryChannel& channel);
    NuvSAX2Writer(const NuvSAX2Writer&) = delete;
    NuvSAX2Writer& operator=(const NuvSAX2Writer&) = delete;
    ~NuvSAX2Writer() override;

    // Document.

    void StartDocument();
    void EndDocument();

    // Elements. Each EndElement must have its StartElement; this is not checked.

    void StartElement(const Nuv::UniString& name);
    void StartElement(const Nuv::UniString& name, const xercesc_3_0::Attributes& attributes);
    void EndElement(const Nuv::UniString& name);

    // Text.

    void Characters(const Nuv::UniString& text);

    // Elements with text.

    void SimpleElement(const Nuv::UniString& name, const Nuv::UniString& text);
    void SimpleElement(const Nuv::UniString& name, const xercesc_3_0::Attributes& attributes,
                       const Nuv::UniString& text);

    // Events, written without indentation as SAX2Writer does.

    void characters(const XMLCh* chars, XMLSize_t length) override;
    void endDocument() override;
    void endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) override;
    void ignorableWhitespace(const XMLCh* chars, XMLSize_t length) override;
    void processingInstruction(const XMLCh* target, const XMLCh* data) override;
    void setDocumentLocator(const xercesc_3_0::Locator* locator) override;
    void startDocument() override;
    void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                      const xercesc_3_0::Attributes& attributes) override;
    void startPrefixMapping(const XMLCh* prefix, const XMLCh* uri) override;
    void endPrefixMapping(const XMLCh* prefix) override;
    void skippedEntity(const XMLCh* name) override;

  private:
    explicit NuvSAX2Writer(std::unique_ptr<xercesc_3_0::XMLFormatTarget> formatTarget);

    void writeTabs();

    std::unique_ptr<xercesc_3_0::XMLFormatTarget> target;
    xercesc_3_0::XMLFormatter formatter;
    SAX2Writer writer;
    int depth = 0;
    bool lastWasStart = false;
};

} // namespace NuvXML
