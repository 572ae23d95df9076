#include "NuvRoot/SaveAndRestoreVariable.hpp"
#include "NuvXMLUtils/ParseGuard.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/framework/XMLEntityDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RefVectorOf.hpp>
#include <xercesc/util/XMLUni.hpp>

ValidatingXMLParser::LineInfoParser::LineInfoParser()
    : XercesDOMParser(nullptr, xercesc_3_0::XMLPlatformUtils::fgMemoryManager, nullptr)
    , locator(getScanner()->getLocator())
{
}

ValidatingXMLParser::LineInfoParser::LineInfoParser(xercesc_3_0::MemoryManager& memory,
                                                    xercesc_3_0::XMLGrammarPool& schemas)
    : XercesDOMParser(nullptr, &memory, &schemas)
    , locator(getScanner()->getLocator())
{
}

ValidatingXMLParser::LineInfoParser::~LineInfoParser() = default;

void ValidatingXMLParser::LineInfoParser::SetNodeLocations(NodeLocations* store) { nodeLocations = store; }

void ValidatingXMLParser::LineInfoParser::SetGuard(NuvXML::ParseGuard* newGuard)
{
    guard = newGuard;
    if (guard)
        guard->SetLocator(locator);
    getScanner()->setSecurityManager(guard ? guard->GetSecurityManager() : nullptr);
    getScanner()->setLoadSchema(!guard || !guard->GetLimits().forbidExternalEntities);
}

void ValidatingXMLParser::LineInfoParser::FreeDocument()
{
    if (!getParseInProgress())
        resetDocumentPool();
}

void ValidatingXMLParser::LineInfoParser::ForgetXMLVersion()
{
    if (getScanner()->getXMLVersion() == xercesc_3_0::XMLReader::XMLV1_0)
        return;
    // Nothing else takes a scanner of Xerces back. The new one has the settings and the schemas of the old
    // one.
    useScanner(xercesc_3_0::XMLUni::fgIGXMLScanner);
    locator = getScanner()->getLocator();
}

void ValidatingXMLParser::LineInfoParser::startDocument()
{
    // The document outlives the parser's memory.
    const Nuv::SaveAndRestoreVariable<xercesc_3_0::MemoryManager*> memoryOfDocument(
        fMemoryManager, xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
    XercesDOMParser::startDocument();
}

void ValidatingXMLParser::LineInfoParser::docCharacters(const XMLCh* chars, XMLSize_t length,
                                                        bool cdataSection)
{
    XercesDOMParser::docCharacters(chars, length, cdataSection && parsedNodes.cdataSections);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::docComment(const XMLCh* comment)
{
    if (!parsedNodes.comments)
        return;
    XercesDOMParser::docComment(comment);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::docPI(const XMLCh* target, const XMLCh* data)
{
    if (parsedNodes.comments)
        XercesDOMParser::docPI(target, data);
}

void ValidatingXMLParser::LineInfoParser::startElement(
    const xercesc_3_0::XMLElementDecl& declaration, unsigned int urlId, const XMLCh* elemPrefix,
    const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attrList, XMLSize_t attrCount, bool isEmpty,
    bool isRoot)
{
    if (guard)
        guard->StartElement(declaration, elemPrefix, attrList, attrCount);
    XercesDOMParser::startElement(declaration, urlId, elemPrefix, attrList, attrCount, isEmpty, isRoot);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::startEntityReference(const xercesc_3_0::XMLEntityDecl& declaration)
{
    if (guard)
        guard->StartEntity(declaration);
    XercesDOMParser::startEntityReference(declaration);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::endElement(const xercesc_3_0::XMLElementDecl& declaration,
                                                     unsigned int urlId, bool isRoot, const XMLCh* elemPrefix)
{
    if (guard)
        guard->EndElement();
    XercesDOMParser::endElement(declaration, urlId, isRoot, elemPrefix);
}

void ValidatingXMLParser::LineInfoParser::doctypeDecl(const xercesc_3_0::DTDElementDecl& declaration,
                                                      const XMLCh* publicId, const XMLCh* systemId,
                                                      bool hasIntSubset, bool hasExtSubset)
{
    if (guard)
        guard->DocumentType();
    XercesDOMParser::doctypeDecl(declaration, publicId, systemId, hasIntSubset, hasExtSubset);
}

void ValidatingXMLParser::LineInfoParser::startAttList(const xercesc_3_0::DTDElementDecl& declaration)
{
    if (guard)
        guard->StartAttributeList(declaration);
    XercesDOMParser::startAttList(declaration);
}

void ValidatingXMLParser::LineInfoParser::attDef(const xercesc_3_0::DTDElementDecl& element,
                                                 const xercesc_3_0::DTDAttDef& declaration, bool ignoring)
{
    if (guard)
        guard->AttributeDeclaration(declaration);
    XercesDOMParser::attDef(element, declaration, ignoring);
}

void ValidatingXMLParser::LineInfoParser::elementDecl(const xercesc_3_0::DTDElementDecl& declaration,
                                                      bool isIgnored)
{
    if (guard)
        guard->ElementDeclaration(declaration);
    XercesDOMParser::elementDecl(declaration, isIgnored);
}

void ValidatingXMLParser::LineInfoParser::entityDecl(const xercesc_3_0::DTDEntityDecl& declaration,
                                                     bool isPEDecl, bool isIgnored)
{
    if (guard)
        guard->EntityDeclaration(declaration, isPEDecl);
    XercesDOMParser::entityDecl(declaration, isPEDecl, isIgnored);
}

void ValidatingXMLParser::LineInfoParser::notationDecl(const xercesc_3_0::XMLNotationDecl& declaration,
                                                       bool isIgnored)
{
    if (guard)
        guard->NotationDeclaration();
    XercesDOMParser::notationDecl(declaration, isIgnored);
}

xercesc_3_0::InputSource*
ValidatingXMLParser::LineInfoParser::resolveEntity(xercesc_3_0::XMLResourceIdentifier* identifier)
{
    if (guard)
        guard->ExternalEntity(*identifier);
    return XercesDOMParser::resolveEntity(identifier);
}

void ValidatingXMLParser::LineInfoParser::InsertNodeLocInfo()
{
    if (!nodeLocations || !getCurrentNode())
        return;
    try
    {
        nodeLocations->AddNew(getCurrentNode(), static_cast<unsigned int>(locator->getLineNumber()));
    }
    catch (...)
    {
        // A document without some of its lines is better than none.
    }
}
