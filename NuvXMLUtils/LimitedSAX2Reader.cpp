#include "NuvXMLUtils/LimitedSAX2Reader.hpp"

#include "NuvXMLUtils/ParseGuard.hpp"

#include <xercesc/framework/XMLErrorCodes.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <iterator>

namespace NuvXML
{

namespace
{

using xercesc_3_0::SAX2XMLReaderImpl;

bool Equals(const XMLCh* left, const XMLCh* right)
{
    return xercesc_3_0::XMLString::compareIStringASCII(left, right) == 0; // as Xerces compares
}

bool TellsOfDocumentTypes(const XMLCh* scanner)
{
    return !xercesc_3_0::XMLString::equals(scanner, xercesc_3_0::XMLUni::fgWFXMLScanner) &&
           !xercesc_3_0::XMLString::equals(scanner, xercesc_3_0::XMLUni::fgSGXMLScanner);
}

/// Takes the place of handlers that are not set.
class NoHandlers : public xercesc_3_0::DefaultHandler
{
  public:
    void setDocumentLocator(const xercesc_3_0::Locator* newLocator) override { locator = newLocator; }

    const xercesc_3_0::Locator* GetLocator() const { return locator; }

  private:
    const xercesc_3_0::Locator* locator = nullptr;
};

/// Tells its guard of events before the caller's handlers. Xerces passes events on only while there is a
/// handler, so there always is one.
class LimitedSAX2Reader : public SAX2XMLReaderImpl
{
  public:
    LimitedSAX2Reader(const ParserLimits& limits, xercesc_3_0::XMLGrammarPool* grammarPool)
        : SAX2XMLReaderImpl(xercesc_3_0::XMLPlatformUtils::fgMemoryManager, grammarPool)
        , guard(limits)
    {
        SetNoHandlers();
        SAX2XMLReaderImpl::setProperty(xercesc_3_0::XMLUni::fgXercesSecurityManager,
                                       guard.GetSecurityManager());
        SAX2XMLReaderImpl::setFeature(xercesc_3_0::XMLUni::fgXercesLoadSchema,
                                      !limits.forbidExternalEntities);
    }

    // Handlers.

    void setContentHandler(xercesc_3_0::ContentHandler* handler) override
    {
        SAX2XMLReaderImpl::setContentHandler(handler ? handler : &noHandlers);
    }

    void setErrorHandler(xercesc_3_0::ErrorHandler* handler) override
    {
        SAX2XMLReaderImpl::setErrorHandler(handler ? handler : &noHandlers);
    }

    void setEntityResolver(xercesc_3_0::EntityResolver* resolver) override
    {
        SAX2XMLReaderImpl::setEntityResolver(resolver ? resolver : &noHandlers);
    }

    void setXMLEntityResolver(xercesc_3_0::XMLEntityResolver* resolver) override
    {
        if (resolver)
            SAX2XMLReaderImpl::setXMLEntityResolver(resolver);
        else
            setEntityResolver(nullptr);
    }

    void setDTDHandler(xercesc_3_0::DTDHandler* handler) override
    {
        SAX2XMLReaderImpl::setDTDHandler(handler ? handler : &noHandlers);
    }

    void setLexicalHandler(xercesc_3_0::LexicalHandler* handler) override
    {
        SAX2XMLReaderImpl::setLexicalHandler(handler);
        setDTDHandler(getDTDHandler());
    }

    void setDeclarationHandler(xercesc_3_0::DeclHandler* handler) override
    {
        SAX2XMLReaderImpl::setDeclarationHandler(handler);
        setDTDHandler(getDTDHandler());
    }

    // Settings.

    void setProperty(const XMLCh* name, void* value) override
    {
        using xercesc_3_0::XMLUni;
        if (Equals(name, XMLUni::fgXercesSecurityManager) && guard.GetSecurityManager())
            throw xercesc_3_0::SAXNotSupportedException("Entity expansion is limited already.");
        if (Equals(name, XMLUni::fgXercesScannerName))
        {
            if (guard.GetLimits().forbidDocumentTypes && !TellsOfDocumentTypes(static_cast<XMLCh*>(value)))
                throw xercesc_3_0::SAXNotSupportedException("This scanner would pass over document types.");
            guard.SetLocator(nullptr); // it belongs to the scanner
        }
        SAX2XMLReaderImpl::setProperty(name, value);
    }

