/// @file
/// Content handlers that write XML text. SAXWriter and SAX2Writer echo the events of a parse. NuvSAX2Writer
/// writes a document as a stream:
///
/// ```cpp
/// NuvXML::NuvSAX2Writer writer(channel);
/// writer.StartElement(u"Storey");
/// writer.SimpleElement(u"Wall", u"North");
/// writer.EndElement(u"Storey");
/// ```
///
/// The writers report no errors of their own. Exceptions of the formatter, its target and the channel pass
/// through. Lack of memory throws the application's exception or that of Xerces. After an exception the
/// beginning of the event may be written. A writer serves one document and one thread.
///
/// A lone surrogate is written as it is in UTF-16, and as a reference to its own number in other encodings.
/// (Xerces' formatters change it, or never return.) A pair that arrives in two calls of `characters` is
/// written as one character: the first half waits for the next event.
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

/// Writes the events of a SAX parse through a formatter. The formatter decides the encoding, and what is
/// written for a character that the encoding lacks. An empty element is written as a start tag and an end
/// tag.
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
    const xercesc_3_0::Locator* locator = nullptr; ///< kept for the parse; not used
    xercesc_3_0::XMLFormatter* formatter;
    std::unique_ptr<FormatterText> text;
};

/// SAXWriter for a SAX2 parse.
class NUVXMLUTILS_API SAX2Writer : public xercesc_3_0::ContentHandler
{
  public:
    /// Writes the XML declaration with the formatter's current escape flags.
    /// @param target must outlive the writer; its escape flags change with every element and instruction
    /// @param expand writes a name as its URI, a colon and the local name, or as the local name when it has
    /// no URI; otherwise the qualified name of the source is written
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

    const xercesc_3_0::Locator* locator = nullptr; ///< kept for the parse; not used
    bool expandNamespaces;
    xercesc_3_0::XMLFormatter* formatter;
    std::unique_ptr<FormatterText> text;
};

/// Writes a document to a channel in UTF-8, indented by two blanks a level. Each call writes at once, so the
/// memory needed does not depend on the size of the document.
///
/// An element with only text is on one line. The end tag of an element with child elements is on a line of
/// its own. Errors of the channel are not reported; after the first one, later output is dropped.
class NUVXMLUTILS_API NuvSAX2Writer : public xercesc_3_0::ContentHandler
{
  public:
    /// A list of attributes in the order in which they were added. It is read by position, which is not
    /// checked. Looking up a name or URI finds nothing.
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

    /// Calls `startDocument`, which writes nothing: the constructor has written the declaration. It need not
    /// be called.
    void StartDocument();

    /// Calls `endDocument`, which writes nothing. It need not be called.
    void EndDocument();

    // Elements. Each EndElement must have its StartElement; this is not checked.

    /// Writes a start tag on a new line, indented by the depth.
    void StartElement(const Nuv::UniString& name);

    /// The same with attributes, whose qualified names are written.
    void StartElement(const Nuv::UniString& name, const xercesc_3_0::Attributes& attributes);

    /// Writes an end tag and a line feed. The tag is on a line of its own, indented, when the element has
    /// child elements.
    void EndElement(const Nuv::UniString& name);

    // Text.

    /// Writes text, with escapes, where the writer is.
    void Characters(const Nuv::UniString& text);

    // Elements with text.

    /// Writes an element with text, on a line of its own.
    void SimpleElement(const Nuv::UniString& name, const Nuv::UniString& text);

    /// The same with attributes.
    void SimpleElement(const Nuv::UniString& name, const xercesc_3_0::Attributes& attributes,
                       const Nuv::UniString& text);

    // Events. Each is written as SAX2Writer writes it, without indentation.

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

    /// Writes two blanks for each open element.
    void writeTabs();

    std::unique_ptr<xercesc_3_0::XMLFormatTarget> target;
    xercesc_3_0::XMLFormatter formatter;
    SAX2Writer writer;
    int depth = 0;             ///< how many elements are open
    bool lastWasStart = false; ///< the last tag was a start tag
};

} // namespace NuvXML