    void setInputBufferSize(const XMLSize_t size) override
    {
        SAX2XMLReaderImpl::setInputBufferSize(size);
        inputBufferSize = size;
    }

    // Parses.

    void parse(const xercesc_3_0::InputSource& source) override
    {
        ForgetNames();
        SAX2XMLReaderImpl::parse(source);
    }

    void parse(const XMLCh* systemId) override
    {
        ForgetNames();
        SAX2XMLReaderImpl::parse(systemId);
    }

    void parse(const char* systemId) override
    {
        ForgetNames();
        SAX2XMLReaderImpl::parse(systemId);
    }

    bool parseFirst(const xercesc_3_0::InputSource& source, xercesc_3_0::XMLPScanToken& token) override
    {
        ForgetNames();
        return SAX2XMLReaderImpl::parseFirst(source, token);
    }

    bool parseFirst(const XMLCh* systemId, xercesc_3_0::XMLPScanToken& token) override
    {
        ForgetNames();
        return SAX2XMLReaderImpl::parseFirst(systemId, token);
    }

    bool parseFirst(const char* systemId, xercesc_3_0::XMLPScanToken& token) override
    {
        ForgetNames();
        return SAX2XMLReaderImpl::parseFirst(systemId, token);
    }

    // Events.

    /// A reader that is told to go on after fatal errors must not go on with expanding entities.
    void error(unsigned int code, const XMLCh* domain, ErrTypes type, const XMLCh* text,
               const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line, XMLFileLoc column) override
    {
        SAX2XMLReaderImpl::error(code, domain, type, text, systemId, publicId, line, column);
        if (!getExitOnFirstFatalError() && code == xercesc_3_0::XMLErrs::EntityExpansionLimitExceeded &&
            xercesc_3_0::XMLString::equals(domain, xercesc_3_0::XMLUni::fgXMLErrDomain))
            throw xercesc_3_0::SAXParseException(text, publicId, systemId, line, column);
    }

    void startDocument() override
    {
        // Only a content handler is told the locator.
        xercesc_3_0::ContentHandler* const handler = getContentHandler();
        SAX2XMLReaderImpl::setContentHandler(&noHandlers);
        SAX2XMLReaderImpl::startDocument();
        SAX2XMLReaderImpl::setContentHandler(handler);
        guard.SetLocator(noHandlers.GetLocator());
        namesInScanner += guard.CountElementNames();
        guard.StartDocument();
        handler->setDocumentLocator(noHandlers.GetLocator());
        handler->startDocument();
    }

    void startElement(const xercesc_3_0::XMLElementDecl& declaration, unsigned int urlId,
                      const XMLCh* elemPrefix, const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attrList,
                      XMLSize_t attrCount, bool isEmpty, bool isRoot) override
    {
        guard.StartElement(declaration, elemPrefix, attrList, attrCount);
        SAX2XMLReaderImpl::startElement(declaration, urlId, elemPrefix, attrList, attrCount, isEmpty, isRoot);
        if (isEmpty) // which the base then ends by itself
            guard.EndElement();
    }

    void endElement(const xercesc_3_0::XMLElementDecl& declaration, unsigned int urlId, bool isRoot,
                    const XMLCh* elemPrefix) override
    {
        guard.EndElement();
        SAX2XMLReaderImpl::endElement(declaration, urlId, isRoot, elemPrefix);
    }

    void doctypeDecl(const xercesc_3_0::DTDElementDecl& declaration, const XMLCh* publicId,
                     const XMLCh* systemId, bool hasIntSubset, bool hasExtSubset) override
    {
        guard.DocumentType();
        SAX2XMLReaderImpl::doctypeDecl(declaration, publicId, systemId, hasIntSubset, hasExtSubset);
    }

    void startAttList(const xercesc_3_0::DTDElementDecl& declaration) override
    {
        guard.StartAttributeList(declaration);
        SAX2XMLReaderImpl::startAttList(declaration);
    }

    void attDef(const xercesc_3_0::DTDElementDecl& element, const xercesc_3_0::DTDAttDef& declaration,
                bool ignoring) override
    {
        guard.AttributeDeclaration(declaration);
        SAX2XMLReaderImpl::attDef(element, declaration, ignoring);
    }

    void elementDecl(const xercesc_3_0::DTDElementDecl& declaration, bool isIgnored) override
    {
        guard.ElementDeclaration(declaration);
        SAX2XMLReaderImpl::elementDecl(declaration, isIgnored);
    }

    void entityDecl(const xercesc_3_0::DTDEntityDecl& declaration, bool isPEDecl, bool isIgnored) override
    {
        guard.EntityDeclaration(declaration, isPEDecl);
        SAX2XMLReaderImpl::entityDecl(declaration, isPEDecl, isIgnored);
    }

    void notationDecl(const xercesc_3_0::XMLNotationDecl& declaration, bool isIgnored) override
    {
        guard.NotationDeclaration();
        SAX2XMLReaderImpl::notationDecl(declaration, isIgnored);
    }

    void startEntityReference(const xercesc_3_0::XMLEntityDecl& declaration) override
    {
        guard.StartEntity(declaration);
        SAX2XMLReaderImpl::startEntityReference(declaration);
    }

    xercesc_3_0::InputSource* resolveEntity(xercesc_3_0::XMLResourceIdentifier* identifier) override
    {
        guard.ExternalEntity(*identifier);
        return SAX2XMLReaderImpl::resolveEntity(identifier);
    }

  private:
    void SetNoHandlers()
    {
        SAX2XMLReaderImpl::setContentHandler(&noHandlers);
        SAX2XMLReaderImpl::setErrorHandler(&noHandlers);
        SAX2XMLReaderImpl::setEntityResolver(&noHandlers);
        SAX2XMLReaderImpl::setDTDHandler(&noHandlers);
    }

    /// Scanners keep the names of elements that a schema does not declare, and look every name up among them:
    /// when those of earlier documents are more than one document may have, a new scanner takes over.
    void ForgetNames()
    {
        if (namesInScanner + guard.CountElementNames() <= guard.GetLimits().maxElementNames)
            return;
        using xercesc_3_0::XMLUni;
        // What Xerces does not hand on from one scanner to the next.
        const XMLCh* const features[] = {XMLUni::fgXercesGenerateSyntheticAnnotations,
                                         XMLUni::fgXercesValidateAnnotations,
                                         XMLUni::fgXercesIgnoreCachedDTD,
                                         XMLUni::fgXercesIgnoreAnnotations,
                                         XMLUni::fgXercesDisableDefaultEntityResolution,
                                         XMLUni::fgXercesSkipDTDValidation,
                                         XMLUni::fgXercesHandleMultipleImports};
        bool values[std::size(features)];
        std::transform(std::begin(features), std::end(features), values,
                       [this](const XMLCh* name) { return getFeature(name); });
        auto lowWaterMark = *static_cast<const XMLSize_t*>(getProperty(XMLUni::fgXercesLowWaterMark));
        setProperty(XMLUni::fgXercesScannerName, getProperty(XMLUni::fgXercesScannerName));
        for (size_t i = 0; i < std::size(features); ++i)
            setFeature(features[i], values[i]);
        setProperty(XMLUni::fgXercesLowWaterMark, &lowWaterMark);
        if (inputBufferSize != 0)
            SAX2XMLReaderImpl::setInputBufferSize(inputBufferSize);
        namesInScanner = 0;
        guard.StartDocument();
    }

    ParseGuard guard;
    NoHandlers noHandlers;
    size_t namesInScanner = 0;     ///< but for those of the last document
    XMLSize_t inputBufferSize = 0; ///< 0 for that of Xerces
};

} // namespace

std::unique_ptr<xercesc_3_0::SAX2XMLReader> CreateSAX2Reader(const ParserLimits& limits,
                                                             xercesc_3_0::XMLGrammarPool* grammarPool)
{
    return std::make_unique<LimitedSAX2Reader>(limits, grammarPool);
}

} // namespace NuvXML
